#!/usr/bin/python3
"""Prints the marching-cubes edge and triangle tables as C++ initialisers.

Usage: scripts/mc_tables.py TABLES.txt > tables.inc

TABLES.txt holds a line starting "# edge table" followed by 256 hexadecimal
values, then a line starting "# triangle table" followed by 256 rows of 16
edge numbers (-1 ends a row). The output is pasted into util/isosurface.cpp;
the script refuses tables whose shape is wrong.
"""
import sys


def read_tables(path):
    edges, tris, part = [], [], None
    with open(path) as f:
        for line in f:
            line = line.strip()
            if line.startswith("# edge"):
                part = "edge"
            elif line.startswith("# tri"):
                part = "tri"
            elif line and not line.startswith("#"):
                if part == "edge":
                    edges += [int(v, 16) for v in line.split()]
                elif part == "tri":
                    tris.append([int(v) for v in line.split()])
    if len(edges) != 256 or len(tris) != 256 or any(len(r) != 16 for r in tris):
        sys.exit("%s: expected 256 edge values and 256 rows of 16" % path)
    return edges, tris


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    edges, tris = read_tables(sys.argv[1])
    print("constexpr int edgeTable[256] = {")
    for k in range(0, 256, 8):
        print("    " + ", ".join("0x%03x" % v for v in edges[k:k + 8]) + ",")
    print("};")
    print("constexpr int triTable[256][16] = {")
    for row in tris:
        print("    {" + ", ".join("%d" % v for v in row) + "},")
    print("};")


if __name__ == "__main__":
    main()
