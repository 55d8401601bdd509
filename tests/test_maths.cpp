// Integer maths (util/arith.h), Bessel functions and log-gamma (util/bessel.h) and the timer (util/timer.h).
#include <gtest/gtest.h>

#include <climits>
#include <cmath>

#include "util/arith.h"
#include "util/bessel.h"
#include "util/timer.h"

TEST(Maths, KnownValuesAndLimits)
{
    const struct { const char *id; double got, want, tol; } cases[] = {
        {"pow-1.1", (double)PowerInt(5, -3), 1, 0}, {"pow-1.2", (double)PowerInt(-2, 3), -8, 0},
        {"pow-1.3", (double)PowerInt(2, 63), (double)LONG_MIN, 0},  // wraps, no undefined overflow
        {"sqrt-1.1", (double)IntSqrt(99), 9, 0}, {"sqrt-1.2", (double)IntSqrt(-5), 0, 0},
        {"sqrt-1.3", (double)IntSqrt(2000000000), 32767, 0}, {"sqrt-1.4", (double)IntSqrt(1073676289), 32767, 0},
        {"fact-1.1", Factorial(-4), 1, 0}, {"fact-1.2", Factorial(20), 2432902008176640000.0, 0},
        {"log-1.1", Logarithm(1000, 10), 3.0, 1e-12},
        {"I0(1)", BesselI0(1), 1.2660658777520082, 1e-12}, {"I0(3)", BesselI0(3), 4.880792585865024, 1e-5},
        {"J0(1)", Bessel(0, 1), 0.7651976865579666, 1e-3}, {"J2(5)", Bessel(2, 5), 0.04656511627775222, 1e-3},
        {"lgamma(5)", LnGamma(5), log(24.0), 1e-9}, {"lgamma(0.5)", LnGamma(0.5), 0.5 * log(M_PI), 1e-9},
        // Zeros: the first sample past the crossing, high by at most one step; J_1(0) = 0 is the first.
        {"zero-1.1", BesselZero(1, 0), 2.404825557695773 + 5e-4, 7e-4},
        {"zero-1.2", BesselZero(3, 1), 7.015586669815619 + 5e-4, 7e-4},
        {"zero-1.3", BesselZero(1, 1), 0.0, 0}, {"zero-1.4", BesselZero(0, 2), 0.0, 0},
    };
    for (const auto &c : cases) EXPECT_NEAR(c.got, c.want, c.tol) << c.id;
    EXPECT_TRUE(std::isinf(Factorial(171)));
    const double t0 = GetRunTime();
    EXPECT_TRUE(t0 > 1.7e9 && GetRunTime() >= t0);  // wall-clock seconds since the epoch, not process time
}
