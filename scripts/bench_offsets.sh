#!/bin/sh
# Cost and effect of --offsets all (the smallest count over every grid
# offset) against the default quiet run (10 random offsets per size).
#
#   scripts/bench_offsets.sh [runs] [side...]
#
# Defaults: 5 runs, sides 2048 and 4096. Builds quorl and bench/bench_quiet in
# build-bench (Release, no GUI) and reuses the test images of
# scripts/bench_quiet.sh in $TMPDIR/quorl-bench (a sparse random walk, a dense
# carpet, an all-white image; written when missing). For each image it prints
# the median wall time of the default run and of the exhaustive run (both
# with --seed 1), their ratio, and the two estimates. Then, for the bundled
# fractals in examples/, the estimates of ten seeded default runs (mean and
# range), the exhaustive estimate and the theoretical dimension.
set -e
cd "$(dirname "$0")/.."
BUILD=${QUORL_BENCH_BUILD:-build-bench}
cmake -S . -B "$BUILD" -DCMAKE_BUILD_TYPE=Release -DQUORL_GUI=OFF -DQUORL_TESTS=OFF >/dev/null
cmake --build "$BUILD" -j2 --target quorl bench_quiet >/dev/null
exec /usr/bin/python3 - "$BUILD" "$@" <<'EOF_PY'
import math
import os
import statistics
import subprocess
import sys
import tempfile
import time

build, args = sys.argv[1], sys.argv[2:]
runs = int(args[0]) if args else 5
sides = [int(a) for a in args[1:]] or [2048, 4096]
quorl = os.path.join(build, "quorl")
helper = os.path.join(build, "bench_quiet")
images = os.path.join(os.environ.get("TMPDIR", tempfile.gettempdir()), "quorl-bench")
os.makedirs(images, exist_ok=True)


def estimate(out):
    return float(out.split("dimension:")[1].split()[0])


def timed(cmd):
    """Median wall and CPU (user + system) seconds of runs runs, and the
    estimate printed. On a shared machine the CPU time is the steadier."""
    walls, cpus = [], []
    for _ in range(runs):
        out = tempfile.TemporaryFile()
        t0 = time.monotonic()
        p = subprocess.Popen(cmd, stdout=out, stderr=subprocess.DEVNULL)
        _, status, usage = os.wait4(p.pid, 0)
        walls.append(time.monotonic() - t0)
        cpus.append(usage.ru_utime + usage.ru_stime)
        if os.waitstatus_to_exitcode(status) != 0:
            sys.exit(f"failed: {' '.join(cmd)}")
    out.seek(0)
    return statistics.median(walls), statistics.median(cpus), estimate(out.read().decode())


print(f"Median of {runs} runs, seconds of wall time (CPU time); estimates with --seed 1.")
print()
print("| Image | Default (10 offsets) | --offsets all | Ratio | Estimate default | Estimate all | Shift |")
print("|---|---:|---:|---:|---:|---:|---:|")
exhaustive_by = {}
for side in sides:
    for kind in ("walk", "carpet", "white"):
        name = os.path.join(images, f"{kind}{side}.tga")
        if not os.path.exists(name):
            subprocess.run([helper, "make", kind, str(side), name], check=True)
        with open(name, "rb") as f:  # into the page cache before any timing
            while f.read(1 << 24):
                pass
        t_def, c_def, d_def = timed([quorl, "-q", "-i", name, "--seed", "1"])
        t_all, c_all, d_all = timed([quorl, "-q", "-i", name, "--seed", "1", "--offsets", "all"])
        exhaustive_by[kind, side] = c_all
        print(f"| {kind} {side} | {t_def:.3f} ({c_def:.3f}) | {t_all:.3f} ({c_all:.3f}) "
              f"| {t_all / t_def:.2f} ({c_all / c_def:.2f}) | {d_def:.3f} | {d_all:.3f} | {d_all - d_def:+.3f} |",
              flush=True)
if len(sides) >= 2:
    a, b = sides[0], sides[-1]
    print()
    print(f"--offsets all CPU time {b} / {a}:",
          ", ".join(f"{k} {exhaustive_by[k, b] / exhaustive_by[k, a]:.2f}" for k in ("walk", "carpet", "white")),
          f"(pixels x {b * b / (a * a):.0f})")

print()
print("| Sample | Theory | Default, 10 seeds: mean (min..max) | --offsets all | Shift |")
print("|---|---:|---:|---:|---:|")
for name, theory, formula in [("carpet", math.log(8) / math.log(3), "ln 8 / ln 3"),
                              ("triangle", math.log(3) / math.log(2), "ln 3 / ln 2"),
                              ("dust", math.log(4) / math.log(3), "ln 4 / ln 3")]:
    path = os.path.join("examples", name + ".tga")
    seeded = [estimate(subprocess.run([quorl, "-q", "-i", path, "--seed", str(s)], capture_output=True,
                                      text=True, check=True).stdout) for s in range(1, 11)]
    d_all = estimate(subprocess.run([quorl, "-q", "-i", path, "--offsets", "all"], capture_output=True,
                                    text=True, check=True).stdout)
    mean = statistics.mean(seeded)
    print(f"| {name} | {theory:.3f} ({formula}) | {mean:.3f} ({min(seeded):.3f}..{max(seeded):.3f}) | "
          f"{d_all:.3f} | {d_all - mean:+.3f} |")
EOF_PY
