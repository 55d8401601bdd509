#!/usr/bin/python3
"""A 16384 x 16384 image (over a gigabyte of pixel buffers, a few megabytes as a
run-length file, written byte by byte) loads and analyses correctly in quiet mode."""
import os
import shutil
import sys

sys.path.insert(0, os.path.dirname(__file__))
from harness import DATA, equal, finish, run, tga_header, workdir  # noqa: E402

prog, tmp, side = sys.argv[1], workdir(), 16384

# White, except the top row and the rightmost column, which are black: a
# structure of dimension 1 that only a complete, correctly ordered read of the
# last row and of every row's last pixel can show.
WHITE, BLACK = bytes([255, 255, 255]), bytes([0, 0, 0])
row = (bytes([0xFF]) + WHITE) * (side // 128 - 1) + bytes([0xFE]) + WHITE + bytes([0x80]) + BLACK
top = (bytes([0xFF]) + BLACK) * (side // 128)
path = os.path.join(tmp, "large.tga")
with open(path, "wb") as f:
    f.write(tga_header(10, 24, side, side))
    f.write(row * (side - 1) + top)

status, out, err = run(prog, "-q", "-i", path, "-b1", "4096", "-b2", "512", "-bf", "2", "-n", "1",
                       frozen=True, timeout=110)
# Each count is near 2 * 16384 / size: one row of boxes holds the top row, one column the right column.
with open(os.path.join(DATA, "quiet-large.out")) as f:
    equal("large-1.1 status, output", (status, out, err), (0, f.read(), ""))

shutil.rmtree(tmp)
finish()
