// Complex numbers and quaternions: known values, the standard library's
// complex functions as a reference, and the established quirks.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>

#include "util/complexq.h"

namespace {

using Std = std::complex<double>;

void expect_near(const char *id, Complex got, Complex want, double tol = 1e-12)
{
    EXPECT_TRUE(fabs(got.real - want.real) <= tol && fabs(got.imag - want.imag) <= tol) << id << ": " << got.real << " "
        << got.imag;
}

void expect_near(const char *id, Quaternion got, Quaternion want, double tol = 1e-12)
{
    EXPECT_TRUE(fabs(got.w - want.w) <= tol && fabs(got.x - want.x) <= tol && fabs(got.y - want.y) <= tol &&
                fabs(got.z - want.z) <= tol) << id;
}

// Points off the axes and away from the branch cuts, in all four quadrants.
const Complex k_points[] = {{0.3, 0.4}, {-0.7, 0.2}, {1.5, -0.8}, {-2.0, -1.2},
                            {0.1, -0.05}, {2.5, 3.0}, {-0.4, -2.0}};

}  // namespace

TEST(Complex, ArithmeticAndSpecialCases)
{
    static const struct { const char *id; Complex got, want; } cases[] = {
        {"div-1", Cdiv({1, 0}, {0, 0}), {0, 0}},  // zero divisor: zero, not infinity
        {"div-2", Cdiv({1, 1}, {1, -1}), {0, 1}}, {"div-3", Cdiv({0, 0}, {2, 3}), {0, 0}},
        {"div-4", Cdiv({3, 4}, {0, 2}), {2, -1.5}},  // |v| > |u| branch
        {"divd-1", Cdivd({3, 4}, 0), {0, 0}}, {"divd-2", Cdivd({3, 4}, 2), {1.5, 2}},
        {"inv-1", Cinv({0, 0}), {0, 0}}, {"mult", Cmult({1, 2}, {3, -1}), {5, 5}}, {"sqrt", Csqrt({-4, 0}), {0, 2}},
        {"pow-1", Cpowd({0, 2}, 2), {-4, 0}}, {"pow-2", Cpowd({1, 1}, 0.5), Csqrt({1, 1})},
        {"log-1", Clog({-1, 0}), {0, M_PI}}, {"log-2", Clog({0, -2}), {log(2.0), -M_PI_2}},
    };
    for (const auto &c : cases) expect_near(c.id, c.got, c.want);
    EXPECT_TRUE(Cabs({3, 4}) == 5.0 && fabs(Cabs({3e200, 4e200}) - 5e200) < 1e188);  // no overflow in the squares
    const Complex l0 = Clog({0, 0});
    EXPECT_TRUE(std::isinf(l0.real) && l0.real < 0 && fabs(l0.imag + M_PI_2) < 1e-15);
}

TEST(Complex, FunctionsMatchStandardLibrary)
{
    static const struct { const char *id; Complex (*f)(Complex); Std (*ref)(Std); } fns[] = {
        {"exp", Cexp, [](Std z) { return std::exp(z); }}, {"log", Clog, [](Std z) { return std::log(z); }},
        {"sqrt", Csqrt, [](Std z) { return std::sqrt(z); }}, {"sin", Csin, [](Std z) { return std::sin(z); }},
        {"cos", Ccos, [](Std z) { return std::cos(z); }}, {"tan", Ctan, [](Std z) { return std::tan(z); }},
        {"sinh", Csinh, [](Std z) { return std::sinh(z); }}, {"cosh", Ccosh, [](Std z) { return std::cosh(z); }},
        {"tanh", Ctanh, [](Std z) { return std::tanh(z); }}, {"atanh", Catanh, [](Std z) { return std::atanh(z); }},
        {"asin", Casin, [](Std z) { return std::asin(z); }}, {"acos", Cacos, [](Std z) { return std::acos(z); }},
        {"atan", Catan, [](Std z) { return std::atan(z); }}, {"acosh", Cacosh, [](Std z) { return std::acosh(z); }},
    };
    for (const auto &f : fns)
        for (const Complex z : k_points) {
            // The inverse functions follow their own branches: asin and acos
            // hold in the upper half plane, atan inside the unit circle,
            // acosh in the right half plane.
            const std::string name = f.id;
            if ((name == "asin" || name == "acos") && z.imag < 0) continue;
            if (name == "atan" && Cabs(z) >= 1) continue;
            if (name == "acosh" && z.real < 0) continue;
            const Std want = f.ref(Std(z.real, z.imag));
            expect_near(f.id, f.f(z), {want.real(), want.imag()}, 1e-13 * (1 + std::abs(want)));
        }
    expect_near("real", Catan({3, 0}), {atan(3.0), 0});  // real arguments take the real functions
}

TEST(Complex, EstablishedQuirks)
{
    // Casinh adds y to the real part: asinh(i) would be (0, pi/2).
    expect_near("asinh-1.1", Casinh({0, 1}), {0, 0});
    expect_near("asinh-1.2", Casinh({0.5, 0.5}), {0.7147014716250629, 0.11915873090493305});
    // Catan's real component is held within +-pi/4: atan(1.5 - 0.8i) is
    // 1.0664915353474629 along the real axis, pi/2 further on.
    expect_near("atan-1.1", Catan({1.5, -0.8}), {1.0664915353474629 - M_PI_2, -0.21859410948882277});
}

TEST(Quaternion, Algebra)
{
    const Quaternion i = {0, 1, 0, 0}, j = {0, 0, 1, 0}, k = {0, 0, 0, 1}, one = {1, 0, 0, 0};
    const Quaternion zero = {0, 0, 0, 0};
    expect_near("q-1.1", Qmult(i, j), k);
    expect_near("q-1.2", Qmult(j, i), {0, 0, 0, -1});
    expect_near("q-1.3", Qmult(k, k), {-1, 0, 0, 0});
    expect_near("q-1.4", Qdiv(i, zero), zero);
    expect_near("q-1.6", Qsub(Qadd(i, j), j), i);
    expect_near("q-1.7", Qconj({1, 2, 3, 4}), {1, -2, -3, -4});
    EXPECT_EQ(Qmod({1, 2, 2, 4}), 5.0);

    const Quaternion qs[] = {{1, 2, 3, 4}, {-0.5, 0.1, 0, 2}, {0, 0, -3, 0}, {7, 0, 0, 0}};
    for (const Quaternion p : qs)
        for (const Quaternion q : qs) {
            expect_near("q-2.1", Qmult(q, Qinv(q)), one);
            expect_near("q-2.3", Qmult(Qdiv(p, q), q), p);  // inverse on the right
            EXPECT_NEAR(Qmod(Qmult(p, q)), Qmod(p) * Qmod(q), 1e-12) << "q-2.4";
        }

    // exp(pi * i) = -1; on the plane spanned by 1 and i it agrees with the complex exponential.
    expect_near("q-3.1", Qexp({0, M_PI, 0, 0}), {-1, 0, 0, 0});
    const Complex e = Cexp({0.3, 1.1});
    expect_near("q-3.3", Qexp({0.3, 1.1, 0, 0}), {e.real, e.imag, 0, 0});
}
