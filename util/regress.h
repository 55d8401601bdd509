// util/regress.h - straight-line fit by least squares. Pure: no allocation, no output.
#pragma once

// Fits y = a + b*x to n points from raw sums (no centring). Returns 1 when
// fitted; 0, with a = b = r = 0, when n < 2 or all x are equal. r is the
// correlation coefficient, 1 when all y are equal.
int LinRegress(const double *x, const double *y, int n, double *a, double *b, double *r);
