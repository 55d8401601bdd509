#!/bin/sh
# Speed and memory of the quiet analysis on large images, against the time
# the same code needs just to read and threshold the image.
#
#   scripts/bench_quiet.sh [runs] [side...]
#
# Defaults: 5 runs, sides 4096 and 8192. Builds quorl and bench/bench_quiet in
# build-bench (Release, no GUI), writes three test images per side into
# $TMPDIR/quorl-bench (kept for later runs): a sparse random walk, a dense
# carpet and an all-white image. For each it times, with the default
# settings:
#   floor   - LoadTGA and the black/white image only (bench_quiet floor)
#   quiet   - quorl -q -i IMAGE
#   literal - the same analysis with every box scanned pixel by pixel
#             (bench_quiet literal; once per image, it is slow)
# and prints medians of the wall times, the ratios, the peak resident memory
# per pixel of the quiet run and the time to build the box test's table.
# The quiet and literal runs are also made under faketime (when installed)
# with the same clock, and their outputs must be identical.
#
# Then the carpet of the largest side, written also as PNG, TIFF (8 and 16
# bits per sample), JPEG (also one tagged as turned a quarter), GIF and BMP
# (by Pillow and tifffile), is timed per format:
#   decode  - decoding alone (bench/bench_decode): the project's TGA reader
#             (TGA) or giflib (GIF) handing rows to a sink that does
#             nothing, or libvips alone
#             opening the file as quorl does and preparing every row
#   quiet   - quorl -q -i FILE
# with the ratio and the peak resident memory per pixel of the quiet run.
# "scripts/bench_quiet.sh RUNS formats SIDE" runs only this part.
set -e
cd "$(dirname "$0")/.."
BUILD=${QUORL_BENCH_BUILD:-build-bench}
cmake -S . -B "$BUILD" -DCMAKE_BUILD_TYPE=Release -DQUORL_GUI=OFF -DQUORL_TESTS=OFF >/dev/null
cmake --build "$BUILD" -j2 --target quorl bench_quiet bench_decode >/dev/null
exec /usr/bin/python3 - "$BUILD" "$@" <<'EOF'
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

build, args = sys.argv[1], sys.argv[2:]
runs = int(args[0]) if args else 5
only_formats = args[1:2] == ["formats"]
sides = [int(a) for a in args[1 + only_formats:]] or [4096, 8192]
quorl = os.path.join(build, "quorl")
helper = os.path.join(build, "bench_quiet")
decoder = os.path.join(build, "bench_decode")
images = os.path.join(os.environ.get("TMPDIR", tempfile.gettempdir()), "quorl-bench")
os.makedirs(images, exist_ok=True)
faketime = shutil.which("faketime")
frozen = ["faketime", "-f", "2024-01-01 00:00:00"] if faketime else []


def measure(cmd, env=None):
    """Wall seconds, peak resident bytes and standard output of one run."""
    out = tempfile.TemporaryFile()
    t0 = time.monotonic()
    p = subprocess.Popen(cmd, stdout=out, stderr=subprocess.DEVNULL, env=env)
    _, status, usage = os.wait4(p.pid, 0)
    wall = time.monotonic() - t0
    p.returncode = os.waitstatus_to_exitcode(status)
    if p.returncode != 0:
        sys.exit(f"failed ({p.returncode}): {' '.join(cmd)}")
    out.seek(0)
    return wall, usage.ru_maxrss * 1024, out.read()


def median(cmd, n):
    walls, peaks = [], []
    for _ in range(n):
        w, m, _ = measure(cmd)
        walls.append(w)
        peaks.append(m)
    return statistics.median(walls), max(peaks)


rows, quiet_by = [], {}
for side in sides:
    for kind in ("walk", "carpet", "white") if not only_formats else ():
        name = os.path.join(images, f"{kind}{side}.tga")
        if not os.path.exists(name):
            subprocess.run([helper, "make", kind, str(side), name], check=True)
        with open(name, "rb") as f:  # into the page cache before any timing
            while f.read(1 << 24):
                pass
        floor, _ = median([helper, "floor", name], runs)
        quiet, peak = median([quorl, "-q", "-i", name], runs)
        literal, _, want = measure(frozen + [helper, "literal", name])
        if frozen:
            got = measure(frozen + [quorl, "-q", "-i", name])[2]
            if got != want:
                sys.exit(f"{name}: quiet output differs from the pixel-scan output")
        table = min(float(measure([helper, "phases", name])[2].split()[5]) for _ in range(3))
        quiet_by[kind, side] = quiet
        rows.append((f"{kind} {side}", floor, quiet, quiet / floor, literal, peak / side / side, table))
        print(f"{rows[-1][0]}: done", file=sys.stderr)

def warm(name):
    with open(name, "rb") as f:  # into the page cache before any timing
        while f.read(1 << 24):
            pass


side = sides[-1]
carpet = os.path.join(images, f"carpet{side}.tga")
if not os.path.exists(carpet):
    subprocess.run([helper, "make", "carpet", str(side), carpet], check=True)
stem = os.path.join(images, f"carpet{side}")
if not os.path.exists(stem + ".bmp"):
    subprocess.run(["/usr/bin/python3", "-c", f'''
import numpy as np, tifffile
from PIL import Image
Image.MAX_IMAGE_PIXELS = None
im = Image.open("{carpet}").convert("RGB")
im.save("{stem}.png")
im.save("{stem}.jpg", quality=90)
exif = Image.Exif()
exif[0x0112] = 6
im.save("{stem}-turned.jpg", quality=90, exif=exif)
im.convert("P").save("{stem}.gif")
im.save("{stem}.bmp")
a = np.asarray(im)
tifffile.imwrite("{stem}-8.tif", a, photometric="rgb")
tifffile.imwrite("{stem}-16.tif", a.astype(np.uint16) * 257, photometric="rgb")
'''], check=True)
formats = []
for label, name in (("TGA", carpet), ("PNG", stem + ".png"), ("TIFF 8-bit", stem + "-8.tif"),
                    ("TIFF 16-bit", stem + "-16.tif"), ("JPEG", stem + ".jpg"),
                    ("JPEG turned", stem + "-turned.jpg"), ("GIF", stem + ".gif"), ("BMP", stem + ".bmp")):
    warm(name)
    decode, _ = median([decoder, name], runs)
    quiet, peak = median([quorl, "-q", "-i", name], runs)
    formats.append((f"{label} {side}", os.path.getsize(name), decode, quiet, quiet / decode, peak / side / side))
    print(f"{label}: done", file=sys.stderr)

if rows:
    print(f"Median of {runs} runs (literal: one run); wall seconds; peak memory of the quiet run.")
    print("Outputs of quiet and literal runs compared:", "identical" if frozen else "not checked (no faketime)")
    print()
    print("| Image | Read + threshold | Quiet analysis | Ratio | Pixel-scan analysis | Peak bytes/pixel | Table build |")
    print("|---|---:|---:|---:|---:|---:|---:|")
    for r in rows:
        print(f"| {r[0]} | {r[1]:.3f} | {r[2]:.3f} | {r[3]:.2f} | {r[4]:.2f} | {r[5]:.2f} | {r[6]:.3f} |")
print()
print(f"Formats: median of {runs} runs; wall seconds; peak memory of the quiet run.")
print()
print("| Carpet | File bytes | Decode alone | Quiet analysis | Ratio | Peak bytes/pixel |")
print("|---|---:|---:|---:|---:|---:|")
for r in formats:
    print(f"| {r[0]} | {r[1]} | {r[2]:.3f} | {r[3]:.3f} | {r[4]:.2f} | {r[5]:.2f} |")
if len(sides) >= 2 and rows:
    a, b = sides[0], sides[-1]
    print()
    print(f"Quiet time {b} / {a}:",
          ", ".join(f"{k} {quiet_by[k, b] / quiet_by[k, a]:.2f}" for k in ("walk", "carpet", "white")),
          f"(pixels x {b * b / (a * a):.0f})")
EOF
