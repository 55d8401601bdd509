// Splines and Bezier curves: knots, end points, partition of unity, and the forms of one curve agreeing.
#include <gtest/gtest.h>

#include <cmath>

#include "util/curves.h"

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
