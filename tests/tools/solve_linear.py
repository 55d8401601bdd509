#!/usr/bin/python3
"""solve_linear.py FILE: FILE holds blocks of "n", n lines of n coefficients (one equation each) and n right-hand
sides; prints one line of numpy.linalg.solve's solution per block."""
import sys

import numpy as np

tokens = open(sys.argv[1]).read().split()
while tokens:
    n = int(tokens[0])
    a, b, tokens = tokens[1:1 + n * n], tokens[1 + n * n:1 + n * n + n], tokens[1 + n * n + n:]
    x = np.linalg.solve(np.array(a, dtype=float).reshape(n, n), np.array(b, dtype=float))
    print(" ".join(repr(float(v)) for v in x))
