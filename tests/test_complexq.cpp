// Complex numbers and quaternions: the standard library's complex functions as the reference, the special cases
// it does not cover, the established quirks, and quaternion algebra.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>

#include "util/complexq.h"

using Std = std::complex<double>;

static void expect_near(const char *id, Complex got, Std want, double tol = 1e-12)
{
    EXPECT_TRUE(std::abs(Std(got.real, got.imag) - want) <= tol) << id << ": " << got.real << " " << got.imag;
}

TEST(Complex, AgainstStandardLibraryAndSpecialCases)
{
    // Points off the axes and away from the branch cuts; the inverse functions follow their own branches:
    // asin and acos hold in the upper half plane, atan inside the unit circle, acosh in the right half plane.
    const Complex pts[] = {{0.3, 0.4}, {-0.7, 0.2}, {1.5, -0.8}, {-2.0, -1.2}, {0.1, -0.05}, {2.5, 3.0}, {-0.4, -2.0}};
    auto upper = [](Complex z) { return z.imag >= 0; };
#define REF(name, f, ...) {#name, f, [](Std z) { return std::name(z); }, __VA_ARGS__}
    static const struct { const char *id; Complex (*f)(Complex); Std (*ref)(Std); bool (*ok)(Complex); } fns[] = {
        REF(exp, Cexp, nullptr), REF(log, Clog, nullptr), REF(sqrt, Csqrt, nullptr), REF(sin, Csin, nullptr),
        REF(cos, Ccos, nullptr), REF(tan, Ctan, nullptr), REF(sinh, Csinh, nullptr), REF(cosh, Ccosh, nullptr),
        REF(tanh, Ctanh, nullptr), REF(atanh, Catanh, nullptr), REF(asin, Casin, upper), REF(acos, Cacos, upper),
        REF(atan, Catan, [](Complex z) { return Cabs(z) < 1; }),
        REF(acosh, Cacosh, [](Complex z) { return z.real >= 0; }),
    };
#undef REF
    for (const auto &f : fns)
        for (const Complex z : pts) {
            const Std want = f.ref(Std(z.real, z.imag));
            if (!f.ok || f.ok(z)) expect_near(f.id, f.f(z), want, 1e-13 * (1 + std::abs(want)));
        }
    static const struct { const char *id; Complex got; Std want; } cases[] = {
        {"div by 0", Cdiv({1, 0}, {0, 0}), 0}, {"divd by 0", Cdivd({3, 4}, 0), 0}, {"inv 0", Cinv({0, 0}), 0},
        {"div", Cdiv({3, 4}, {0, 2}), {2, -1.5}}, {"divd", Cdivd({3, 4}, 2), {1.5, 2}}, {"pow", Cpowd({0, 2}, 2), -4},
        {"mult", Cmult({1, 2}, {3, -1}), {5, 5}}, {"log axis", Clog({0, -2}), {log(2.0), -M_PI_2}},
        {"atan real", Catan({3, 0}), atan(3.0)}, {"div", Cdiv({1, 1}, {1, -1}), {0, 1}},
        {"log cut", Clog({-1, 0}), {0, M_PI}},
        // Casinh adds y to the real part; Catan's real component is held within +-pi/4.
        {"asinh quirk", Casinh({0.5, 0.5}), {0.7147014716250629, 0.11915873090493305}},
        {"atan quirk", Catan({1.5, -0.8}), {1.0664915353474629 - M_PI_2, -0.21859410948882277}},
    };
    for (const auto &c : cases) expect_near(c.id, c.got, c.want);
    EXPECT_TRUE(Cabs({3, 4}) == 5.0 && fabs(Cabs({3e200, 4e200}) - 5e200) < 1e188);  // no overflow in the squares
    const Complex l0 = Clog({0, 0});
    EXPECT_TRUE(std::isinf(l0.real) && l0.real < 0 && fabs(l0.imag + M_PI_2) < 1e-15);
}

TEST(Quaternion, Algebra)
{
    auto near = [](Quaternion a, Quaternion b) {
        return fabs(a.w - b.w) < 1e-12 && fabs(a.x - b.x) < 1e-12 && fabs(a.y - b.y) < 1e-12 && fabs(a.z - b.z) < 1e-12;
    };
    const Quaternion i = {0, 1, 0, 0}, j = {0, 0, 1, 0}, k = {0, 0, 0, 1}, zero = {0, 0, 0, 0};
    EXPECT_TRUE(near(Qmult(i, j), k) && near(Qmult(j, i), {0, 0, 0, -1}) && near(Qmult(k, k), {-1, 0, 0, 0}));
    EXPECT_TRUE(near(Qdiv(i, zero), zero) && near(Qsub(Qadd(i, j), j), i) && near(Qconj({1, 2, 3, 4}), {1, -2, -3, -4})
                && Qmod({1, 2, 2, 4}) == 5.0);
    const Quaternion qs[] = {{1, 2, 3, 4}, {-0.5, 0.1, 0, 2}, {0, 0, -3, 0}, {7, 0, 0, 0}};
    for (const Quaternion p : qs)
        for (const Quaternion q : qs)  // inverse on the right
            EXPECT_TRUE(near(Qmult(q, Qinv(q)), {1, 0, 0, 0}) && near(Qmult(Qdiv(p, q), q), p)
                        && fabs(Qmod(Qmult(p, q)) - Qmod(p) * Qmod(q)) < 1e-12);
    const Complex e = Cexp({0.3, 1.1});  // on the plane of 1 and i it is the complex exponential
    EXPECT_TRUE(near(Qexp({0, M_PI, 0, 0}), {-1, 0, 0, 0}) && near(Qexp({0.3, 1.1, 0, 0}), {e.real, e.imag, 0, 0}));
}
