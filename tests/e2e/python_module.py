#!/usr/bin/python3
"""The Python module: analyse on a file, on read_image of the file and the program's
quiet run agree; every accepted array kind agrees with a file of the same pixels;
write_image round trips; threads; bad inputs raise the stated exceptions, silently.
Arguments: the program, the directory of the built module."""
import errno
import json
import os
import resource
import signal
import sys
import tempfile
import threading

sys.path.insert(0, os.path.dirname(__file__))
sys.path.insert(0, sys.argv[2])
from harness import check, equal, finish, mask, run, workdir  # noqa: E402

import numpy as np  # noqa: E402
import quorl  # noqa: E402
from PIL import Image  # noqa: E402

prog = sys.argv[1]
tmp = workdir()
rng = np.random.default_rng(18)


def without_file(report):
    return {k: v for k, v in report.items() if k != "file"}


def refused(call):
    try:
        call()
    except ValueError as e:
        return "no black pixels" in str(e)
    return False


# --- 1. file, read_image(file) and the program agree ------------------------
blobs = os.path.join(tmp, "blobs.pgm")  # 16-bit grey and RGBA with partial alpha as PNG, through PIL
mask(blobs, 83, 61, lambda x, y: (x - 30) ** 2 + (y - 20) ** 2 < 300 or (x * y) % 17 == 0)
grey16 = os.path.join(tmp, "grey16.png")
Image.fromarray((rng.integers(0, 65536, (57, 64)) & 0xFF00 | 0x7F).astype(np.uint16)).save(grey16)
rgba = rng.integers(0, 256, (50, 70, 4), dtype=np.uint8)
rgba_png = os.path.join(tmp, "rgba.png")
Image.fromarray(rgba, "RGBA").save(rgba_png)
switches = [  # (program switches, analyse keywords)
    ([], {}),
    (["-n", "3", "-b1", "40", "-bf", "1.5", "-b2", "3"], dict(samples=3, start=40, factor=1.5, end=3)),
    (["-sl", "5", "-sb", "10", "-sr", "60", "-st", "50", "--crop"], dict(region=(5, 10, 60, 50), crop=True)),
    (["--sizes", "3,17,5,9", "--offsets", "all", "-bw"], dict(sizes=[5, 17, 3, 9], offsets="all", invert=True)),
    (["--threshold", "otsu", "--fit-range", "4:"], dict(threshold="otsu", fit_range=(4, None))),
    (["--threshold", "100"], dict(threshold=100)),
]
for f in ["examples/carpet.tga", "examples/triangle.tga", "examples/dust.tga", blobs, grey16, rgba_png]:
    for i, (args, kw) in enumerate(switches):
        status, out, err = run(prog, "-q", "-i", f, "--seed", "7", *args, "--json", "-")
        want = json.loads(out)
        if want["black_pixels"] == 0:  # where the program warns, analyse refuses
            check(f"same-1.{i} {f} {args} nothing black", refused(lambda: quorl.analyse(f, seed=7, **kw)))
            continue
        equal(f"same-1.{i} {f} {args} file", quorl.analyse(f, seed=7, **kw), want)
        equal(f"same-1.{i} {f} {args} array", without_file(quorl.analyse(quorl.read_image(f), seed=7, **kw)),
              without_file(want))
equal("same-1.7 RGBA array laid onto white as its PNG", without_file(quorl.analyse(rgba, seed=1)),
      without_file(quorl.analyse(rgba_png, seed=1)))

# --- 2. every array kind as a file of the same pixels ----------------------
grey = rng.integers(0, 256, (47, 61), dtype=np.uint8)
grey[10:20, 5:9] = 0  # some black under every rule
grey_file = os.path.join(tmp, "grey.pgm")
Image.fromarray(grey).save(grey_file)
bw = grey < 90
bw_file = os.path.join(tmp, "bw.pgm")
Image.fromarray(np.where(bw, 0, 255).astype(np.uint8)).save(bw_file)
kinds = [
    ("uint8", grey, grey_file),
    ("uint16", grey.astype(np.uint16) << 8 | 0xFF, grey_file),
    ("big-endian uint16", (grey.astype(np.uint16) << 8).astype(">u2"), grey_file),
    ("RGB", np.dstack([grey] * 3), grey_file),
    ("opaque RGBA", np.dstack([grey] * 3 + [np.full_like(grey, 255)]), grey_file),
    ("bool", bw, bw_file),
    ("Fortran-order bool", np.asfortranarray(bw), bw_file),
    ("strided uint8", np.repeat(grey, 2, axis=1)[:, ::2], grey_file),
]
for name, array, f in kinds:
    for kw in [{}, dict(threshold=60), dict(threshold="otsu", invert=True), dict(region=(0, 0, 30, 12))]:
        equal(f"kind-2 {name} {kw}", without_file(quorl.analyse(array, seed=2, **kw)),
              without_file(quorl.analyse(f, seed=2, **kw)))
equal("kind-2.9 file of an array", quorl.analyse(bw, seed=1)["file"], "<array>")

# --- 3. write_image: what is written reads back upright ---------------------
picture = np.zeros((5, 8, 4), np.uint8)  # red on blue, an asymmetric mark: swaps and flips show
picture[..., 2] = picture[..., 3] = 255
picture[0, :3, :] = picture[1:4, 0, :] = picture[2, :2, :] = (255, 0, 0, 255)
for kind in ["tga", "tga32", "tga-rle", "tga-rle32", "ppm", "tiff", "bmp", None]:
    name = os.path.join(tmp, f"w.{kind or 'tif'}")
    quorl.write_image(picture[..., :3] if kind == "ppm" else picture, name, kind)
    equal(f"write-3 {kind}", quorl.read_image(name).tolist(), picture.tolist())
quorl.write_image(picture, os.path.join(tmp, "w.raw"))
equal("write-3 raw", open(os.path.join(tmp, "w.raw"), "rb").read(), picture[..., :3].tobytes())

# --- 4. four threads give what one after the other gives --------------------
images = ["examples/carpet.tga", "examples/triangle.tga", quorl.read_image("examples/dust.tga"), bw]
alone = [quorl.analyse(im, seed=5, samples=20) for im in images]
together = [None] * 4
workers = [threading.Thread(target=lambda i=i: together.__setitem__(i, quorl.analyse(images[i], seed=5, samples=20)))
           for i in range(4)]
for t in workers:
    t.start()
for t in workers:
    t.join()
equal("threads-4", together, alone)

# --- 5. bad inputs: the stated exceptions, nothing on the standard streams ---
garbage = os.path.join(tmp, "garbage.png")
open(garbage, "wb").write(b"\x89PNG\r\n\x1a\n" + bytes(40))
line = np.zeros((20, 20), bool)
line[3:17, 9] = True
bad = [  # (call, exception, words of its message)
    (lambda: quorl.analyse(3), TypeError, "file name or a numpy array"),
    (lambda: quorl.analyse(np.zeros((4, 4))), TypeError, "float64"),
    (lambda: quorl.analyse(np.zeros((4, 4, 2), np.uint8)), ValueError, "channels"),
    (lambda: quorl.analyse(np.zeros((0, 4), bool)), ValueError, "empty"),
    (lambda: quorl.analyse(np.zeros(4, bool)), ValueError, "2-D"),
    (lambda: quorl.analyse(np.zeros((9, 9), bool)), ValueError, "no black pixels"),
    (lambda: quorl.analyse(line[:4, 7:11]), ValueError, "start size"),
    (lambda: quorl.analyse(line, factor=1), ValueError, "above 1"),
    (lambda: quorl.analyse(line, factor="1.2"), TypeError, "factor"),
    (lambda: quorl.analyse(line, samples=0), ValueError, "samples"),
    (lambda: quorl.analyse(line, start=True), TypeError, "start"),
    (lambda: quorl.analyse(line, start=1), ValueError, "2 or more"),
    (lambda: quorl.analyse(line, seed=-1), ValueError, "seed"),
    (lambda: quorl.analyse(line, seed=1.5), TypeError, "seed"),
    (lambda: quorl.analyse(line, offsets="some"), ValueError, "offsets"),
    (lambda: quorl.analyse(line, sizes=[]), ValueError, "sizes"),
    (lambda: quorl.analyse(line, sizes=[4, 0]), ValueError, "sizes"),
    (lambda: quorl.analyse(line, sizes="2,4"), TypeError, "sizes"),
    (lambda: quorl.analyse(line, region=(9, 0, 2, 9)), ValueError, "left < right"),
    (lambda: quorl.analyse(line, region=(0, 0, 9)), ValueError, "region"),
    (lambda: quorl.analyse(line, threshold=256), ValueError, "threshold"),
    (lambda: quorl.analyse(line, fit_range=(8, 4)), ValueError, "smaller first"),
    (lambda: quorl.analyse(line, fit_range=8), TypeError, "fit_range"),
    (lambda: quorl.analyse(line, crop="yes"), TypeError, "True or False"),
    (lambda: quorl.analyse(os.path.join(tmp, "none.tga")), FileNotFoundError, "none.tga"),
    (lambda: quorl.analyse(garbage), OSError, "garbage.png"),
    (lambda: quorl.read_image(os.path.join(tmp, "none.png")), FileNotFoundError, "none.png"),
    (lambda: quorl.read_image(tmp), OSError, tmp),
    (lambda: quorl.write_image(line, os.path.join(tmp, "w.gif")), ValueError, "give kind"),
    (lambda: quorl.write_image(line, os.path.join(tmp, "w.x"), "gif"), ValueError, "tga-rle"),
    (lambda: quorl.write_image([[1]], os.path.join(tmp, "w.tga")), TypeError, "numpy array"),
    (lambda: quorl.write_image(np.zeros((1, 70000), bool), os.path.join(tmp, "w.tga")), ValueError, "65535"),
    (lambda: quorl.write_image(line, os.path.join(tmp, "no", "w.tga")), FileNotFoundError, "w.tga"),
]
with tempfile.TemporaryFile() as streams:
    saved = [os.dup(1), os.dup(2)]
    os.dup2(streams.fileno(), 1), os.dup2(streams.fileno(), 2)
    raised = []
    for call, exc, words in bad:
        try:
            call()
            raised.append(None)
        except Exception as e:  # noqa: BLE001
            raised.append(e)
    os.dup2(saved[0], 1), os.dup2(saved[1], 2)
    streams.seek(0)
    equal("bad-5.0 nothing printed", streams.read(), b"")
for i, ((call, exc, words), e) in enumerate(zip(bad, raised)):
    check(f"bad-5.{i + 1} {exc.__name__} '{words}'", type(e) is exc and words in str(e), repr(e))
signal.signal(signal.SIGXFSZ, signal.SIG_IGN)  # a file past the limit: EFBIG, as from a full disk
limit = resource.getrlimit(resource.RLIMIT_FSIZE)
resource.setrlimit(resource.RLIMIT_FSIZE, (1000, limit[1]))
try:
    quorl.write_image(picture.repeat(20, axis=0), os.path.join(tmp, "big.ppm"))
    check("bad-5.98 a short write raises", False)
except OSError as e:
    check("bad-5.98 a short write raises", e.errno == errno.EFBIG and "big.ppm" in str(e), repr(e))
resource.setrlimit(resource.RLIMIT_FSIZE, limit)
check("bad-5.99 no partial file", not os.path.exists(os.path.join(tmp, "big.ppm")))

finish()
