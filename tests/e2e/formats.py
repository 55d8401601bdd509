#!/usr/bin/python3
"""Images in other formats than TGA, written by outside programs: a quiet run
on each gives the output of a quiet run on a TGA file of the same pixels.
Otsu's level against scikit-image, damaged files, pipes, --help, --version."""
import os
import shutil
import struct
import subprocess
import sys
import threading

sys.path.insert(0, os.path.dirname(__file__))
from harness import check, equal, finish, run, workdir  # noqa: E402

for tool in ("convert", "pamdepth", "pnmtoplainpnm", "cwebp"):
    if not shutil.which(tool):
        print(f"SKIP: {tool} is not installed (scripts/setup.sh installs it)")
        sys.exit(77)
import numpy as np  # noqa: E402
import tifffile  # noqa: E402
from PIL import Image, ImageOps  # noqa: E402
from skimage.filters import threshold_otsu  # noqa: E402

prog = sys.argv[1]
tmp = workdir()
W, H = 53, 37                    # odd, unequal sides: row order and padding show
ARGS = ["--seed", "7", "-n", "2", "-b1", "16", "-b2", "2"]

rng = np.random.default_rng(15)
# Grey levels around the fixed rule's limit (73) and around 128, in blobs, so
# that each threshold gives a different picture; a top-left corner mark
# shows a flipped or mirrored image.
base = np.kron(rng.integers(0, 256, (H // 4 + 1, W // 4 + 1)), np.ones((4, 4), int))[:H, :W]
base[:5, :9] = 0
rgb = np.stack([base, np.roll(base, 3, 1), 255 - base], -1).astype(np.uint8)
grey = base.astype(np.uint8)
alpha = ((np.arange(W)[None, :] * 5 + np.arange(H)[:, None] * 7) % 256).astype(np.uint8)


def path(name):
    return os.path.join(tmp, name)


def tga(pixels):
    """A 24-bit bottom-up TGA file of an H x W x 3 array (top row first)."""
    with open(path("ref.tga"), "wb") as f:
        f.write(struct.pack("<BBBHHBHHHHBB", 0, 0, 2, 0, 0, 0, 0, 0, pixels.shape[1], pixels.shape[0], 24, 0))
        f.write(pixels[::-1, :, ::-1].astype(np.uint8).tobytes())
    return path("ref.tga")


def over_white(c, a):
    return (c.astype(int) * a[..., None] + 255 * (255 - a[..., None].astype(int)) + 127) // 255


def quiet(name, *extra):
    return run(prog, "-q", "-i", name, *ARGS, *extra)


def pil(name, img, **kw):
    return img.save(path(name), **kw) or path(name)


def tiff(name, arr, **kw):
    return tifffile.imwrite(path(name), arr, **kw) or path(name)


def shell(name, cmd):
    subprocess.run(cmd.format(out=path(name), tmp=tmp), shell=True, check=True)
    return path(name)


grey3 = np.repeat(grey[..., None], 3, -1)
wide = (grey.astype(np.uint16) << 8) | 0x7F  # 16 bits: the low byte must not count
palette = Image.fromarray(rgb).quantize(64)
bilevel = Image.fromarray(grey).point(lambda v: 255 if v >= 128 else 0).convert("1")
pil("src.ppm", Image.fromarray(rgb))
pil("src.pgm", Image.fromarray(grey))
jpeg_rgb = pil("rgb.jpg", Image.fromarray(rgb), quality=90)

def turned(orientation):
    """A JPEG with an orientation tag, and the pixels Pillow shows for it."""
    exif = Image.Exif()
    exif[0x0112] = orientation
    name = pil(f"turned{orientation}.jpg", Image.fromarray(rgb[:, :W - 9]), quality=90, exif=exif)
    return name, np.asarray(ImageOps.exif_transpose(Image.open(name)).convert("RGB"))


cases = [
    # id, file, the RGB pixels a reader must see (top row first)
    ("fmt-1.1 PNG grey", pil("g.png", Image.fromarray(grey)), grey3),
    ("fmt-1.2 PNG grey+alpha", pil("ga.png", Image.fromarray(np.stack([grey, alpha], -1), "LA")),
     over_white(grey3, alpha)),
    ("fmt-1.3 PNG RGB", pil("rgb.png", Image.fromarray(rgb)), rgb),
    ("fmt-1.4 PNG RGBA", pil("rgba.png", Image.fromarray(np.dstack([rgb, alpha]), "RGBA")), over_white(rgb, alpha)),
    ("fmt-1.5 PNG palette", pil("p.png", palette), np.asarray(palette.convert("RGB"))),
    ("fmt-1.6 PNG 16-bit grey", shell("g16.png", "convert {tmp}/src.pgm -depth 16 -evaluate add 127 {out}"),
     grey3),
    ("fmt-1.7 PNG bilevel", pil("b.png", bilevel), np.asarray(bilevel.convert("RGB"))),
    ("fmt-2.1 TIFF grey", tiff("g.tif", grey), grey3),
    ("fmt-2.2 TIFF 16-bit grey", tiff("g16.tif", wide), grey3),
    ("fmt-2.3 TIFF RGB", tiff("rgb.tif", rgb, photometric="rgb"), rgb),
    ("fmt-2.4 TIFF 16-bit RGBA", tiff("rgba16.tif", (np.dstack([rgb, alpha]).astype(np.uint16) << 8) | 0xFF,
                                      photometric="rgb", extrasamples=["unassalpha"]), over_white(rgb, alpha)),
    ("fmt-2.5 TIFF grey+alpha", tiff("ga.tif", np.stack([grey, alpha], -1), photometric="minisblack",
                                     extrasamples=["unassalpha"]), over_white(grey3, alpha)),
    ("fmt-2.6 TIFF palette", pil("p.tif", palette), np.asarray(palette.convert("RGB"))),
    ("fmt-2.7 TIFF bilevel", pil("b.tif", bilevel, compression="group4"), np.asarray(bilevel.convert("RGB"))),
    ("fmt-2.8 BigTIFF, two pages", tiff("big.tif", np.stack([rgb, 255 - rgb]), photometric="rgb", bigtiff=True),
     rgb),
    ("fmt-3.1 JPEG", jpeg_rgb, np.asarray(Image.open(jpeg_rgb).convert("RGB"))),
    *((f"fmt-3.2 JPEG orientation {o}", *turned(o)) for o in range(2, 9)),  # 5-8 turn it a quarter
    ("fmt-4.1 BMP by ImageMagick", shell("rgb.bmp", "convert {tmp}/src.ppm {out}"), rgb),
    ("fmt-5.1 PPM raw", path("src.ppm"), rgb),
    ("fmt-5.2 PGM plain", shell("plain.pgm", "pnmtoplainpnm {tmp}/src.pgm > {out}"), grey3),
    ("fmt-5.3 PGM 16-bit", shell("g16.pgm", "pamdepth 65535 {tmp}/src.pgm > {out}"), grey3),
    ("fmt-5.4 PPM 16-bit plain", shell("rgb16.ppm", "pamdepth 65535 {tmp}/src.ppm | pnmtoplainpnm > {out}"), rgb),
    ("fmt-5.5 PBM raw", pil("b.pbm", bilevel), np.asarray(bilevel.convert("RGB"))),
    ("fmt-6.1 GIF", pil("p.gif", palette, interlace=False), np.asarray(palette.convert("RGB"))),
    ("fmt-6.2 GIF interlaced, index 5 transparent", pil("t.gif", palette, interlace=True, transparency=5),
     np.where((np.asarray(palette) == 5)[..., None], 255, np.asarray(palette.convert("RGB")))),
    ("fmt-6.3 GIF frame inside a larger screen", shell("page.gif", "convert {tmp}/p.gif -page 70x50+6+9 {out}"),
     np.pad(np.asarray(palette.convert("RGB")), ((9, 4), (6, 11), (0, 0)), constant_values=255)),
    ("fmt-7.1 WebP lossless", shell("rgb.webp", "cwebp -quiet -lossless {tmp}/rgb.png -o {out}"), rgb),
]
for cid, name, want in cases:
    ref = tga(np.asarray(want))
    for extra in ([], ["--threshold", "128"], ["-bw"]):
        got, expect = quiet(name, *extra), quiet(ref, *extra)
        equal(f"{cid} {' '.join(extra)}", got, expect)

# Otsu's level is scikit-image's on the same grey levels, Y = (299 r + 587 g
# + 114 b + 500) / 1000; black is Y at or below it.
for cid, pixels in (("otsu-1.1 RGB blobs", rgb), ("otsu-1.2 grey blobs", grey3),
                    ("otsu-1.3 two peaks", np.repeat(np.where(base < 90, 40, 200)[..., None], 3, -1)),
                    ("otsu-1.4 narrow range", np.repeat((100 + base % 7)[..., None], 3, -1)),
                    ("otsu-1.5 three levels", np.repeat((base % 3)[..., None], 3, -1)),
                    ("otsu-1.6 one level", np.full((H, W, 3), 77))):
    p = pixels.astype(int)
    y = (299 * p[..., 0] + 587 * p[..., 1] + 114 * p[..., 2] + 500) // 1000
    level = int(threshold_otsu(y.astype(np.uint8)))
    status, out, err = quiet(tga(pixels), "--threshold", "otsu")
    equal(cid, (status, err), (0, f"Threshold by Otsu's method: grey level {level} (black at or below)\n"))
    check(cid + " same as the level + 1", out == quiet(tga(pixels), "--threshold", str(level + 1))[1])

# Damaged files: two lines, the second saying why, status 255, no crash.
png = open(path("rgb.png"), "rb").read()
broken = bytearray(png)
idat = png.index(b"IDAT") + 8
broken[idat:idat + 16] = bytes(16)
damaged = [
    ("dmg-1.1 truncated PNG", png[:len(png) * 2 // 3], "PNG"),
    ("dmg-1.2 PNG data that does not decode", bytes(broken), "PNG"),
    ("dmg-1.3 truncated JPEG", open(jpeg_rgb, "rb").read()[:1500], "JPEG"),
    ("dmg-1.4 truncated GIF", open(path("p.gif"), "rb").read()[:400], "GIF"),
    ("dmg-1.5 truncated TIFF", open(path("rgb.tif"), "rb").read()[:2000], "TIFF"),
    ("dmg-1.6 truncated WebP", open(path("rgb.webp"), "rb").read()[:300], "WebP"),
    ("dmg-1.7 truncated PGM", open(path("src.pgm"), "rb").read()[:900], "PNM"),
    ("dmg-1.9 truncated BMP", open(path("rgb.bmp"), "rb").read()[:3000], "BMP"),
    ("dmg-1.8 not an image", b"%PDF-1.4 hello\n" * 10, "not a known image format"),
]
for cid, data, word in damaged:
    open(path("bad"), "wb").write(data)
    status, out, err = run(prog, "-q", "-i", path("bad"))
    lines = err.splitlines()
    check(cid, (status, out) == (255, "") and len(lines) == 2 and lines[0] == "   Image read failed"
          and lines[1].startswith("   ") and word.lower() in lines[1].lower(), (status, out, err))

# A BMP wider than ImageMagick's policy allows (16384 pixels in Debian's) is
# refused as too large, not as damaged.
with open(path("wide.bmp"), "wb") as f:
    f.write(b"BM" + struct.pack("<IHHIIiiHHIIiiII", 60054, 0, 0, 54, 40, 20000, 1, 1, 24, 0, 60000, 0, 0, 0, 0))
    f.write(bytes(60000))
status, out, err = run(prog, "-q", "-i", path("wide.bmp"))
check("dmg-1.10 BMP beyond ImageMagick's limits", status == 0 or ("limits" in err and "damaged" not in err),
      (status, err))

# A TGA header that declares no pixels, ending after its 17th byte, loads as
# the empty image of the whole 18-byte header does (no-black warning, status 0).
for n in (17, 18):
    with open(path(f"empty{n}.tga"), "wb") as f:
        f.write(struct.pack("<BBBHHBHHHHBB", 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 24, 0)[:n])
got = run(prog, "-q", "-i", path("empty17.tga"), "-b1", "2")
equal("tga-1.1 17-byte header", got, run(prog, "-q", "-i", path("empty18.tga"), "-b1", "2"))
check("tga-1.2 no black", got[0] == 0 and got[2] == "Warning, image contains no black\n", got)

# Standard input and a FIFO: the same output as the file.
want = quiet(path("rgb.png"))
for cid, name in (("pipe-1.1 PNG on standard input", path("rgb.png")), ("pipe-1.2 TGA on standard input", tga(rgb))):
    p = subprocess.run([prog, "-q", "-i", "-", *ARGS], stdin=open(name, "rb"), capture_output=True)
    equal(cid, p.stdout.decode(), quiet(name)[1])
os.mkfifo(path("fifo"))
writer = threading.Thread(target=lambda: open(path("fifo"), "wb").write(png))
writer.start()
equal("pipe-1.3 PNG through a FIFO", quiet(path("fifo")), want)
writer.join()

# Switches: bad threshold values are refused; --help and --version.
for value in ("256", "-1", "otsu2", "12x"):
    status, out, err = run(prog, "-q", "-i", path("rgb.png"), "--threshold", value)
    check(f"opt-1.1 --threshold {value}", status == 2 and out == "" and "--threshold" in err, (status, err))
status, out, err = run(prog, "--help")
check("opt-1.2 --help", status == 0 and err == "" and all(s in out for s in ("-bw", "-st", "--threshold", "--help")),
      (status, out, err))
equal("opt-1.3 --version", run(prog, "--version"), (0, "Quorl 1.01\n", ""))

shutil.rmtree(tmp)
finish()
