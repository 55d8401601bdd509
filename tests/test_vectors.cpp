// Vectors: argument conventions, tolerances, rotation sense and length, polar
// round trips, interpolation end points, and the bounding box.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

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
    Normalise(&zero);
    SetVectorLength(&p, 10);
    VectorPerp(&v, {0, 0, 2});
    MinMaxXYZ(&lo, &hi, {-2, 5, 1});
    MinMaxXYZ(&lo, &hi, {0, -3, 4});
    const struct { const char *id; Vec3 got, want; } cases[] = {
        {"sub", VectorSub({1, 1, 1}, {3, 2, 1}), {2, 1, 0}},  // second minus first
        {"cross", CrossProduct({2, 3, 4}, {5, 6, 7}), {-3, 6, -3}},
        {"combination", VectorCombination(2, -1, 0.5, {1, 1, 1}, {3, 2, 1}, {4, 0, 2}), {1, 0, 2}},
        {"centroid", Centroid(pts, 4), {1, 2, 1.5}}, {"normalise zero", zero, {0, 0, 0}},
        {"set length", p, {6, 8, 0}}, {"perp", v, {5, 0, 0}},
        {"normal", CalcNormal({0, 0, 0}, {0, 1, 0}, {1, 0, 0}), {0, 0, -1}},
        {"normal degenerate", CalcNormal({1, 1, 1}, {2, 2, 2}, {3, 3, 3}), {0, 0, 0}},
        {"rotate z", RotateZ({1, 0, 0}, M_PI / 2), {0, -1, 0}}, {"rotate x", RotateX({0, 1, 0}, M_PI / 2), {0, 0, -1}},
        {"rotate y", RotateY({0, 0, 1}, M_PI / 2), {-1, 0, 0}},
        // About the line through (1,1,0) parallel to z: (2,1,5) turns to (1,2,5).
        {"rotate line", ArbitraryRotate2({2, 1, 5}, M_PI / 2, {1, 1, 0}, {1, 1, 3}), {1, 2, 5}},
        {"box min", lo, {-2, -3, 1}}, {"box max", hi, {1, 5, 4}},
    };
    for (const auto &c : cases) expect_vec(c.id, c.got, c.want);
    EXPECT_TRUE(std::isnan(Centroid(pts, 0).x));
    EXPECT_TRUE(VectorEqual({1, 2, 3}, {1, 2.0000005, 3}) && !VectorEqual({1, 2, 3}, {1, 2, 3.000002}));
    EXPECT_EQ(VectorAngle({0, 0, 0}, {1, 0, 0}), 0);
    EXPECT_DOUBLE_EQ(VectorAngle({1, 2, 3}, {-2, -4, -6}), M_PI);
    EXPECT_NEAR(Angle2D(-1, 0.1, -1, -0.1), 2 * atan(0.1), 1e-12);  // wraps across pi
    const struct { double dy, dx, want; } fa[] = {{1, 0, 2}, {0, -1, 4}, {0, 0, 0}, {-1, -1, 5}, {-1, 1, 7}};
    for (const auto &c : fa) EXPECT_DOUBLE_EQ(FowlerAngle(c.dy, c.dx), c.want) << c.dy << " " << c.dx;
    // Interpolators pass through y1 at mu = 0 and y2 at 1; Hermite with tension 0
    // stays on a line where the cubic overshoots, tension 1 is a smoothstep.
    EXPECT_TRUE(CubicInterpolate(-2, 1, 4, 3, 0) == 1 && CubicInterpolate(-2, 1, 4, 3, 1) == 4);
    EXPECT_NEAR(HermiteInterpolate(-2, 1, 4, 3, 1, -1, 0.3), 4, 1e-12);
    EXPECT_NEAR(CubicInterpolate(0, 1, 2, 3, 0.3), 1.384, 1e-12);
    EXPECT_NEAR(HermiteInterpolate(0, 1, 2, 3, 0.3, 0, 0), 1.3, 1e-12);
    EXPECT_NEAR(HermiteInterpolate(9, 1, 2, -9, 0.5, 1, 0.4), 1.5, 1e-12);
    EXPECT_NEAR(CosineInterpolate(1, 4, 0.5), 2.5, 1e-12);
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
        // Polar round trips over x >= 0, the half-space the longitude covers,
        // to the short degree factors' accuracy.
        XYZ2Polar(fabs(p.x), p.y, p.z, &r, &lat, &lon);
        EXPECT_TRUE(lon >= 0 && lon <= 180) << i;
        Polar2XYZ(r, lat, lon, &bx, &by, &bz);
        expect_vec("polar", {bx, by, bz}, {fabs(p.x), p.y, p.z}, 1e-7 * r);
        // FowlerAngle rises monotonically all the way round.
        const double f = FowlerAngle(sin(i * M_PI / 100), cos(i * M_PI / 100));
        EXPECT_TRUE(f > prev && f < 8) << i;
        prev = f;
    }
    XYZ2Polar(0, 0, 0, &r, &lat, &lon);
    EXPECT_TRUE(r == 0 && lat == 0 && lon == 90);
    double th, ph;
    InverseSpherical({1, 1, sqrt(2.0)}, &th, &ph);
    EXPECT_TRUE(fabs(th - M_PI * 1.25) < 1e-12 && fabs(ph - M_PI / 4) < 1e-12);
}
