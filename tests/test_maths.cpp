// Integer maths, special functions and the timer.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>

#include "util/arith.h"
#include "util/special.h"
#include "util/timer.h"

TEST(IntegerMaths, PowerSqrtFactorial)
{
    const struct { const char *id; long x, n, want; } pw[] = {
        {"pow-1.1", 5, 0, 1}, {"pow-1.2", 5, -3, 1}, {"pow-1.3", 3, 4, 81},
        {"pow-1.4", -2, 3, -8}, {"pow-1.5", 2, 63, LONG_MIN},
    };
    for (const auto &c : pw) EXPECT_EQ(PowerInt(c.x, c.n), c.want) << c.id;

    const struct { const char *id; long n, want; } sq[] = {
        {"sqrt-1.1", 16, 4}, {"sqrt-1.2", 15, 3}, {"sqrt-1.3", 0, 0}, {"sqrt-1.4", 1, 1},
        {"sqrt-1.5", 2000000000, 32767}, {"sqrt-1.6", -5, 0}, {"sqrt-1.7", 1073741823, 32767},
        {"sqrt-1.8", 1073676289, 32767}, {"sqrt-1.9", 99, 9},
    };
    for (const auto &c : sq) EXPECT_EQ(IntSqrt(c.n), c.want) << c.id;

    const struct { int n; double want; } fact[] = {{0, 1}, {1, 1}, {-4, 1}, {5, 120}, {20, 2432902008176640000.0}};
    for (const auto &c : fact) EXPECT_EQ(Factorial(c.n), c.want) << c.n;
    EXPECT_TRUE(std::isinf(Factorial(171)));
    EXPECT_NEAR(Logarithm(8, 2), 3.0, 1e-12);
    EXPECT_NEAR(Logarithm(1000, 10), 3.0, 1e-12);
}

TEST(SpecialFunctions, KnownValues)
{
    // Reference values of I0, J_n and ln gamma to the accuracy each method has.
    const struct { const char *id; double got, want, tol; } cases[] = {
        {"I0(0)", BesselI0(0), 1.0, 1e-15},          {"I0(1)", BesselI0(1), 1.2660658777520082, 1e-12},
        {"I0(3)", BesselI0(3), 4.880792585865024, 1e-5}, {"J0(0)", Bessel(0, 0), 1.0, 1e-3},
        {"J0(1)", Bessel(0, 1), 0.7651976865579666, 1e-3}, {"J1(2)", Bessel(1, 2), 0.5767248077568734, 1e-3},
        {"J2(5)", Bessel(2, 5), 0.04656511627775222, 1e-3}, {"lgamma(1)", LnGamma(1), 0.0, 1e-9},
        {"lgamma(5)", LnGamma(5), log(24.0), 1e-9},   {"lgamma(0.5)", LnGamma(0.5), 0.5 * log(M_PI), 1e-9},
    };
    for (const auto &c : cases) EXPECT_NEAR(c.got, c.want, c.tol) << c.id;
}

TEST(SpecialFunctions, BesselZeros)
{
    // The first sample past the crossing: high by at most one step.
    const struct { const char *id; int k, n; double want; } zs[] = {
        {"zero-1.1", 1, 0, 2.404825557695773}, {"zero-1.2", 2, 1, 3.831705970207512},
        {"zero-1.3", 2, 0, 5.520078110286311}, {"zero-1.4", 3, 1, 7.015586669815619},
    };
    for (const auto &c : zs) {
        const double z = BesselZero(c.k, c.n);
        EXPECT_GE(z, c.want - 2e-4) << c.id;
        EXPECT_LE(z, c.want + 1.2e-3) << c.id;
    }
    EXPECT_EQ(BesselZero(1, 1), 0.0);  // J_1(0) = 0 is the first zero
    EXPECT_EQ(BesselZero(0, 2), 0.0);
}

TEST(Timer, WallClock)
{
    const double t0 = GetRunTime(), t1 = GetRunTime();
    EXPECT_GT(t0, 1.7e9);  // seconds since the epoch, not process time
    EXPECT_GE(t1, t0);
}
