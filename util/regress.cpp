// util/regress.cpp - straight-line fit by least squares.
#include "util/regress.h"

#include <cmath>

int LinRegress(const double *x, const double *y, int n, double *a, double *b, double *r)
{
    *a = *b = *r = 0;
    if (n < 2) return 0;
    double sx = 0, sy = 0, sxx = 0, syy = 0, sxy = 0;
    for (int i = 0; i < n; i++) {
        sx += x[i];
        sy += y[i];
        sxx += x[i] * x[i];
        syy += y[i] * y[i];
        sxy += x[i] * y[i];
    }
    const double vxx = sxx - sx * sx / n;
    if (vxx == 0) return 0;
    const double vyy = syy - sy * sy / n;
    const double vxy = sxy - sx * sy / n;
    *b = vxy / vxx;
    *a = sy / n - *b * sx / n;
    *r = vyy == 0 ? 1.0 : vxy / sqrt(vxx * vyy);
    return 1;
}
