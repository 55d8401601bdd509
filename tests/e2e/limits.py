#!/usr/bin/python3
"""Scarce resources in quiet mode: results that cannot be written are reported,
and headers that claim far more pixels than the file holds are refused without
the program first touching gigabytes of memory."""
import os
import resource
import shutil
import struct
import subprocess
import sys

sys.path.insert(0, os.path.dirname(__file__))
from harness import check, finish, run, workdir  # noqa: E402

prog = sys.argv[1]
tmp = workdir()
# The address sanitizer keeps freed memory in quarantine and maps shadow
# memory: resident sizes mean nothing under it.
sanitized = "ASAN_OPTIONS" in os.environ


def header(imagetype, bits, width, height, maptype=0, maplen=0, mapbits=0):
    return struct.pack("<BBBHHBHHHHBB", 0, maptype, imagetype, 0, maplen, mapbits, 0, 0,
                       width, height, bits, 0)


def write(name, data):
    path = os.path.join(tmp, name)
    with open(path, "wb") as f:
        f.write(data)
    return path


def run_rss(*args):
    """Like run, with the peak resident size of the child in kB."""
    pid = os.fork()
    if pid == 0:
        out = os.open(os.path.join(tmp, "out"), os.O_WRONLY | os.O_CREAT | os.O_TRUNC)
        err = os.open(os.path.join(tmp, "err"), os.O_WRONLY | os.O_CREAT | os.O_TRUNC)
        os.dup2(out, 1)
        os.dup2(err, 2)
        try:
            os.execv(prog, [prog, *args])
        finally:
            os._exit(127)
    _, status, usage = os.wait4(pid, 0)
    with open(os.path.join(tmp, "out"), encoding="latin-1") as f:
        out = f.read()
    with open(os.path.join(tmp, "err"), encoding="latin-1") as f:
        err = f.read()
    return os.waitstatus_to_exitcode(status), out, err, usage.ru_maxrss


# Lying headers: about 2.1 thousand million pixels (8.5 GB of bitmap, just
# below the largest count the bitmap library accepts) over a few bytes. The
# bitmap may be granted (it is never touched) or refused; either way the load
# fails at once and only a few megabytes are ever resident.
READ_FAILED, NO_BITMAP = "   Image read failed\n", "   Failed to create image\n"
big = 46340
lies = [
    ("lie-1.1 true colour", header(2, 24, big, big) + bytes(100)),
    ("lie-1.3 run-length", header(10, 32, big, big) + bytes([0xFF, 1, 2, 3, 4]) * 20),
    ("lie-1.5 colour-mapped", header(1, 8, big, big, maptype=1, maplen=65535, mapbits=32) + bytes(64)),
]
for cid, data in lies:
    path = write(cid.split()[0] + ".tga", data)
    status, out, err, rss = run_rss("-q", "-i", path, "-b1", "2")
    check(cid, status == 255 and out == "" and err.splitlines(True)[-1:] in ([READ_FAILED], [NO_BITMAP]),
          f"{status} {out!r} {err!r}")
    check(cid + " memory", sanitized or rss < 64 * 1024, f"peak resident size {rss} kB")

# A machine without the memory: a 16384 x 16384 image (256 MB of black/white
# image in a quiet run, 8 MB on disk) under a 192 MB address-space limit is
# refused with the message and status of a failed load, not an abort. (Not
# under the address sanitizer, which reserves terabytes of address space at
# start.)
if not sanitized:
    side = 16384
    row = (bytes([0xFF]) + bytes([255, 255, 255])) * (side // 128)
    path = write("large.tga", header(10, 24, side, side) + row * side)
    limit = 192 << 20
    p = subprocess.run([prog, "-q", "-i", path], capture_output=True, timeout=60,
                       preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (limit, limit)))
    check("mem-1.1 bitmap beyond the address space",
          (p.returncode, p.stdout, p.stderr.decode().splitlines(True)[-1:]) == (255, b"", [NO_BITMAP]),
          (p.returncode, p.stderr.decode()[-200:]))

# Results that cannot be written: the table goes nowhere, and the user is told.
example = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "examples", "triangle.tga")
with open("/dev/full", "w") as full:
    p = subprocess.run([prog, "-q", "-i", example, "-n", "1"], stdout=full, stderr=subprocess.PIPE)
check("full-1.1 standard output on a full disk",
      "Failed to write results to standard output: No space left on device\n" in p.stderr.decode()
      and "Failed to write the estimate to standard output" in p.stderr.decode() and p.returncode == 255,
      (p.returncode, p.stderr.decode()[-300:]))

# Region edges at the int limits: the grid corners never overflow, the boxes
# miss the region, and the analysis finishes.
for args in (["-sl", "2147483647", "-b1", "2147483647"], ["-st", "2147483647", "-sb", "-2147483648", "-b1", "40"]):
    status, out, err = run(prog, "-q", "-i", example, "-n", "2", *args, timeout=30)
    check("edge-1.1 region " + " ".join(args), status == 0 and "Estimated fractal dimension" in out,
          (status, out[-200:], err[-200:]))

# An inverted region with the automatic start size gives a negative start
# size, which never finishes: the user is warned at once.
p = subprocess.Popen([prog, "-q", "-i", example, "-sl", "2000"], stdout=subprocess.DEVNULL,
                     stderr=subprocess.PIPE)
first = p.stderr.readline().decode()
p.kill()
p.wait()
check("edge-1.1 negative start size warned",
      first.startswith("Warning, start box size is -") and "-b1" in first, first)

shutil.rmtree(tmp)
finish()
