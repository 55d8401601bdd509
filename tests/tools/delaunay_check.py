#!/usr/bin/python3
"""Checks a triangulation against scipy.spatial.Delaunay: delaunay_check.py FILE MODE.
FILE: "n m", n lines "x y", m lines "a b c" (point indices). MODE "full": exactly
scipy's triangles, covering the convex hull; "subset": each one of scipy's (a
finite enclosing triangle may miss thin hull triangles). Exit status 0 when it holds."""
import sys

import numpy as np
from scipy.spatial import ConvexHull, Delaunay

path, mode = sys.argv[1], sys.argv[2]
with open(path) as f:
    n, m = (int(v) for v in f.readline().split())
    pts = np.array([[float(v) for v in f.readline().split()] for _ in range(n)])
    ours = [tuple(int(v) for v in f.readline().split()) for _ in range(m)]
theirs = {frozenset(t) for t in Delaunay(pts).simplices.tolist()}
mine = {frozenset(t) for t in ours}
extra, missing = mine - theirs, theirs - mine
print("%d points: %d triangles, scipy %d; not in scipy's %s, missing %s"
      % (n, len(mine), len(theirs), sorted(map(sorted, extra))[:5], sorted(map(sorted, missing))[:5]))
ok = len(mine) == m and not extra
if mode == "full":
    tri = pts[np.array(ours)]
    d1, d2 = tri[:, 1] - tri[:, 0], tri[:, 2] - tri[:, 0]
    area, hull = 0.5 * np.abs(d1[:, 0] * d2[:, 1] - d1[:, 1] * d2[:, 0]).sum(), ConvexHull(pts).volume
    print("area %.12f, hull %.12f" % (area, hull))
    ok = ok and not missing and abs(area - hull) <= 1e-9 * hull
sys.exit(0 if ok else 1)
