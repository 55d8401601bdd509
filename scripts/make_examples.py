#!/usr/bin/env python3
"""Writes the bundled sample images of examples/ as run-length grey TGA files.

Each is a classical fractal drawn black on white, bottom row first:
  carpet.tga   Sierpinski carpet, 729 x 729 (6 levels)   dimension ln 8 / ln 3 = 1.8928
  triangle.tga Sierpinski triangle, 1024 x 1024           dimension ln 3 / ln 2 = 1.5850
  dust.tga     Cantor dust (corners of 3 x 3), 729 x 729  dimension ln 4 / ln 3 = 1.2619
"""
import os
import struct
import sys


def carpet(x, y, n):
    while n > 1:
        n //= 3
        if (x // n) % 3 == 1 and (y // n) % 3 == 1:
            return False
    return True


def dust(x, y, n):
    while n > 1:
        n //= 3
        if (x // n) % 3 == 1 or (y // n) % 3 == 1:
            return False
    return True


def triangle(x, y, n):
    return (x & y) == 0


def rle_row(row):
    """Run-length packets of one row of grey bytes."""
    out = bytearray()
    i = 0
    while i < len(row):
        j = i
        while j + 1 < len(row) and row[j + 1] == row[i] and j - i < 127:
            j += 1
        if j > i:
            out += bytes([0x80 | (j - i), row[i]])
            i = j + 1
            continue
        j = i
        while j + 1 < len(row) and row[j + 1] != row[j] and j - i < 127:
            j += 1
        if j + 1 < len(row) and j > i:
            j -= 1  # leave the start of the next run to a run packet
        out += bytes([j - i]) + bytes(row[i:j + 1])
        i = j + 1
    return out


def write(path, n, inside):
    header = struct.pack("<BBBHHBHHHHBB", 0, 0, 11, 0, 0, 0, 0, 0, n, n, 8, 0)
    data = bytearray()
    for y in range(n):
        data += rle_row([0 if inside(x, y, n) else 255 for x in range(n)])
    with open(path, "wb") as f:
        f.write(header + data)


def main():
    out = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(__file__), "..", "examples")
    write(os.path.join(out, "carpet.tga"), 729, carpet)
    write(os.path.join(out, "triangle.tga"), 1024, triangle)
    write(os.path.join(out, "dust.tga"), 729, dust)


if __name__ == "__main__":
    main()
