// Splines and Bezier curves: knots, end points, partition of unity, and the
// different forms of one curve agreeing with each other.
#include <gtest/gtest.h>

#include <cmath>

#include "util/curves.h"

namespace {

const Vec3 ctrl[5] = {{0, 0, 0}, {1, 3, -1}, {4, 3, 2}, {5, -1, 0.5}, {7, 2, 1}};

void expect_near(Vec3 a, Vec3 b, const char *id, double mu)
{
    EXPECT_NEAR(a.x, b.x, 1e-12) << id << " mu=" << mu;
    EXPECT_NEAR(a.y, b.y, 1e-12) << id << " mu=" << mu;
    EXPECT_NEAR(a.z, b.z, 1e-12) << id << " mu=" << mu;
}

}  // namespace

TEST(Spline, KnotsAndBlending)
{
    int u[8], want[8] = {0, 0, 0, 1, 2, 3, 3, 3};
    SplineKnots(u, 4, 3);
    for (int j = 0; j < 8; j++) EXPECT_EQ(u[j], want[j]) << j;

    // The weights sum to 1 inside [0, 3) and are all 0 at the last knot.
    for (double v : {0.0, 0.4, 1.0, 2.5, 2.999, 3.0}) {
        double sum = 0;
        for (int k = 0; k <= 4; k++) sum += SplineBlend(k, 3, u, v);
        EXPECT_NEAR(sum, v < 3 ? 1.0 : 0.0, 1e-12) << "v=" << v;
    }
    Vec3 p;
    SplinePoint(u, 4, 3, 3, ctrl, &p);
    expect_near(p, Vec3{0, 0, 0}, "spline-lastknot", 3);
    EXPECT_EQ(SplineBlend(0, 0, u, 0.5), 0);  // order 0 is empty, not endless recursion

    // Order n + 1 with clamped knots is the Bezier curve of the same points.
    int ub[8];
    SplineKnots(ub, 3, 4);
    for (double mu = 0; mu < 1; mu += 0.125) {
        SplinePoint(ub, 3, 4, mu, ctrl, &p);
        expect_near(p, Bezier4(ctrl[0], ctrl[1], ctrl[2], ctrl[3], mu), "spline-bezier", mu);
    }
}

TEST(Spline, CurveEndsOnLastPoint)
{
    int u[8];
    SplineKnots(u, 4, 3);
    Vec3 out[8];
    const Vec3 canary = {-9, -9, -9};
    for (Vec3 &o : out) o = canary;
    SplineCurve(ctrl, 4, u, 3, out, 1);  // only the end point
    expect_near(out[0], ctrl[4], "curve-res1", 1);
    expect_near(out[1], canary, "curve-res1-untouched", 1);

    SplineCurve(ctrl, 4, u, 3, out, 7);  // parameters 0, 0.5, ..., 3
    Vec3 p;
    for (int i = 0; i < 6; i++) {
        SplinePoint(u, 4, 3, 0.5 * i, ctrl, &p);
        expect_near(out[i], p, "curve-sample", 0.5 * i);
    }
    expect_near(out[6], ctrl[4], "curve-end", 3);
    expect_near(out[7], canary, "curve-untouched", 3);
    SplineCurve(ctrl, -1, u, 3, out, 2);
    expect_near(out[1], Vec3{0, 0, 0}, "curve-empty", 0);
}

TEST(Bezier, FormsAgree)
{
    for (double mu = 0; mu < 1; mu += 0.0625) {
        const Vec3 b4 = Bezier4(ctrl[0], ctrl[1], ctrl[2], ctrl[3], mu);
        expect_near(Bezier(ctrl, 3, mu), b4, "bezier-n3", mu);
        expect_near(CubicBezier(ctrl[0], ctrl[1], ctrl[2], ctrl[3], mu), b4, "cubic", mu);
        expect_near(Bezier(ctrl, 2, mu), Bezier3(ctrl[0], ctrl[1], ctrl[2], mu), "bezier-n2", mu);
        // The curve is the blend-weighted sum, and the weights sum to 1.
        Vec3 s = {0, 0, 0};
        double wsum = 0;
        for (int k = 0; k <= 4; k++) {
            const double w = BezierBlend(k, 4, mu);
            wsum += w;
            s = Vec3{s.x + w * ctrl[k].x, s.y + w * ctrl[k].y, s.z + w * ctrl[k].z};
        }
        expect_near(Bezier(ctrl, 4, mu), s, "bezier-n4", mu);
        EXPECT_NEAR(wsum, 1.0, 1e-12) << mu;
    }
}

TEST(Bezier, EndPoints)
{
    expect_near(Bezier(ctrl, 0, 0.7), ctrl[0], "bezier-n0", 0.7);
    expect_near(Bezier(ctrl, -1, 0.5), Vec3{0, 0, 0}, "bezier-empty", 0.5);
    EXPECT_TRUE(std::isnan(Bezier(ctrl, 3, 1.0).x));  // kept: mu = 1 is outside its range
    expect_near(Bezier3(ctrl[0], ctrl[1], ctrl[2], 1), ctrl[2], "bezier3-end", 1);
    expect_near(Bezier4(ctrl[0], ctrl[1], ctrl[2], ctrl[3], 1), ctrl[3], "bezier4-end", 1);
    expect_near(CubicBezier(ctrl[0], ctrl[1], ctrl[2], ctrl[3], 1), ctrl[3], "cubic-end", 1);
    EXPECT_EQ(BezierBlend(0, 0, 0.3), 1);
    EXPECT_EQ(BezierBlend(0, 3, 0), 1);  // 0^0 never formed
    EXPECT_NEAR(BezierBlend(2, 4, 0.5), 6 / 16.0, 1e-15);
}
