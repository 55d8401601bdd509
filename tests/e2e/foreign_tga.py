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
for tool in ("convert", "pamtotga"):
    if not shutil.which(tool):
        print(f"SKIP: {tool} is not installed (scripts/setup.sh installs it)")
        sys.exit(77)


def ppm(path, w, h, pixel):
    data = bytearray(b"P6\n%d %d\n255\n" % (w, h))
    for y in range(h):          # top row first
        for x in range(w):
            data += bytes(pixel(x, y))
    with open(path, "wb") as f:
        f.write(data)
    return bytes(data)


def pixels_of(ppm_bytes):
    """The raster of a binary PPM: after the magic, width, height and maxval,
    skipping comment lines (ImageMagick turns a TGA's ID into one)."""
    fields, pos = [], 0
    while len(fields) < 4:
        if ppm_bytes[pos:pos + 1] == b"#":
            pos = ppm_bytes.index(b"\n", pos) + 1
        elif ppm_bytes[pos:pos + 1].isspace():
            pos += 1
        else:
            end = pos
            while not ppm_bytes[end:end + 1].isspace():
                end += 1
            fields.append(ppm_bytes[pos:end])
            pos = end
    return ppm_bytes[pos + 1:]


def ours(tga):
    p = subprocess.run([tga2ppm, tga], capture_output=True)
    return p.returncode, pixels_of(p.stdout) if p.returncode == 0 else b""


def theirs(tga):
    # ImageMagick keeps the file's row order and records the origin as an
    # orientation; -auto-orient applies it, giving the picture as drawn.
    p = subprocess.run(["convert", tga, "-auto-orient", "-depth", "8", "ppm:-"], capture_output=True, check=True)
    return pixels_of(p.stdout)


rng = random.Random(11)
# An asymmetric picture with runs and noise: red stripes on blue, a grey ramp.
W, H = 37, 23
def colour(x, y):
    if y < 5:
        return (255, 0, 0) if x < 30 else (0, 0, 255)
    if y < 12:
        return (x * 7 % 256, x * 7 % 256, x * 7 % 256)
    return (rng.randrange(256), rng.randrange(256), rng.randrange(256))


src = os.path.join(tmp, "src.ppm")
raster = pixels_of(ppm(src, W, H, colour))
grey_src = os.path.join(tmp, "grey.pgm")
subprocess.run(["convert", src, "-colorspace", "Gray", grey_src], check=True)
few = os.path.join(tmp, "few.ppm")
few_raster = pixels_of(ppm(few, W, H, lambda x, y: [(255, 0, 0), (0, 90, 200), (0, 0, 0), (250, 250, 250)][(x // 5 + y // 4) % 4]))

# ImageMagick writes rows top first; unless told the origin is the top left
# it marks them as bottom first, so the picture a reader sees is upside down.
# Each file is compared with ImageMagick's decoding of it and, where the
# writer keeps the picture exactly, with the source pixels too.
writers = [
    # id, command writing {out}, exact source pixels expected (None: only ImageMagick's decoding)
    ("foreign-1.1 convert raw", ["convert", src, "-compress", "None", "{out}"], None),
    ("foreign-1.2 convert raw top-left", ["convert", src, "-orient", "TopLeft", "-compress", "None", "{out}"], raster),
    ("foreign-1.3 convert RLE top-left", ["convert", src, "-orient", "TopLeft", "-compress", "RLE", "{out}"], raster),
    ("foreign-1.6 convert grey", ["convert", grey_src, "-compress", "None", "{out}"], None),
    ("foreign-1.7 convert palette", ["convert", few, "-orient", "TopLeft", "-type", "Palette", "-compress", "None", "{out}"],
     few_raster),
    ("foreign-1.8 convert with alpha", ["convert", src, "-orient", "TopLeft", "-alpha", "on", "-compress", "RLE", "{out}"],
     raster),
    ("foreign-1.9 pamtotga rgb", ["sh", "-c", "pamtotga -rgb -norle < {src} > {out}"], raster),
    ("foreign-1.11 pamtotga cmap", ["sh", "-c", "pamtotga -cmap -norle < {few} > {out}"], few_raster),
    ("foreign-1.13 pamtotga mono RLE", ["sh", "-c", "pamtotga -mono < {grey} > {out}"], None),
]
for cid, cmd, source in writers:
    out = os.path.join(tmp, "out.tga")
    cmd = [c.format(out=out, src=src, few=few, grey=grey_src) for c in cmd]
    r = subprocess.run(cmd, capture_output=True)  # netpbm reports its colour count on stderr
    if r.returncode != 0:
        check(cid, False, "writer failed: " + r.stderr.decode(errors="replace"))
        continue
    code, got = ours(out)
    for what, want in (("ImageMagick", theirs(out)), ("source", source)):
        if want is not None:
            check(f"{cid} vs {what}", code == 0 and got == want,
                  f"reader code {code}, {sum(a != b for a, b in zip(got, want))} bytes differ of {len(want)}")

# A colour-mapped run-length file (netpbm's default for -cmap) is refused.
out = os.path.join(tmp, "out.tga")
subprocess.run(["sh", "-c", f"pamtotga -cmap < {few} > {out} 2>/dev/null"], check=True)
check("foreign-2.1 run-length colour map refused", ours(out)[0] == 1)

shutil.rmtree(tmp)
finish()
