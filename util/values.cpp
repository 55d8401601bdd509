// util/values.cpp - clipping a value into a range, and exchanging two values.
#include "util/values.h"

int ClipInteger(int *v, int lower, int upper)
{
    if (*v < lower) {
        *v = lower;
        return 1;
    }
    if (*v > upper) {
        *v = upper;
        return 1;
    }
    return 0;
}

int ClipDouble(double *v, double upper, double lower)
{
    if (lower > *v) {
        *v = lower;
        return 1;
    }
    if (*v > upper) {
        *v = upper;
        return 1;
    }
    return 0;
}

void SwapDouble(double *a, double *b)
{
    const double t = *a;
    *a = *b;
    *b = t;
}
