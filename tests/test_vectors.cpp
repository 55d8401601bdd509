// Vectors: argument conventions, tolerances, rotation sense and length, polar round trips, interpolation end
// points, and the bounding box. Splines and Bezier curves: knots, end points, partition of unity, and the forms
// of one curve agreeing.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "util/curves.h"
#include "util/vectors.h"

static void expect_vec(const char *id, Vec3 got, Vec3 want, double tol = 1e-12)
{
    EXPECT_TRUE(fabs(got.x - want.x) <= tol && fabs(got.y - want.y) <= tol && fabs(got.z - want.z) <= tol)
        << id << ": " << got.x << " " << got.y << " " << got.z;
}

TEST(Vectors, KnownValues)
{
    const Vec3 pts[] = {{0, 0, 0}, {2, 0, 0}, {2, 4, 0}, {0, 4, 6}};
    Vec3 zero{0, 0, 0}, p{3, 4, 0}, v{3, 0, 4}, lo{1, 1, 1}, hi{1, 1, 1};
    Normalise(&zero), SetVectorLength(&p, 10), VectorPerp(&v, {0, 0, 2});
    MinMaxXYZ(&lo, &hi, {-2, 5, 1}), MinMaxXYZ(&lo, &hi, {0, -3, 4});
    const struct { const char *id; Vec3 got, want; } cases[] = {
        {"sub", VectorSub({1, 1, 1}, {3, 2, 1}), {2, 1, 0}},  // second minus first
        {"cross", CrossProduct({2, 3, 4}, {5, 6, 7}), {-3, 6, -3}},
        {"combination", VectorCombination(2, -1, 0.5, {1, 1, 1}, {3, 2, 1}, {4, 0, 2}), {1, 0, 2}},
        {"centroid", Centroid(pts, 4), {1, 2, 1.5}}, {"normalise zero", zero, {0, 0, 0}}, {"set length", p, {6, 8, 0}},
        {"perp", v, {5, 0, 0}}, {"normal", CalcNormal({0, 0, 0}, {0, 1, 0}, {1, 0, 0}), {0, 0, -1}},
        {"normal degenerate", CalcNormal({1, 1, 1}, {2, 2, 2}, {3, 3, 3}), {0, 0, 0}},
        {"rotate z", RotateZ({1, 0, 0}, M_PI / 2), {0, -1, 0}}, {"rotate x", RotateX({0, 1, 0}, M_PI / 2), {0, 0, -1}},
        {"rotate y", RotateY({0, 0, 1}, M_PI / 2), {-1, 0, 0}},
        {"rotate line", ArbitraryRotate2({2, 1, 5}, M_PI / 2, {1, 1, 0}, {1, 1, 3}), {1, 2, 5}},  // about x = y = 1
        {"box min", lo, {-2, -3, 1}}, {"box max", hi, {1, 5, 4}},
        // Interpolators pass through y1 at mu = 0 and y2 at 1; Hermite with tension 0 stays on a line where the
        // cubic overshoots, tension 1 is a smoothstep.
        {"interpolators", {CubicInterpolate(0, 1, 2, 3, 0.3), HermiteInterpolate(0, 1, 2, 3, 0.3, 0, 0),
                           HermiteInterpolate(9, 1, 2, -9, 0.5, 1, 0.4)}, {1.384, 1.3, 1.5}},
        {"interpolator ends", {CubicInterpolate(-2, 1, 4, 3, 0), CubicInterpolate(-2, 1, 4, 3, 1),
                               HermiteInterpolate(-2, 1, 4, 3, 1, -1, 0.3)}, {1, 4, 4}},
        {"angles", {CosineInterpolate(1, 4, 0.5), VectorAngle({}, {1, 0, 0}), VectorAngle({1, 2, 3}, {-1, -2, -3})},
         {2.5, 0, M_PI}},
    };
    for (const auto &c : cases) expect_vec(c.id, c.got, c.want);
    EXPECT_TRUE(std::isnan(Centroid(pts, 0).x));
    EXPECT_TRUE(VectorEqual({1, 2, 3}, {1, 2.0000005, 3}) && !VectorEqual({1, 2, 3}, {1, 2, 3.000002}));
    EXPECT_NEAR(Angle2D(-1, 0.1, -1, -0.1), 2 * atan(0.1), 1e-12);  // wraps across pi
    for (auto [dy, dx, want] : {std::tuple{1, 0, 2}, {0, -1, 4}, {0, 0, 0}, {-1, -1, 5}, {-1, 1, 7}})
        EXPECT_EQ(FowlerAngle(dy, dx), want) << dy << " " << dx;
}

TEST(Vectors, RotationAndPolarProperties)
{
    std::mt19937 gen(20240611);
    std::uniform_real_distribution<double> u(-3, 3);
    double prev = -1, r, lat, lon, bx, by, bz;
    for (int i = 0; i < 200; i++) {
        const Vec3 p{u(gen), u(gen), u(gen)}, axis{u(gen), u(gen), u(gen)};
        const double t = u(gen);
        EXPECT_NEAR(Modulus(ArbitraryRotate(p, t, axis)), Modulus(p), 1e-12) << "seed 20240611 case " << i;
        expect_vec("axis z", ArbitraryRotate(p, t, {0, 0, 2.5}), RotateZ(p, -t));  // any axis length
        expect_vec("undo", ArbitraryRotate(ArbitraryRotate(p, t, axis), -t, axis), p);
        XYZ2Polar(fabs(p.x), p.y, p.z, &r, &lat, &lon);  // x >= 0, the half-space the longitude covers
        Polar2XYZ(r, lat, lon, &bx, &by, &bz);
        EXPECT_TRUE(lon >= 0 && lon <= 180) << i;
        expect_vec("polar", {bx, by, bz}, {fabs(p.x), p.y, p.z}, 1e-7 * r);  // the short degree factors' accuracy
        const double f = FowlerAngle(sin(i * M_PI / 100), cos(i * M_PI / 100));  // rises all the way round
        EXPECT_TRUE(f > prev && f < 8) << i;
        prev = f;
    }
    double th, ph;
    XYZ2Polar(0, 0, 0, &r, &lat, &lon);
    InverseSpherical({1, 1, sqrt(2.0)}, &th, &ph);
    EXPECT_TRUE(r == 0 && lat == 0 && lon == 90 && fabs(th - M_PI * 1.25) < 1e-12 && fabs(ph - M_PI / 4) < 1e-12);
}

static const Vec3 ctrl[5] = {{0, 0, 0}, {1, 3, -1}, {4, 3, 2}, {5, -1, 0.5}, {7, 2, 1}};

static bool near(Vec3 a, Vec3 b) { return fabs(a.x - b.x) + fabs(a.y - b.y) + fabs(a.z - b.z) < 1e-12; }

TEST(Spline, KnotsBlendingAndCurve)
{
    int u[8], ub[8], want[8] = {0, 0, 0, 1, 2, 3, 3, 3};
    SplineKnots(u, 4, 3);
    SplineKnots(ub, 3, 4);  // order n + 1 with clamped knots: the Bezier curve of the same points
    for (int j = 0; j < 8; j++) EXPECT_EQ(u[j], want[j]) << j;
    for (double v : {0.0, 0.4, 2.999, 3.0}) {  // the weights sum to 1 inside [0, 3), to 0 at the last knot
        double sum = 0;
        for (int k = 0; k <= 4; k++) sum += SplineBlend(k, 3, u, v);
        EXPECT_NEAR(sum, v < 3 ? 1.0 : 0.0, 1e-12) << "v=" << v;
    }
    EXPECT_EQ(SplineBlend(0, 0, u, 0.5), 0);  // order 0 is empty, not endless recursion
    Vec3 out[8], p;
    for (Vec3 &o : out) o = {-9, -9, -9};
    SplineCurve(ctrl, 4, u, 3, out, 7);  // parameters 0, 0.5, ..., 3; the last is the last point
    for (int i = 0; i < 6; i++) EXPECT_TRUE(near(out[i], (SplinePoint(u, 4, 3, 0.5 * i, ctrl, &p), p))) << i;
    EXPECT_TRUE(near(out[6], ctrl[4]) && near(out[7], {-9, -9, -9}));
    for (double mu = 0; mu < 1; mu += 0.0625) {
        const Vec3 b4 = Bezier4(ctrl[0], ctrl[1], ctrl[2], ctrl[3], mu);
        double wsum = 0;
        for (int k = 0; k <= 4; k++) wsum += BezierBlend(k, 4, mu);
        SplinePoint(ub, 3, 4, mu, ctrl, &p);
        EXPECT_TRUE(near(p, b4) && near(Bezier(ctrl, 3, mu), b4) && fabs(wsum - 1) < 1e-12
                    && near(CubicBezier(ctrl[0], ctrl[1], ctrl[2], ctrl[3], mu), b4)
                    && near(Bezier(ctrl, 2, mu), Bezier3(ctrl[0], ctrl[1], ctrl[2], mu))) << mu;
    }
    EXPECT_TRUE(near(Bezier(ctrl, 0, 0.7), ctrl[0]) && near(Bezier(ctrl, -1, 0.5), {0, 0, 0}));
    EXPECT_TRUE(std::isnan(Bezier(ctrl, 3, 1.0).x));  // kept: mu = 1 is outside its range
    EXPECT_TRUE(near(CubicBezier(ctrl[0], ctrl[1], ctrl[2], ctrl[3], 1), ctrl[3]));
    EXPECT_TRUE(BezierBlend(0, 3, 0) == 1 && fabs(BezierBlend(2, 4, 0.5) - 6 / 16.0) < 1e-15);  // 0^0 never formed
}
