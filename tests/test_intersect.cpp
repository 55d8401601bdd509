// Lines, planes and polygons: known cases and boundaries, and seeded checks that a point found lies on both.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "util/intersect.h"

TEST(Intersect, KnownCases)
{
    const Vec2 sq[4] = {{0, 0}, {0, 1}, {1, 1}, {1, 0}}, rev[4] = {{1, 0}, {1, 1}, {0, 1}, {0, 0}};
    const Vec2 arrow[4] = {{0, 0}, {2, 1}, {0, 2}, {1, 1}}, line[3] = {{0, 0}, {1, 1}, {2, 2}};
    const Vec3 sq3[4] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, lo = {0, 0, 0}, hi = {1, 2, 3};
    const Vec3 notch[4] = {{0, 0, 0}, {2, 1, 0}, {0, 2, 0}, {1, 1, 0}};
    double x = 0, y = 0, mu = 0, mu2 = 0, d = 0, mua = 0, mub = 0;
    Vec3 p, out[8], pa, pb, a = {-1, 0.5, 0.5}, b = {0.5, 0.5, 0.5};
    const struct { const char *id; int got, want; } cases[] = {
        {"segments parallel", LineIntersect(0, 0, 2, 0, 0, 1, 2, 1, &x, &y), 0},
        {"beyond the end", LineIntersect(0, 0, 4, 0, 2, 1, 2, 3, &x, &y), 0},
        {"segments cross", LineIntersect(0, 0, 2, 2, 0, 2, 2, 0, &x, &y), 1},
        {"box inside", PointInBox({0.5, 1, 1.5}, lo, hi), 1}, {"box face", PointInBox({0.5, 2, 1.5}, lo, hi), 0},
        {"plane beyond p2", LinePlane({0, 0, 0}, {0, 0, 1}, 0, 0, 1, -3, &mu, &p), 1},
        {"plane parallel", LinePlane({0, 0, 0}, {1, 0, 0}, 0, 0, 1, -3, &mu2, &p), 0},
        {"segment short of plane", LineSegmentPlane({0, 0, 0}, {0, 0, 1}, 0, 0, 1, -3, &p), 0},
        {"sphere missed", RaySphere({-2, 2, 0}, {2, 2, 0}, {0, 0, 0}, 1, &mu2, &d), 0},
        {"clockwise", ClockWise(sq, 4), 1}, {"anticlockwise", ClockWise(rev, 4), -1}, {"line", ClockWise(line, 3), 0},
        {"convex", ConvexPolygon(sq, 4), 1}, {"concave", ConvexPolygon(arrow, 4), -1},
        {"side", WhichSide({0, 1}, {0, 0}, {1, 0}), -1}, {"on the line", WhichSide({5, 0}, {0, 0}, {1, 0}), 0},
        {"in arrow", PointInPolygon(arrow, 4, {1.5, 1}), 1}, {"in the notch", PointInPolygon(arrow, 4, {0.5, 1}), 0},
        {"on hypotenuse", InTriangle({2, 2}, {0, 0}, {4, 0}, {0, 4}), 1},
        {"degenerate triangle", InTriangle({1, 1}, {0, 0}, {1, 1}, {2, 2}), 0},
        {"above polygon", PointIn3DPolygon(4, sq3, &d, {0.5, 0.5, 2}), 1},
        {"clip half", ClipFacet(sq3, 4, 1, 0, 0, -0.5, out), 4}, {"clip all", ClipFacet(sq3, 4, 1, 0, 0, -2, out), 0},
        {"clip through corners", ClipFacet(sq3, 4, 1, 1, 0, -1, out), 3},
        {"line through concave facet", LineFacet({1.5, 1, -1}, {1.5, 1, 1}, notch, 4, &p), 1},
        {"line through the notch", LineFacet({0.5, 1, -1}, {0.5, 1, 1}, notch, 4, &p), 0},
        {"segment stops short", LineFacet({0.5, 0.5, 1}, {0.5, 0.5, 3}, sq3, 4, &p), 0},
        {"closest points", LineLineIntersect({0, 0, 0}, {2, 0, 0}, {1, 1, 0}, {1, 1, 5}, &pa, &pb, &mua, &mub), 1},
        {"clip line to box", ClipLine2Box(&a, &b, {0, 0, 0}, {1, 1, 1}), 1},
    };
    for (const auto &c : cases) EXPECT_EQ(c.got, c.want) << c.id;
    EXPECT_TRUE(x == 1 && y == 1 && mu == 3 && d == 2 && a.x == 0 && b.x == 0.5);  // the outputs of the hits
    EXPECT_TRUE(pa.x == 1 && pa.y == 0 && pb.y == 1 && pb.z == 0 && mua == 0.5);
    EXPECT_TRUE(LineLineIntersect({0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {3, 1, 0}, &pa, &pb, &mua, &mub) == 0 && mua == 0.5);
    EXPECT_NEAR(PlanePoint({0, 0, 1}, {1, 0, 3}, {0, 1, 4}, 3, -2), 1, 1e-12);  // z = 2x + 3y + 1
    EXPECT_NEAR(PolygonCurve(sq3, 4), 45, 1e-5);
    EXPECT_NEAR(PolygonLength(sq3, 4), 3, 1e-12);  // open: three sides
    EXPECT_TRUE(fabs(PointLine3D({3, 1, 0}, {0, 0, 0}, {1, 0, 0}, &p, &mu) - 1) < 1e-12 && mu == 3);  // unclamped
    const Vec3 pts[3] = {{1, 0, 0}, {-1, 0, 0}, {5, 5, 5}};
    EXPECT_EQ(FindClosest(pts, 3, {0, 0, 0}, &d, &p), 0);  // a tie keeps the earlier
}

TEST(Intersect, FoundPointsLieOnBoth)
{
    std::mt19937 rng(11);
    int hits = 0;
    for (int t = 0; t < 2000; t++) {
        double s[8], x, y, u, mu, mu2;
        for (double &v : s) v = -10 + 20 * (rng() / 4294967296.0);
        Vec2 foot;
        if (LineIntersect(s[0], s[1], s[2], s[3], s[4], s[5], s[6], s[7], &x, &y) && ++hits) {
            for (int k : {0, 4})
                EXPECT_TRUE(PointLine2D(x, y, s[k], s[k + 1], s[k + 2], s[k + 3], &foot, &u) < 1e-9 && u >= -1e-9
                            && u <= 1 + 1e-9) << "seed 11 case " << t;
        }
        const Vec3 a = {s[0], s[1], s[2]}, b = {s[3], s[4], s[5]}, c = {s[6] / 10, s[7] / 10, 0};
        if (!RaySphere(a, b, c, 3, &mu, &mu2)) continue;
        for (double m : {mu, mu2})  // both points lie on the sphere
            EXPECT_NEAR(std::hypot(a.x - c.x + m * (b.x - a.x), a.y - c.y + m * (b.y - a.y), a.z + m * (b.z - a.z)), 3,
                        1e-9)
                << "seed 11 case " << t;
    }
    EXPECT_GT(hits, 200);
}
