// Vectors: argument conventions, tolerances, rotation sense and length,
// polar round trips and interpolation end points.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "util/vectors.h"

static void expect_vec(const char *id, Vec3 got, Vec3 want, double tol = 1e-12)
{
    EXPECT_NEAR(got.x, want.x, tol) << id;
    EXPECT_NEAR(got.y, want.y, tol) << id;
    EXPECT_NEAR(got.z, want.z, tol) << id;
}

TEST(Vectors, ArithmeticAndNormals)
{
    expect_vec("vec-1.1", VectorSub({1, 1, 1}, {3, 2, 1}), {2, 1, 0});  // second minus first
    expect_vec("vec-1.2", CrossProduct({2, 3, 4}, {5, 6, 7}), {-3, 6, -3});
    expect_vec("vec-1.3", VectorCombination(2, -1, 0.5, {1, 1, 1}, {3, 2, 1}, {4, 0, 2}), {1, 0, 2});
    EXPECT_EQ(VectorLength({1, 2, 3}, {4, 6, 3}), 5);
    const Vec3 pts[] = {{0, 0, 0}, {2, 0, 0}, {2, 4, 0}, {0, 4, 6}};
    expect_vec("vec-1.4", Centroid(pts, 4), {1, 2, 1.5});
    EXPECT_TRUE(std::isnan(Centroid(pts, 0).x));

    Vec3 p{0, 0, 0};
    Normalise(&p);
    expect_vec("vec-1.5", p, {0, 0, 0});
    p = {3, 4, 0};
    SetVectorLength(&p, 10);
    expect_vec("vec-1.6", p, {6, 8, 0});
    EXPECT_TRUE(VectorEqual({1, 2, 3}, {1, 2.0000005, 3}));
    EXPECT_FALSE(VectorEqual({1, 2, 3}, {1, 2, 3.000002}));

    EXPECT_EQ(VectorAngle({0, 0, 0}, {1, 0, 0}), 0);
    EXPECT_DOUBLE_EQ(VectorAngle({1, 2, 3}, {-2, -4, -6}), M_PI);
    EXPECT_NEAR(VectorAngle({1, 0, 0}, {1, 1, 0}), M_PI / 4, 1e-12);
    expect_vec("norm-1.1", CalcNormal({0, 0, 0}, {0, 1, 0}, {1, 0, 0}), {0, 0, -1});
    expect_vec("norm-1.2", CalcNormal({1, 1, 1}, {2, 2, 2}, {3, 3, 3}), {0, 0, 0});
    Vec3 v{3, 0, 4};
    VectorPerp(&v, {0, 0, 2});
    expect_vec("perp-1.1", v, {5, 0, 0});
    v = {0, 0, 4};
    VectorPerp(&v, {0, 0, 1});
    expect_vec("perp-1.2", v, {0, 0, 0});
}

TEST(Vectors, PlaneAngles)
{
    EXPECT_NEAR(Angle2D(0, 1, 1, 0), -M_PI / 2, 1e-12);
    EXPECT_NEAR(Angle2D(-1, 0.1, -1, -0.1), 2 * atan(0.1), 1e-12);  // wraps across pi
    const struct { const char *id; double dy, dx, want; } fa[] = {
        {"fowler-1.1", 1, 0, 2}, {"fowler-1.2", 0, -1, 4}, {"fowler-1.3", 0, 0, 0},
        {"fowler-1.4", -1, 0, 6}, {"fowler-1.5", -1, -1, 5}, {"fowler-1.6", -1, 1, 7},
    };
    for (const auto &c : fa) EXPECT_DOUBLE_EQ(FowlerAngle(c.dy, c.dx), c.want) << c.id;
    double prev = -1;  // monotonic in the true angle all the way round
    for (int i = 0; i < 720; i++) {
        const double f = FowlerAngle(sin(i * M_PI / 360), cos(i * M_PI / 360));
        EXPECT_TRUE(f > prev && f < 8) << "fowler-2." << i;
        prev = f;
    }
}

TEST(Vectors, Rotations)
{
    expect_vec("rot-1.1", RotateZ({1, 0, 0}, M_PI / 2), {0, -1, 0});
    expect_vec("rot-1.2", RotateX({0, 1, 0}, M_PI / 2), {0, 0, -1});
    expect_vec("rot-1.3", RotateY({0, 0, 1}, M_PI / 2), {-1, 0, 0});
    const Vec2 r2 = Vector2DRotate(1, 0, M_PI / 2);
    expect_vec("rot-1.4", {r2.x, r2.y, 0}, {0, -1, 0});
    // About the line through (1,1,0) parallel to z: (2,1,5) turns to (1,2,5).
    expect_vec("rot-1.5", ArbitraryRotate2({2, 1, 5}, M_PI / 2, {1, 1, 0}, {1, 1, 3}), {1, 2, 5});

    std::mt19937 gen(20240611);
    std::uniform_real_distribution<double> u(-3, 3);
    for (int i = 0; i < 200; i++) {
        const Vec3 p{u(gen), u(gen), u(gen)}, axis{u(gen), u(gen), u(gen)};
        const double t = u(gen), len = Modulus(p);
        EXPECT_NEAR(Modulus(ArbitraryRotate(p, t, axis)), len, 1e-12) << "rot-2." << i;
        // The axis rotations agree with it (one axis not of unit length).
        expect_vec("rot-3", ArbitraryRotate(p, t, {0, 0, 2.5}), RotateZ(p, -t));
        expect_vec("rot-4", ArbitraryRotate(p, t, {1, 0, 0}), RotateX(p, -t));
        expect_vec("rot-5", ArbitraryRotate(p, t, {0, 1, 0}), RotateY(p, -t));
        expect_vec("rot-6", ArbitraryRotate(ArbitraryRotate(p, t, axis), -t, axis), p);
        expect_vec("rot-7", ArbitraryRotate(VectorMul(axis, 0.7), t, axis), VectorMul(axis, 0.7));
    }
}

TEST(Vectors, PolarConversions)
{
    double r, lat, lon;
    XYZ2Polar(0, 0, 0, &r, &lat, &lon);
    EXPECT_TRUE(r == 0 && lat == 0 && lon == 90);
    XYZ2Polar(0, 0, -2, &r, &lat, &lon);  // on the axis
    EXPECT_TRUE(r == 2 && lon == 90);
    EXPECT_NEAR(lat, -90, 1e-5);
    XYZ2Polar(0, 1, 0, &r, &lat, &lon);
    EXPECT_NEAR(lon, 180, 1e-5);

    // Round trips over x >= 0, the half-space the longitude covers; the short
    // degree factors bound the agreement.
    std::mt19937 gen(7);
    std::uniform_real_distribution<double> u(-5, 5);
    for (int i = 0; i < 200; i++) {
        const double x = fabs(u(gen)), y = u(gen), z = u(gen);
        double bx, by, bz;
        XYZ2Polar(x, y, z, &r, &lat, &lon);
        EXPECT_TRUE(lon >= 0 && lon <= 180) << "polar-2." << i;
        Polar2XYZ(r, lat, lon, &bx, &by, &bz);
        expect_vec("polar-3", {bx, by, bz}, {x, y, z}, 1e-7 * r);
    }

    double th, ph;
    InverseSpherical({-3, 0, 0}, &th, &ph);  // atan2(0, -3) + pi
    EXPECT_NEAR(th, 2 * M_PI, 1e-12);
    InverseSpherical({1, 1, sqrt(2.0)}, &th, &ph);
    EXPECT_NEAR(th, M_PI * 1.25, 1e-12);
    EXPECT_NEAR(ph, M_PI / 4, 1e-12);
}

TEST(Vectors, Interpolation)
{
    // Every interpolator passes through y1 at mu = 0 and y2 at mu = 1.
    for (double tb : {-1.0, 0.0, 0.5, 1.0}) {
        EXPECT_NEAR(HermiteInterpolate(-2, 1, 4, 3, 0, tb, -tb), 1, 1e-12) << tb;
        EXPECT_NEAR(HermiteInterpolate(-2, 1, 4, 3, 1, tb, 0.3), 4, 1e-12) << tb;
    }
    EXPECT_EQ(CubicInterpolate(-2, 1, 4, 3, 0), 1);
    EXPECT_EQ(CubicInterpolate(-2, 1, 4, 3, 1), 4);
    EXPECT_EQ(LinearInterpolate(1, 4, 0.25), 1.75);
    EXPECT_NEAR(CosineInterpolate(1, 4, 0.5), 2.5, 1e-12);
    // The cubic's end slopes are y2 - y0 and y3 - y1 (twice the mean slope),
    // so samples on a line overshoot; Hermite with tension 0 stays on it, and
    // tension 1 flattens it into a smoothstep between y1 and y2.
    EXPECT_NEAR(CubicInterpolate(0, 1, 2, 3, 0.3), 1.384, 1e-12);
    EXPECT_NEAR(HermiteInterpolate(0, 1, 2, 3, 0.3, 0, 0), 1.3, 1e-12);
    EXPECT_NEAR(HermiteInterpolate(9, 1, 2, -9, 0.5, 1, 0.4), 1.5, 1e-12);
}
