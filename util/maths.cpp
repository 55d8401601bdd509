// util/maths.cpp - timer, terminal mode, integer maths and special functions.
#include "util/maths.h"

#include <sys/time.h>
#include <termios.h>

#include <cmath>

namespace {

struct termios saved_tty;  // the settings SetKeyboardIO(1) replaced

const double bessel_step = 0.0003141592653589793;  // pi / 10000

}  // namespace

double GetRunTime(void)
{
    struct timeval tv;
    gettimeofday(&tv, nullptr);
    return tv.tv_sec + tv.tv_usec / 1000000.0;
}

int SetKeyboardIO(int flag)
{
    if (flag) {
        tcgetattr(0, &saved_tty);
        struct termios raw = saved_tty;
        raw.c_lflag &= ~(tcflag_t)ICANON;
        raw.c_cc[VMIN] = 1;
        raw.c_cc[VTIME] = 0;
        return tcsetattr(0, TCSANOW, &raw);
    }
    return tcsetattr(0, TCSANOW, &saved_tty);
}

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
