#!/bin/sh
# Throughput of batch runs: images per second of `quorl --batch` with one job
# and with two, against the same images analysed by separate quiet runs in a
# shell loop, and the peak memory of each.
#
#   scripts/bench_batch.sh [runs] [images]
#
# Defaults: 3 runs, 200 images of 1024 x 1024 pixels, made once with
# ImageMagick from the bundled carpet, dust and triangle (each turned and
# mirrored a little differently) in $TMPDIR/quorl-bench-batch. Builds quorl in
# build-bench (Release, no GUI). All runs use --seed 1. Prints the median
# wall time of each way, images per second, the ratios, and the peak
# resident memory (of the largest single process for the loop).
set -e
cd "$(dirname "$0")/.."
BUILD=${QUORL_BENCH_BUILD:-build-bench}
cmake -S . -B "$BUILD" -DCMAKE_BUILD_TYPE=Release -DQUORL_GUI=OFF -DQUORL_TESTS=OFF >/dev/null
cmake --build "$BUILD" -j2 --target quorl >/dev/null
exec /usr/bin/python3 - "$BUILD" "$@" <<'EOF_PY'
import os
import statistics
import subprocess
import sys
import tempfile
import time

build, args = sys.argv[1], sys.argv[2:]
runs = int(args[0]) if args else 3
count = int(args[1]) if len(args) > 1 else 200
quorl = os.path.abspath(os.path.join(build, "quorl"))
folder = os.path.join(os.environ.get("TMPDIR", tempfile.gettempdir()), "quorl-bench-batch")
os.makedirs(folder, exist_ok=True)
names = []
for i in range(count):
    name = os.path.join(folder, "img%03d.tga" % i)
    if not os.path.exists(name):
        src = ("carpet", "dust", "triangle")[i % 3]
        subprocess.run(["convert", "examples/%s.tga" % src, "-filter", "point", "-resize", "1024x1024!",
                        "-rotate", str(90 * (i // 3 % 4))] + ["-flop"] * (i // 12 % 2) +
                       ["-type", "TrueColor", name], check=True)
    names.append(name)
listing = os.path.join(folder, "list")
open(listing, "w").write("\n".join(names) + "\n")


def timed(cmd):
    t0 = time.monotonic()
    subprocess.run(cmd, check=False, stdout=subprocess.DEVNULL)
    return time.monotonic() - t0


loop = ["sh", "-c", 'while read f; do "$0" -q -i "$f" --seed 1; done < "$1"', quorl, listing]
ways = [("loop of quiet runs", loop),
        ("--batch --jobs 1", [quorl, "--batch", listing, "--seed", "1", "--jobs", "1"]),
        ("--batch --jobs 2", [quorl, "--batch", listing, "--seed", "1", "--jobs", "2"])]
medians = {}
print("%d images of 1024 x 1024, %d runs each, median wall time" % (count, runs))
for label, cmd in ways:
    times = [timed(cmd) for _ in range(runs)]
    medians[label] = statistics.median(times)
    print("%-20s %7.2f s  %6.1f images/s" % (label, medians[label], count / medians[label]))
# Peak memory of each way on its own, in a fresh interpreter so that the
# children's maximum starts from zero.
for label, cmd in ways:
    probe = ("import resource,subprocess,sys; subprocess.run(sys.argv[1:], stdout=subprocess.DEVNULL); "
             "print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)")
    kb = int(subprocess.run([sys.executable, "-c", probe] + cmd, capture_output=True, text=True).stdout)
    print("%-20s peak %6.1f MiB" % (label, kb / 1024))
one, two, lp = medians["--batch --jobs 1"], medians["--batch --jobs 2"], medians["loop of quiet runs"]
print("jobs 2 / jobs 1 throughput: %.2fx; jobs 1 / loop: %.2fx" % (one / two, lp / one))
EOF_PY
