#!/usr/bin/python3
"""Bad input files in quiet mode: each gives its message on standard error,
nothing on standard output, exit status 255, and never crashes or hangs. (What
the reader makes of each kind of damage is pinned by its unit tests; any
failure reads the same here.)"""
import os
import shutil
import struct
import sys

sys.path.insert(0, os.path.dirname(__file__))
from harness import check, equal, finish, run, workdir  # noqa: E402

prog = sys.argv[1]
tmp = workdir()


def header(imagetype=2, bits=24, width=4, height=3):
    return struct.pack("<BBBHHBHHHHBB", 0, 0, imagetype, 0, 0, 0, 0, 0, width, height, bits, 0)


def write(name, data):
    path = os.path.join(tmp, name)
    with open(path, "wb") as f:
        f.write(data)
    return path


READ_FAILED = "   Image read failed\n"
cases = [
    # id, file contents (None: no such file), last line of standard error
    ("bad-1.1 missing", None, None),
    ("bad-1.2 empty", b"", READ_FAILED),
    ("bad-1.4 truncated pixels", header() + bytes(20), READ_FAILED),
    ("bad-1.5 truncated header", header()[:11], READ_FAILED),
    ("bad-1.7 15-bit depth", header(bits=15) + bytes(24), READ_FAILED),
    # The quiet run holds one byte per pixel: the image may be granted and the
    # read then fail, or be refused.
    ("bad-1.11 huge image", header(width=65535, height=65535) + bytes(10), "EITHER"),
    ("bad-1.12 run past the end", header(imagetype=10) + bytes([0xFF, 9, 9, 9]) * 3, None),  # reads fine
    ("bad-1.13 directory", "DIR", READ_FAILED),
]
for cid, data, last in cases:
    if data is None and last is None and "missing" in cid:
        path = os.path.join(tmp, "no-such-file.tga")
        last = 'Failed to open file "%s"\n' % path
    elif data == "DIR":
        path = os.path.join(tmp, "a-directory.tga")
        os.mkdir(path)
    else:
        path = write(cid.split()[0] + ".tga", data)
    # -b1: an automatic start size on a region under 5 pixels would be 0
    status, out, err = run(prog, "-q", "-i", path, "-b1", "2", timeout=30)
    if last is None:  # a well-formed run-length file whose packets overrun: read and cut
        check(cid, status == 0 and "Estimated fractal dimension" in out, f"{status} {out!r} {err!r}")
        continue
    if last == "EITHER":
        check(cid, (status, out) == (255, "") and err.splitlines(True)[-1:] in
              ([READ_FAILED], ["   Failed to create image\n"]), f"{status} {out!r} {err!r}")
        continue
    equal(cid, (status, out, err.splitlines(True)[-1:]), (255, "", [last]))

# "-i" as the last word names nothing: the blank image is analysed.
status, out, err = run(prog, "-q", "-i")
equal("bad-2.2 trailing -i", (status, out), (0, "Estimated fractal dimension:  0.000\n"))

# A seeded stream of damaged headers and bodies: no crash, no hang.
import random  # noqa: E402
rng = random.Random(4242)
good = header(imagetype=10, width=8, height=8) + bytes([0x87, 0, 0, 0, 0x07] + [255] * 24) * 8
for k in range(60):
    data = bytearray(good)
    for _ in range(rng.randint(1, 6)):
        data[rng.randrange(len(data))] = rng.randrange(256)
    data = data[:rng.randint(0, len(data))]
    path = write("fuzz.tga", bytes(data))
    status, out, err = run(prog, "-q", "-i", path, "-b1", "4", "-b2", "2", "-n", "1", timeout=30)
    check("bad-3.%d damaged file" % k, status in (0, 255), f"status {status}: {err[-200:]!r}")

shutil.rmtree(tmp)
finish()
