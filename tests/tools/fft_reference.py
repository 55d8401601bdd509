#!/usr/bin/python3
"""fft_reference.py SEED N...: per N, N lines "x y Fr Fi Ir Ii" of seeded z = x + iy, F = fft(z) (negative
exponent, unscaled) and I = ifft(z) (positive exponent, divided by N)."""
import sys

import numpy

rng = numpy.random.default_rng(int(sys.argv[1]))
for n in map(int, sys.argv[2:]):
    z = rng.standard_normal(n) + 1j * rng.standard_normal(n)
    for row in zip(z, numpy.fft.fft(z), numpy.fft.ifft(z)):
        print(" ".join(repr(float(v)) for c in row for v in (c.real, c.imag)))
