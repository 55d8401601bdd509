// app/estimate.h - the fractal dimension: slope of ln N(s) against ln(1/s).
//
// Several steps are formed in single precision on purpose; the printed
// estimate depends on them.
#pragma once

#include "app/boxcount.h"

// Builds one point per distinct box size of results, in order of first
// occurrence: x = ln(1/s), y = ln of the smallest count for that size (a zero
// count after the first entry counts as 1, a first zero count gives 0). Sizes
// whose logarithms differ by less than 0.0001 share a point. x and y must
// hold one value per table entry. The plain forms read the current
// analysis (results, nresults). Returns the number of points.
int MakeLogPoints(float *x, float *y);
int MakeLogPointsOf(const BoxResult *table, int entries, float *x, float *y);
// The estimated dimension: -1.0 for fewer than 4 results entries, 0.0 for
// fewer than 3 distinct sizes or a failed fit, else the fitted slope.
double CalcSlope(void);
double SlopeOf(const BoxResult *table, int entries);
// Fits y = b*x + a in single precision (sums in double, each square and
// product in single). 1 when fitted; 0, with a = b = r = 0, when n < 2 or all
// x are equal. r is the correlation coefficient, 1 when all y are equal.
int LinRegressf(const float *x, const float *y, int n, float *a, float *b, float *r);
