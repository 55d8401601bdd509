#!/usr/bin/python3
"""Bad input and scarce resources in quiet mode, as the user meets them: an
unreadable file gives its message, nothing on standard output and status 255,
without touching gigabytes for a lying header; output that cannot be written
and an analysis that cannot finish are reported."""
import os
import random
import resource
import shutil
import subprocess
import sys

sys.path.insert(0, os.path.dirname(__file__))
from harness import check, equal, finish, run, tga_header, workdir  # noqa: E402

prog = sys.argv[1]
tmp = workdir()
triangle = os.path.join("examples", "triangle.tga")
sanitized = "ASAN_OPTIONS" in os.environ   # its shadow memory and quarantine make resident sizes meaningless

READ_FAILED, NO_BITMAP = "   Image read failed\n", "   Failed to create image\n"
big = 46340  # about 2.1 thousand million pixels: just below the most the bitmap library accepts
cases = [
    # id, file contents (None: no such file, "DIR": a directory), last lines of standard error accepted
    ("bad-1.1 missing", None, []),
    ("bad-1.2 empty", b"", [READ_FAILED]),
    ("bad-1.3 truncated header", tga_header()[:11], [READ_FAILED]),
    ("bad-1.4 truncated pixels", tga_header() + bytes(20), [READ_FAILED]),
    ("bad-1.5 15-bit depth", tga_header(bits=15) + bytes(24), [READ_FAILED]),
    ("bad-1.6 directory", "DIR", [READ_FAILED]),
    # The quiet run holds one byte per pixel: the image may be granted and the read then fail.
    ("bad-1.7 too large", tga_header(width=65535, height=65535) + bytes(10), [READ_FAILED, NO_BITMAP]),
    # Lying headers: the bitmap (8.5 GB) may be granted, never touched, or refused.
    ("lie-1.1 true colour", tga_header(2, 24, big, big) + bytes(100), [READ_FAILED, NO_BITMAP]),
    ("lie-1.2 run-length", tga_header(10, 32, big, big) + bytes([0xFF, 1, 2, 3, 4]) * 20, [READ_FAILED, NO_BITMAP]),
    ("lie-1.3 colour-mapped", tga_header(1, 8, big, big, maptype=1, maplen=65535, mapbits=32) + bytes(64),
     [READ_FAILED, NO_BITMAP]),
]
for cid, data, last in cases:
    path = tmp if data == "DIR" else os.path.join(tmp, cid.split()[0] + ".tga")
    last = last or ['Failed to open file "%s"\n' % path]
    if isinstance(data, bytes):
        with open(path, "wb") as f:
            f.write(data)
    status, out, err = run(prog, "-q", "-i", path, "-b1", "2", timeout=30)
    check(cid, (status, out) == (255, "") and err.splitlines(True)[-1:] in [[l] for l in last],
          f"{status} {out!r} {err!r}")
# Only small processes have run so far: the largest of them stayed small.
peak = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss
check("lie-1.4 memory", sanitized or peak < 64 * 1024, f"peak resident size {peak} kB")

# A seeded stream of damaged headers and bodies: read or refused, never a crash.
rng, path = random.Random(4242), os.path.join(tmp, "damaged.tga")
good = tga_header(imagetype=10, width=8, height=8) + bytes([0x87, 0, 0, 0, 0x07] + [255] * 24) * 8
for k in range(40):
    data = bytearray(good)
    for _ in range(rng.randint(1, 6)):
        data[rng.randrange(len(data))] = rng.randrange(256)
    with open(path, "wb") as f:
        f.write(data[:rng.randint(0, len(data))])
    status, out, err = run(prog, "-q", "-i", path, "-b1", "4", "-b2", "2", "-n", "1", timeout=30)
    check("bad-2.%d damaged file" % k, status in (0, 255), f"status {status}: {err[-200:]!r}")

# Results that cannot be written: the table goes nowhere, and the user is told.
with open("/dev/full", "w") as full:
    p = subprocess.run([prog, "-q", "-i", triangle, "-n", "1"], stdout=full, stderr=subprocess.PIPE, text=True)
equal("full-1.1 standard output on a full disk", (p.returncode, p.stderr),
      (255, "Failed to write results to standard output: No space left on device\n"
            "Failed to write the estimate to standard output: No space left on device\n"))

# An inverted region with the automatic start size gives a negative start
# size, which never finishes: the user is warned at once.
p = subprocess.Popen([prog, "-q", "-i", triangle, "-sl", "2000"], stdout=subprocess.DEVNULL,
                     stderr=subprocess.PIPE, text=True)
first = p.stderr.readline()
p.kill()
p.wait()
check("edge-1.1 negative start size", first.startswith("Warning, start box size is -") and "-b1" in first, first)

shutil.rmtree(tmp)
finish()
