#!/usr/bin/python3
"""Reference solutions of linear systems by numpy.linalg.solve.

Input (the file named as the only argument): blocks of "n", then n lines of n
coefficients (one equation per line), then one line of n right-hand sides.
Output: one line per system, the solution values in repr form.
"""
import sys

import numpy as np

with open(sys.argv[1]) as f:
    tokens = f.read().split()
pos = 0
while pos < len(tokens):
    n = int(tokens[pos])
    pos += 1
    a = np.array([float(t) for t in tokens[pos:pos + n * n]]).reshape(n, n)
    pos += n * n
    b = np.array([float(t) for t in tokens[pos:pos + n]])
    pos += n
    print(" ".join(repr(float(v)) for v in np.linalg.solve(a, b)))
