#!/usr/bin/python3
"""Checks a triangulation against scipy.spatial.Delaunay.

Usage: delaunay_check.py FILE MODE

FILE: a line "n m", then n lines "x y", then m lines "a b c" (point indices).
MODE "full": the triangles must be exactly scipy's, and their areas must add
up to the area of the convex hull. MODE "subset": every triangle must be one
of scipy's (a triangulation inside a finite enclosing triangle may miss thin
triangles along the hull). Exit status 0 when the check holds, else nonzero.
"""
import sys

import numpy as np
from scipy.spatial import ConvexHull, Delaunay


def main():
    path, mode = sys.argv[1], sys.argv[2]
    with open(path) as f:
        n, m = (int(v) for v in f.readline().split())
        pts = np.array([[float(v) for v in f.readline().split()] for _ in range(n)])
        ours = [tuple(int(v) for v in f.readline().split()) for _ in range(m)]
    theirs = {frozenset(t) for t in Delaunay(pts).simplices.tolist()}
    mine = {frozenset(t) for t in ours}
    extra = mine - theirs
    missing = theirs - mine
    print("%d points: %d triangles, scipy %d; %d not in scipy's, %d of scipy's missing"
          % (n, len(mine), len(theirs), len(extra), len(missing)))
    ok = len(mine) == m and not extra
    if mode == "full":
        tri = pts[np.array(ours)]
        d1, d2 = tri[:, 1] - tri[:, 0], tri[:, 2] - tri[:, 0]
        area = 0.5 * np.abs(d1[:, 0] * d2[:, 1] - d1[:, 1] * d2[:, 0]).sum()
        hull = ConvexHull(pts).volume
        print("area %.12f, hull %.12f" % (area, hull))
        ok = ok and not missing and abs(area - hull) <= 1e-9 * hull
    print("not in scipy's:", sorted(map(sorted, extra))[:5], "missing:", sorted(map(sorted, missing))[:5])
    sys.exit(0 if ok else 1)


if __name__ == "__main__":
    main()
