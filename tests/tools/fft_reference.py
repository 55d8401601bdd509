#!/usr/bin/python3
"""Reference transforms by numpy.fft: fft_reference.py SEED N... For each N prints
N lines "x y Fr Fi Ir Ii": seeded data z = x + iy, F = fft(z) (negative exponent,
unscaled) and I = ifft(z) (positive exponent, divided by N)."""
import sys

import numpy

rng = numpy.random.default_rng(int(sys.argv[1]))
for n in map(int, sys.argv[2:]):
    z = rng.standard_normal(n) + 1j * rng.standard_normal(n)
    f, inv = numpy.fft.fft(z), numpy.fft.ifft(z)
    for k in range(n):
        print(" ".join(repr(float(v)) for v in (z[k].real, z[k].imag, f[k].real, f[k].imag, inv[k].real, inv[k].imag)))
