// util/bessel.cpp - Bessel functions (series and integral forms, zeros) and
// log-gamma (Lanczos).
#include "util/bessel.h"

#include <cmath>

namespace {

const double bessel_step = 0.0003141592653589793;  // pi / 10000

}  // namespace

double BesselI0(double x)
{
    static constexpr double denom[9] = {1.0,         4.0,           64.0,
                                        2304.0,      147456.0,      14745600.0,
                                        2123366400.0, 416179814400.0, 106542032486400.0};
    const double y = x * x;
    double term = 1.0, sum = 0.0;
    for (double d : denom) {
        sum += term / d;  // (x/2)^(2k) / (k!)^2 = x^(2k) / (4^k (k!)^2)
        term *= y;
    }
    return sum;
}

double Bessel(int n, double x)
{
    double sum = 0.0;
    double t = 0.0;
    do {
        sum += cos(x * sin(t) - n * t);
        t += bessel_step;
    } while (t < M_PI);
    return sum * bessel_step / M_PI;
}

double BesselZero(int k, int n)
{
    if (k < 1) return 0.0;
    double x;
    int sign, count;
    if (fabs(Bessel(n, 0.0)) < 0.001) {
        if (k == 1) return 0.0;
        sign = Bessel(n, 0.001) < 0 ? -1 : 1;
        count = 1;
        x = 0.002;
    } else {
        sign = 1;
        count = 0;
        x = 0.001;
    }
    while (x < 100) {
        const int s = Bessel(n, x) < 0 ? -1 : 1;
        if (s != sign) {
            if (count + 1 >= k) return x;
            count++;
        }
        x += 0.001;
        sign = s;
    }
    return -1.0;
}

double LnGamma(double x)
{
    static constexpr double c[6] = {76.18009172947146,     -86.50532032941678,
                                    24.01409824083091,     -1.231739572450155,
                                    0.001208650973866179, -0.000005395239384953};
    double tmp = x + 5.5;
    tmp = (x + 0.5) * log(tmp) - tmp;
    double ser = 1.000000000190015;
    double d = x;
    for (double cj : c) {
        d += 1.0;
        ser += cj / d;
    }
    return tmp + log(2.5066282746310007 * ser / x);
}
