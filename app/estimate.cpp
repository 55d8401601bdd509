// app/estimate.cpp - the dimension estimate and its single-precision fit.
#include "app/estimate.h"

#include <cmath>
#include <vector>


int MakeLogPoints(float *x, float *y)
{
    return MakeLogPointsOf(results, nresults, x, y);
}

int MakeLogPointsOf(const BoxResult *table, int entries, float *x, float *y)
{
    int n = 0;
    for (int i = 0; i < entries; i++) {
        const int s = table[i].size, c = table[i].count;
        const double xd = log(1.0 / s);
        float cand = c > 0 ? (float)log((double)(float)c) : 0.0f;
        int last = -1;
        for (int j = 0; j < n; j++) {
            if (fabs((double)((float)xd - x[j])) < 0.0001) {
                if (y[j] < cand) cand = y[j];
                last = j;
            }
        }
        if (last >= 0) {
            y[last] = cand;
            continue;
        }
        x[n] = (float)log(1.0 / (double)(float)s);
        y[n] = c > 0 ? cand : 0.0f;
        n++;
    }
    return n;
}

double CalcSlope(void)
{
    return SlopeOf(results, nresults);
}

double SlopeOf(const BoxResult *table, int entries)
{
    if (entries < 4) return -1.0;
    std::vector<float> x((size_t)entries), y((size_t)entries);
    const int n = MakeLogPointsOf(table, entries, x.data(), y.data());
    float a, b, r;
    if (n >= 3 && LinRegressf(x.data(), y.data(), n, &a, &b, &r)) return (double)b;
    return 0.0;
}

int LinRegressf(const float *x, const float *y, int n, float *a, float *b, float *r)
{
    *a = *b = *r = 0;
    if (n < 2) return 0;
    double sx = 0, sy = 0, sxx = 0, syy = 0, sxy = 0;
    for (int i = 0; i < n; i++) {
        sx += x[i];
        sy += y[i];
        sxx += (float)(x[i] * x[i]);
        syy += (float)(y[i] * y[i]);
        sxy += (float)(x[i] * y[i]);
    }
    const double vxx = sxx - sx * sx / n;
    if (vxx == 0) return 0;
    const double vyy = syy - sy * sy / n;
    const double vxy = sxy - sy * sx / n;
    *b = (float)(vxy / vxx);
    *a = (float)(sy / n - *b * sx / n);
    *r = vyy == 0 ? 1.0f : (float)(vxy / sqrt(vxx * vyy));
    return 1;
}
