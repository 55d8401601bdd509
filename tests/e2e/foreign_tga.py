#!/usr/bin/python3
"""The TGA reader on files written by other programs (ImageMagick, netpbm):
our decoding must give the pixels those programs put in."""
import os
import random
import shutil
import subprocess
import sys

sys.path.insert(0, os.path.dirname(__file__))
from harness import check, finish, workdir  # noqa: E402

tga2ppm = sys.argv[1]
tmp = workdir()


def source(name, w, h, pixel):
    """Writes a binary PPM (top row first); returns its raster."""
    raster = bytes(c for y in range(h) for x in range(w) for c in pixel(x, y))
    with open(os.path.join(tmp, name), "wb") as f:
        f.write(b"P6\n%d %d\n255\n" % (w, h) + raster)
    return raster


def ours(tga):   # the reader's code, and the pixels top row first
    p = subprocess.run([tga2ppm, tga], capture_output=True)
    return p.returncode, p.stdout.split(b"\n", 3)[3] if p.returncode == 0 else b""


# An asymmetric picture with runs and noise: red stripes on blue, a grey ramp;
# and one of four colours in blocks, for colour maps.
rng = random.Random(11)
W, H = 37, 23
raster = source("src.ppm", W, H, lambda x, y: ((255, 0, 0) if x < 30 else (0, 0, 255)) if y < 5 else
                (x * 7 % 256,) * 3 if y < 12 else (rng.randrange(256), rng.randrange(256), rng.randrange(256)))
few = source("few.ppm", W, H, lambda x, y: [(255, 0, 0), (0, 90, 200), (0, 0, 0), (250, 250, 250)][(x // 5 + y // 4) % 4])
subprocess.run(["convert", "src.ppm", "-colorspace", "Gray", "grey.pgm"], cwd=tmp, check=True)

# ImageMagick writes rows top first; unless told the origin is the top left
# it marks them as bottom first, so the picture a reader sees is upside down.
# Each file is compared with ImageMagick's decoding of it and, where the
# writer keeps the picture exactly, with the source pixels too.
writers = [
    # id, shell command writing out.tga, exact source pixels expected (None: only ImageMagick's decoding)
    ("foreign-1.1 convert raw", "convert src.ppm -compress None out.tga", None),
    ("foreign-1.2 convert raw top-left", "convert src.ppm -orient TopLeft -compress None out.tga", raster),
    ("foreign-1.3 convert RLE top-left", "convert src.ppm -orient TopLeft -compress RLE out.tga", raster),
    ("foreign-1.4 convert grey", "convert grey.pgm -compress None out.tga", None),
    ("foreign-1.5 convert palette", "convert few.ppm -orient TopLeft -type Palette -compress None out.tga", few),
    ("foreign-1.6 convert with alpha", "convert src.ppm -orient TopLeft -alpha on -compress RLE out.tga", raster),
    ("foreign-1.7 pamtotga rgb", "pamtotga -rgb -norle < src.ppm > out.tga", raster),
    ("foreign-1.8 pamtotga cmap", "pamtotga -cmap -norle < few.ppm > out.tga", few),
    ("foreign-1.9 pamtotga mono RLE", "pamtotga -mono < grey.pgm > out.tga", None),
]
out = os.path.join(tmp, "out.tga")
for cid, cmd, want_source in writers:
    subprocess.run(cmd, shell=True, cwd=tmp, capture_output=True, check=True)   # netpbm reports colours on stderr
    code, got = ours(out)
    # ImageMagick keeps the file's row order and records the origin as an
    # orientation; -auto-orient applies it, giving the picture as drawn.
    theirs = subprocess.run(["convert", out, "-auto-orient", "-depth", "8", "rgb:-"], capture_output=True).stdout
    for what, want in (("ImageMagick", theirs), ("source", want_source)):
        if want is not None:
            check(f"{cid} vs {what}", code == 0 and got == want,
                  f"reader code {code}, {sum(a != b for a, b in zip(got, want))} bytes differ of {len(want)}")

# A colour-mapped run-length file (netpbm's default for -cmap) is refused.
subprocess.run("pamtotga -cmap < few.ppm > out.tga 2>/dev/null", shell=True, cwd=tmp, check=True)
check("foreign-2.1 run-length colour map refused", ours(out)[0] == 1)

shutil.rmtree(tmp)
finish()
