// Splines and Bezier curves: knots, end points, partition of unity, and the
// different forms of one curve agreeing with each other.
#include <gtest/gtest.h>

#include <cmath>

#include "util/curves.h"

static const Vec3 ctrl[5] = {{0, 0, 0}, {1, 3, -1}, {4, 3, 2}, {5, -1, 0.5}, {7, 2, 1}};

static void expect_near(Vec3 a, Vec3 b, const char *id, double mu)
{
    EXPECT_TRUE(fabs(a.x - b.x) < 1e-12 && fabs(a.y - b.y) < 1e-12 && fabs(a.z - b.z) < 1e-12) << id << " mu=" << mu;
}

TEST(Spline, KnotsBlendingAndCurve)
{
    int u[8], want[8] = {0, 0, 0, 1, 2, 3, 3, 3};
    SplineKnots(u, 4, 3);
    for (int j = 0; j < 8; j++) EXPECT_EQ(u[j], want[j]) << j;
    for (double v : {0.0, 0.4, 2.999, 3.0}) {  // the weights sum to 1 inside [0, 3), to 0 at the last knot
        double sum = 0;
        for (int k = 0; k <= 4; k++) sum += SplineBlend(k, 3, u, v);
        EXPECT_NEAR(sum, v < 3 ? 1.0 : 0.0, 1e-12) << "v=" << v;
    }
    EXPECT_EQ(SplineBlend(0, 0, u, 0.5), 0);  // order 0 is empty, not endless recursion

    Vec3 out[8], p;
    const Vec3 canary = {-9, -9, -9};
    for (Vec3 &o : out) o = canary;
    SplineCurve(ctrl, 4, u, 3, out, 7);  // parameters 0, 0.5, ..., 3; the last is the last point
    for (int i = 0; i < 6; i++) {
        SplinePoint(u, 4, 3, 0.5 * i, ctrl, &p);
        expect_near(out[i], p, "curve sample", 0.5 * i);
    }
    expect_near(out[6], ctrl[4], "curve end", 3);
    expect_near(out[7], canary, "curve untouched", 3);

    int ub[8];  // order n + 1 with clamped knots is the Bezier curve of the same points
    SplineKnots(ub, 3, 4);
    for (double mu = 0; mu < 1; mu += 0.125) {
        SplinePoint(ub, 3, 4, mu, ctrl, &p);
        expect_near(p, Bezier4(ctrl[0], ctrl[1], ctrl[2], ctrl[3], mu), "spline as bezier", mu);
    }
}

TEST(Bezier, FormsAgreeAndEnds)
{
    for (double mu = 0; mu < 1; mu += 0.0625) {
        const Vec3 b4 = Bezier4(ctrl[0], ctrl[1], ctrl[2], ctrl[3], mu);
        expect_near(Bezier(ctrl, 3, mu), b4, "bezier n=3", mu);
        expect_near(CubicBezier(ctrl[0], ctrl[1], ctrl[2], ctrl[3], mu), b4, "cubic", mu);
        expect_near(Bezier(ctrl, 2, mu), Bezier3(ctrl[0], ctrl[1], ctrl[2], mu), "bezier n=2", mu);
        double wsum = 0;
        for (int k = 0; k <= 4; k++) wsum += BezierBlend(k, 4, mu);
        EXPECT_NEAR(wsum, 1.0, 1e-12) << mu;
    }
    expect_near(Bezier(ctrl, 0, 0.7), ctrl[0], "bezier n=0", 0.7);
    expect_near(Bezier(ctrl, -1, 0.5), Vec3{0, 0, 0}, "bezier empty", 0.5);
    EXPECT_TRUE(std::isnan(Bezier(ctrl, 3, 1.0).x));  // kept: mu = 1 is outside its range
    expect_near(CubicBezier(ctrl[0], ctrl[1], ctrl[2], ctrl[3], 1), ctrl[3], "cubic end", 1);
    EXPECT_TRUE(BezierBlend(0, 3, 0) == 1 && fabs(BezierBlend(2, 4, 0.5) - 6 / 16.0) < 1e-15);  // 0^0 never formed
}
