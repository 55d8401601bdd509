// util/arith.cpp - logarithm to any base, integer power, integer square root
// and factorial.
#include "util/arith.h"

#include <cmath>

double Logarithm(double x, double base)
{
    return log(x) / log(base);
}

long PowerInt(long x, long n)
{
    unsigned long p = 1;  // unsigned so that overflow wraps instead of being undefined
    for (long i = 0; i < n; i++) p *= (unsigned long)x;
    return (long)p;
}

long IntSqrt(long n)
{
    long root = 0;
    for (long bit = 16384; bit != 0; bit >>= 1) {
        long trial = root + bit;
        long sq = trial * trial;
        if (sq <= n) root = trial;
        if (sq == n) return root;
    }
    return root;
}

double Factorial(int n)
{
    double f = 1.0;
    for (int i = 2; i <= n; i++) f *= (double)i;
    return f;
}
