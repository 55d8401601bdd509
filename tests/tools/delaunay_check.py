#!/usr/bin/python3
"""delaunay_check.py FILE MODE: FILE holds "n m", n lines "x y", m lines "a b c" (point indices). Exit status 0
when every triangle is one of scipy.spatial.Delaunay's and, for MODE "full", all of them, covering the hull."""
import sys

import numpy as np
from scipy.spatial import ConvexHull, Delaunay

with open(sys.argv[1]) as f:
    n, m = (int(v) for v in f.readline().split())
    pts = np.array([[float(v) for v in f.readline().split()] for _ in range(n)])
    ours = [tuple(int(v) for v in f.readline().split()) for _ in range(m)]
mine, theirs = {frozenset(t) for t in ours}, {frozenset(t) for t in Delaunay(pts).simplices.tolist()}
extra, missing = sorted(map(sorted, mine - theirs))[:5], sorted(map(sorted, theirs - mine))[:5]
print("%d points: %d triangles, scipy %d; not scipy's %s, missing %s" % (n, len(mine), len(theirs), extra, missing))
ok = len(mine) == m and not extra
if sys.argv[2] == "full":
    tri = pts[np.array(ours)]
    d1, d2 = tri[:, 1] - tri[:, 0], tri[:, 2] - tri[:, 0]
    area, hull = 0.5 * np.abs(d1[:, 0] * d2[:, 1] - d1[:, 1] * d2[:, 0]).sum(), ConvexHull(pts).volume
    print("area %.12f, hull %.12f" % (area, hull))
    ok = ok and not missing and abs(area - hull) <= 1e-9 * hull
sys.exit(0 if ok else 1)
