#!/usr/bin/python3
"""Reference solutions by numpy.linalg.solve: solve_linear.py FILE, FILE holding
blocks of "n", n lines of n coefficients (one equation each), one line of n
right-hand sides. Prints one line of solution values per system."""
import sys

import numpy as np

tokens = open(sys.argv[1]).read().split()
pos = 0
while pos < len(tokens):
    n = int(tokens[pos])
    a = np.array([float(t) for t in tokens[pos + 1:pos + 1 + n * n]]).reshape(n, n)
    b = np.array([float(t) for t in tokens[pos + 1 + n * n:pos + 1 + n * n + n]])
    pos += 1 + n * n + n
    print(" ".join(repr(float(v)) for v in np.linalg.solve(a, b)))
