// Vectors: arithmetic conventions, tolerances, rotations and their sense,
// polar conversions and interpolation.
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

TEST(Vectors, Arithmetic)
{
    const Vec3 a{1, 1, 1}, b{3, 2, 1};
    expect_vec("vec-1.1", VectorSub(a, b), {2, 1, 0});  // second minus first
    expect_vec("vec-1.2", CrossProduct({1, 0, 0}, {0, 1, 0}), {0, 0, 1});
    expect_vec("vec-1.3", CrossProduct({2, 3, 4}, {5, 6, 7}), {-3, 6, -3});
    expect_vec("vec-1.4", VectorCombination(2, -1, 0.5, a, b, {4, 0, 2}), {1, 0, 2});
    expect_vec("vec-1.5", MidPoint(a, b), {2, 1.5, 1});
    EXPECT_EQ(DotProduct({2, 3, 4}, {5, 6, 7}), 56);
    EXPECT_EQ(VectorLength({1, 2, 3}, {4, 6, 3}), 5);

    const Vec3 pts[] = {{0, 0, 0}, {2, 0, 0}, {2, 4, 0}, {0, 4, 6}};
    expect_vec("vec-1.6", Centroid(pts, 4), {1, 2, 1.5});
    const Vec3 none = Centroid(pts, 0);
    EXPECT_TRUE(std::isnan(none.x) && std::isnan(none.y) && std::isnan(none.z));

    Vec3 p{0, 0, 0};
    Normalise(&p);
    expect_vec("vec-1.7", p, {0, 0, 0});
    p = {3, 4, 0};
    SetVectorLength(&p, 10);
    expect_vec("vec-1.8", p, {6, 8, 0});
    Vec3 q{7, 8, 9};
    SwapXYZ(&p, &q);
    expect_vec("vec-1.9", p, {7, 8, 9});
    expect_vec("vec-1.10", q, {6, 8, 0});

    EXPECT_TRUE(VectorEqual({1, 2, 3}, {1, 2.0000005, 3}));
    EXPECT_FALSE(VectorEqual({1, 2, 3}, {1, 2, 3.000002}));
}

TEST(Vectors, AnglesAndNormals)
{
    EXPECT_EQ(VectorAngle({0, 0, 0}, {1, 0, 0}), 0);
    EXPECT_DOUBLE_EQ(VectorAngle({1, 2, 3}, {-2, -4, -6}), M_PI);
    EXPECT_EQ(VectorAngle({1, 2, 3}, {2, 4, 6}), 0);
    EXPECT_NEAR(VectorAngle({1, 0, 0}, {1, 1, 0}), M_PI / 4, 1e-12);

    expect_vec("norm-1.1", CalcNormal({0, 0, 0}, {1, 0, 0}, {0, 1, 0}), {0, 0, 1});
    expect_vec("norm-1.2", CalcNormal({0, 0, 0}, {0, 1, 0}, {1, 0, 0}), {0, 0, -1});
    expect_vec("norm-1.3", CalcNormal({1, 1, 1}, {2, 2, 2}, {3, 3, 3}), {0, 0, 0});

    Vec3 v{3, 0, 4};
    VectorPerp(&v, {0, 0, 2});
    expect_vec("perp-1.1", v, {5, 0, 0});
    v = {0, 0, 4};
    VectorPerp(&v, {0, 0, 1});
    expect_vec("perp-1.2", v, {0, 0, 0});

    EXPECT_NEAR(Angle2D(1, 0, 0, 1), M_PI / 2, 1e-12);
    EXPECT_NEAR(Angle2D(0, 1, 1, 0), -M_PI / 2, 1e-12);
    EXPECT_NEAR(Angle2D(-1, 0.1, -1, -0.1), 2 * atan(0.1), 1e-12);  // wraps across pi

    const struct { const char *id; double dy, dx, want; } fa[] = {
        {"fowler-1.1", 1, 0, 2},   {"fowler-1.2", 0, -1, 4},   {"fowler-1.3", 0, 0, 0},
        {"fowler-1.4", 0, 3, 0},   {"fowler-1.5", -1, 0, 6},   {"fowler-1.6", 1, 1, 1},
        {"fowler-1.7", 1, -1, 3},  {"fowler-1.8", -1, -1, 5},  {"fowler-1.9", -1, 1, 7},
    };
    for (const auto &c : fa) EXPECT_DOUBLE_EQ(FowlerAngle(c.dy, c.dx), c.want) << c.id;
    // Monotonic in the true angle all the way round.
    double prev = -1;
    for (int i = 0; i < 720; i++) {
        const double t = i * M_PI / 360;
        const double f = FowlerAngle(sin(t), cos(t));
        EXPECT_GT(f, prev) << "fowler-2." << i;
        EXPECT_LT(f, 8) << "fowler-2." << i;
        prev = f;
    }
}

TEST(Vectors, Rotations)
{
    expect_vec("rot-1.1", RotateZ({1, 0, 0}, M_PI / 2), {0, -1, 0});
    expect_vec("rot-1.2", RotateX({0, 1, 0}, M_PI / 2), {0, 0, -1});
    expect_vec("rot-1.3", RotateY({0, 0, 1}, M_PI / 2), {-1, 0, 0});
    const Vec2 r2 = Vector2DRotate(1, 0, M_PI / 2);
    EXPECT_NEAR(r2.x, 0, 1e-12);
    EXPECT_NEAR(r2.y, -1, 1e-12);
    // A line through (1,1,0) parallel to z: (2,1,5) turns to (1,2,5).
    expect_vec("rot-1.4", ArbitraryRotate2({2, 1, 5}, M_PI / 2, {1, 1, 0}, {1, 1, 3}), {1, 2, 5});

    std::mt19937 gen(20240611);
    std::uniform_real_distribution<double> u(-3, 3);
    for (int i = 0; i < 200; i++) {
        const Vec3 p{u(gen), u(gen), u(gen)}, axis{u(gen), u(gen), u(gen)};
        const double t = u(gen);
        const double len = Modulus(p);
        EXPECT_NEAR(Modulus(RotateX(p, t)), len, 1e-12) << "rot-2." << i;
        EXPECT_NEAR(Modulus(RotateY(p, t)), len, 1e-12) << "rot-2." << i;
        EXPECT_NEAR(Modulus(ArbitraryRotate(p, t, axis)), len, 1e-12) << "rot-2." << i;
        expect_vec("rot-3", ArbitraryRotate(p, t, {0, 0, 2.5}), RotateZ(p, -t));
        expect_vec("rot-4", ArbitraryRotate(p, t, {1, 0, 0}), RotateX(p, -t));
        expect_vec("rot-5", ArbitraryRotate(ArbitraryRotate(p, t, axis), -t, axis), p);
        // Points on the axis stay put.
        expect_vec("rot-6", ArbitraryRotate(VectorMul(axis, 0.7), t, axis), VectorMul(axis, 0.7));
    }
}

TEST(Vectors, PolarConversions)
{
    double r, lat, lon;
    XYZ2Polar(0, 0, 0, &r, &lat, &lon);
    EXPECT_EQ(r, 0);
    EXPECT_EQ(lat, 0);
    EXPECT_EQ(lon, 90);
    XYZ2Polar(0, 0, -2, &r, &lat, &lon);  // on the axis
    EXPECT_EQ(r, 2);
    EXPECT_NEAR(lat, -90, 1e-5);
    EXPECT_EQ(lon, 90);
    XYZ2Polar(1, 0, 0, &r, &lat, &lon);
    EXPECT_NEAR(lon, 90, 1e-9);
    XYZ2Polar(0, 1, 0, &r, &lat, &lon);
    EXPECT_NEAR(lon, 180, 1e-5);

    // Round trip over the half-space the longitude covers (y >= 0 folds with
    // x, so use x >= 0); the short degree factors bound the agreement.
    std::mt19937 gen(7);
    std::uniform_real_distribution<double> u(-5, 5);
    for (int i = 0; i < 200; i++) {
        const double x = fabs(u(gen)), y = u(gen), z = u(gen);
        double bx, by, bz;
        XYZ2Polar(x, y, z, &r, &lat, &lon);
        EXPECT_GE(lon, 0);
        EXPECT_LE(lon, 180);
        Polar2XYZ(r, lat, lon, &bx, &by, &bz);
        expect_vec("polar-2", {bx, by, bz}, {x, y, z}, 1e-7 * r);
    }

    double th, ph;
    InverseSpherical({-3, 0, 0}, &th, &ph);  // atan2(0, -3) + pi
    EXPECT_NEAR(th, 2 * M_PI, 1e-12);
    EXPECT_NEAR(ph, 0, 1e-12);
    InverseSpherical({1, 1, sqrt(2.0)}, &th, &ph);
    EXPECT_NEAR(th, M_PI * 1.25, 1e-12);
    EXPECT_NEAR(ph, M_PI / 4, 1e-12);
    InverseSpherical({0, 0, 0}, &th, &ph);
    EXPECT_NEAR(th, M_PI, 1e-12);
    EXPECT_EQ(ph, 0);
}

TEST(Vectors, Interpolation)
{
    // Every interpolator passes through y1 at mu = 0 and y2 at mu = 1.
    const double y0 = -2, y1 = 1, y2 = 4, y3 = 3;
    const struct { const char *id; double t, b; } hb[] = {
        {"herm-1.1", 0, 0}, {"herm-1.2", 1, 0}, {"herm-1.3", 0.5, -0.7}, {"herm-1.4", -1, 1},
    };
    for (const auto &h : hb) {
        EXPECT_NEAR(HermiteInterpolate(y0, y1, y2, y3, 0, h.t, h.b), y1, 1e-12) << h.id;
        EXPECT_NEAR(HermiteInterpolate(y0, y1, y2, y3, 1, h.t, h.b), y2, 1e-12) << h.id;
    }
    EXPECT_EQ(CubicInterpolate(y0, y1, y2, y3, 0), y1);
    EXPECT_EQ(CubicInterpolate(y0, y1, y2, y3, 1), y2);
    EXPECT_EQ(LinearInterpolate(y1, y2, 0.25), 1.75);
    EXPECT_NEAR(CosineInterpolate(y1, y2, 0.5), 2.5, 1e-12);
    EXPECT_NEAR(CosineInterpolate(y1, y2, 1), y2, 1e-12);
    // The cubic's end slopes are y2 - y0 and y3 - y1 (twice the mean slope),
    // so even samples on a line overshoot; Hermite with tension 0 stays on it,
    // and tension 1 flattens it into a smoothstep between y1 and y2.
    EXPECT_NEAR(CubicInterpolate(0, 1, 2, 3, 0.3), 1.384, 1e-12);
    EXPECT_NEAR(HermiteInterpolate(0, 1, 2, 3, 0.3, 0, 0), 1.3, 1e-12);
    EXPECT_NEAR(HermiteInterpolate(9, 1, 2, -9, 0.5, 1, 0.4), 1.5, 1e-12);
}
