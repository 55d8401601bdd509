// Lines, planes and polygons: known cases, boundaries, and seeded random
// property checks (found points lie on what they were found on).
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "util/intersect.h"

namespace {

double uniform(std::mt19937 &rng, double lo, double hi) { return lo + (hi - lo) * (rng() / 4294967296.0); }

Vec3 at(Vec3 a, Vec3 b, double mu) { return Vec3{a.x + mu * (b.x - a.x), a.y + mu * (b.y - a.y), a.z + mu * (b.z - a.z)}; }

void expect_vec(Vec3 got, Vec3 want, const char *id)
{
    EXPECT_NEAR(got.x, want.x, 1e-12) << id;
    EXPECT_NEAR(got.y, want.y, 1e-12) << id;
    EXPECT_NEAR(got.z, want.z, 1e-12) << id;
}

}  // namespace

TEST(Segments, LineIntersectCases)
{
    const struct { const char *id; double s[8]; int hit; double x, y; } cases[] = {
        {"li-1.1", {0, 0, 2, 2, 0, 2, 2, 0}, 1, 1, 1},
        {"li-1.2", {0, 0, 2, 2, 0, 0, 2, 2}, 1, 1, 1},   // identical: the midpoint
        {"li-1.3", {0, 0, 2, 0, 0, 1, 2, 1}, 0, 0, 0},   // parallel
        {"li-1.4", {0, 0, 1, 1, 1, 1, 3, 0}, 1, 1, 1},   // touching at an end
        {"li-1.5", {0, 0, 1, 0, 2, -1, 2, 1}, 0, 0, 0},  // beyond the end of 1-2
        {"li-1.6", {0, 0, 4, 0, 2, 1, 2, 3}, 0, 0, 0},   // beyond the end of 3-4
        {"li-1.7", {0, 0, 1, 0, 2, 0, 3, 0}, 1, 0.5, 0}, // collinear apart: still the midpoint
    };
    for (const auto &c : cases) {
        double x = -7, y = -7;
        EXPECT_EQ(LineIntersect(c.s[0], c.s[1], c.s[2], c.s[3], c.s[4], c.s[5], c.s[6], c.s[7], &x, &y), c.hit) << c.id;
        EXPECT_NEAR(x, c.x, 1e-12) << c.id;
        EXPECT_NEAR(y, c.y, 1e-12) << c.id;
    }
    // Property: a point found lies on both segments.
    std::mt19937 rng(11);
    int hits = 0;
    for (int t = 0; t < 2000; t++) {
        double s[8], x, y, u;
        for (double &v : s) v = uniform(rng, -10, 10);
        if (!LineIntersect(s[0], s[1], s[2], s[3], s[4], s[5], s[6], s[7], &x, &y)) continue;
        hits++;
        Vec2 foot;
        for (int k : {0, 4}) {
            EXPECT_LT(PointLine2D(x, y, s[k], s[k + 1], s[k + 2], s[k + 3], &foot, &u), 1e-9) << "seed 11 case " << t;
            EXPECT_TRUE(u >= -1e-9 && u <= 1 + 1e-9) << "seed 11 case " << t;
        }
    }
    EXPECT_GT(hits, 200);
}

TEST(Segments, ClosestPoints)
{
    Vec3 pa = {9, 9, 9}, pb = pa;
    double mua = 9, mub = 9, u;
    ASSERT_EQ(LineLineIntersect({0, 0, 0}, {2, 0, 0}, {1, 1, 0}, {1, 1, 5}, &pa, &pb, &mua, &mub), 1);
    expect_vec(pa, {1, 0, 0}, "lli-pa");
    expect_vec(pb, {1, 1, 0}, "lli-pb");
    EXPECT_NEAR(mua, 0.5, 1e-12);
    EXPECT_EQ(LineLineIntersect({0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {3, 1, 0}, &pa, &pb, &mua, &mub), 0);
    EXPECT_EQ(mua, 0.5);  // untouched

    Vec2 c2;
    EXPECT_NEAR(PointLine2D(3, 4, 0, 0, 0, 0, &c2, &u), 5, 1e-12);
    EXPECT_EQ(u, 0);
    Vec3 c3;
    EXPECT_NEAR(PointLine3D({3, 1, 0}, {0, 0, 0}, {1, 0, 0}, &c3, &u), 1, 1e-12);
    EXPECT_NEAR(u, 3, 1e-12);  // unclamped: the foot lies beyond p2

    const Vec3 pts[3] = {{1, 0, 0}, {-1, 0, 0}, {5, 5, 5}};
    double d;
    EXPECT_EQ(FindClosest(pts, 3, {0, 0, 0}, &d, &c3), 0);  // a tie keeps the earlier
    EXPECT_EQ(FindClosest(pts, 3, {4, 4, 4}, &d, &c3), 2);
    EXPECT_EQ(FindClosest(pts, 0, {4, 4, 4}, &d, &c3), 0);
    EXPECT_EQ(d, 1e32);
}

TEST(Solids, BoxPlaneSphere)
{
    const Vec3 lo = {0, 0, 0}, hi = {1, 2, 3};
    EXPECT_EQ(PointInBox({0.5, 1, 1.5}, lo, hi), 1);
    const Vec3 on_face[6] = {{0, 1, 1.5}, {1, 1, 1.5}, {0.5, 0, 1.5}, {0.5, 2, 1.5}, {0.5, 1, 0}, {0.5, 1, 3}};
    for (const Vec3 &p : on_face) EXPECT_EQ(PointInBox(p, lo, hi), 0) << p.x << " " << p.y << " " << p.z;
    std::mt19937 rng(3);

    double mu = 7, mu2;
    Vec3 p = {7, 7, 7};
    ASSERT_EQ(LinePlane({0, 0, 0}, {0, 0, 1}, 0, 0, 1, -3, &mu, &p), 1);  // z = 3, beyond p2
    EXPECT_NEAR(mu, 3, 1e-12);
    EXPECT_NEAR(p.z, 3, 1e-12);
    EXPECT_EQ(LineSegmentPlane({0, 0, 0}, {0, 0, 1}, 0, 0, 1, -3, &p), 0);
    EXPECT_EQ(LineSegmentPlane({0, 0, 0}, {0, 0, 4}, 0, 0, 1, -3, &p), 1);
    EXPECT_EQ(LinePlane({0, 0, 0}, {1, 0, 0}, 0, 0, 1, -3, &mu, &p), 0);
    EXPECT_EQ(mu, 3);  // untouched

    ASSERT_EQ(RaySphere({-2, 0, 0}, {2, 0, 0}, {0, 0, 0}, 1, &mu, &mu2), 1);
    EXPECT_NEAR(mu, 0.75, 1e-12);
    EXPECT_NEAR(mu2, 0.25, 1e-12);
    EXPECT_EQ(RaySphere({-2, 2, 0}, {2, 2, 0}, {0, 0, 0}, 1, &mu, &mu2), 0);
    EXPECT_EQ(mu, 0);
    EXPECT_EQ(RaySphere({1, 1, 1}, {1, 1, 1}, {0, 0, 0}, 5, &mu, &mu2), 0);
    for (int t = 0; t < 500; t++) {  // property: both points lie on the sphere
        const Vec3 a = {uniform(rng, -3, 3), uniform(rng, -3, 3), uniform(rng, -3, 3)};
        const Vec3 b = {uniform(rng, -3, 3), uniform(rng, -3, 3), uniform(rng, -3, 3)};
        const Vec3 c = {uniform(rng, -1, 1), uniform(rng, -1, 1), uniform(rng, -1, 1)};
        const double r = uniform(rng, 0.5, 2);
        if (!RaySphere(a, b, c, r, &mu, &mu2)) continue;
        EXPECT_GE(mu, mu2);
        for (double m : {mu, mu2}) {
            const Vec3 q = at(a, b, m);
            EXPECT_NEAR(std::hypot(q.x - c.x, q.y - c.y, q.z - c.z), r, 1e-9) << "seed 3 case " << t;
        }
    }
}

TEST(PlanePolygons, OrientationConvexitySide)
{
    const Vec2 sq[4] = {{0, 0}, {0, 1}, {1, 1}, {1, 0}}, rev[4] = {{1, 0}, {1, 1}, {0, 1}, {0, 0}};
    const Vec2 arrow[4] = {{0, 0}, {2, 1}, {0, 2}, {1, 1}}, line[3] = {{0, 0}, {1, 1}, {2, 2}};
    const Vec2 a = {0, 0}, b = {4, 0}, c = {0, 4};
    const struct { const char *id; int got, want; } cases[] = {
        {"cw sq", ClockWise(sq, 4), 1}, {"cw rev", ClockWise(rev, 4), -1}, {"cw line", ClockWise(line, 3), 0},
        {"convex sq", ConvexPolygon(sq, 4), 1}, {"convex arrow", ConvexPolygon(arrow, 4), -1},
        {"convex line", ConvexPolygon(line, 3), 0}, {"side above", WhichSide({0, 1}, {0, 0}, {1, 0}), -1},
        {"side below", WhichSide({0, -1}, {0, 0}, {1, 0}), 1}, {"side on", WhichSide({5, 0}, {0, 0}, {1, 0}), 0},
        // The arrow-head's notch at (1, 1) leaves (0.5, 1) outside.
        {"in arrow", PointInPolygon(arrow, 4, {1.5, 1}), 1}, {"notch", PointInPolygon(arrow, 4, {0.5, 1}), 0},
        {"two corners", PointInPolygon(sq, 2, {0.5, 0.5}), 0}, {"in tri", InTriangle({1, 1}, a, b, c), 1},
        {"in tri reversed", InTriangle({1, 1}, a, c, b), 1}, {"on hypotenuse", InTriangle({2, 2}, a, b, c), 1},
        {"outside tri", InTriangle({3, 3}, a, b, c), 0}, {"degenerate", InTriangle({1, 1}, a, {1, 1}, {2, 2}), 0},
    };
    for (const auto &t : cases) EXPECT_EQ(t.got, t.want) << t.id;
}

TEST(Facets, PlanesAndPolygons)
{
    const Vec3 pl[3] = {{0, 0, 1}, {1, 0, 3}, {0, 1, 4}};  // z = 2x + 3y + 1
    for (double x : {-2.0, 0.5, 3.0}) EXPECT_NEAR(PlanePoint(pl[0], pl[1], pl[2], x, 1 - x), 2 * x + 3 * (1 - x) + 1, 1e-12);
    EXPECT_EQ(PlanePoint({1, 1, 0}, {1, 1, 5}, {2, 2, 1}, 3, 4), 0.0);  // vertical
    double A, B, C, D;
    PlaneParam(pl, &A, &B, &C, &D);
    EXPECT_NEAR(A * 7 + B * 2 + C * 21 + D, 0, 1e-12);  // (7, 2, 21) is on it

    const Vec3 sq[4] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
    double d = 9;
    EXPECT_EQ(PointIn3DPolygon(4, sq, &d, {0.5, 0.5, 2}), 1);
    EXPECT_NEAR(d, 2, 1e-12);
    EXPECT_EQ(PointIn3DPolygon(4, sq, &d, {1.5, 0.5, 2}), 0);
    const Vec3 col[3] = {{0, 0, 0}, {1, 1, 1}, {2, 2, 2}};
    EXPECT_EQ(PointIn3DPolygon(3, col, &d, {0, 0, 1}), 0);
    EXPECT_EQ(d, 0);
    EXPECT_NEAR(PolygonLength(sq, 4), 3, 1e-12);
    EXPECT_NEAR(PolygonCurve(sq, 4), 45, 1e-5);

    Vec3 out[8], p = {9, 9, 9};
    ASSERT_EQ(ClipFacet(sq, 4, 1, 0, 0, -0.5, out), 4);  // keep x >= 0.5
    for (int i = 0; i < 4; i++) EXPECT_GE(out[i].x, 0.5 - 1e-12) << i;
    EXPECT_EQ(ClipFacet(sq, 4, 1, 0, 0, 1, out), 4);   // all kept
    EXPECT_EQ(ClipFacet(sq, 4, 1, 0, 0, -2, out), 0);  // nothing left
    EXPECT_EQ(ClipFacet(sq, 4, 1, 1, 0, -1, out), 3);  // through two corners: no duplicates

    Vec3 a = {-1, 0.5, 0.5}, b = {0.5, 0.5, 0.5};
    ASSERT_EQ(ClipLine2Box(&a, &b, {0, 0, 0}, {1, 1, 1}), 1);
    expect_vec(a, {0, 0.5, 0.5}, "clip-p1");
    expect_vec(b, {0.5, 0.5, 0.5}, "clip-p2");
    a = {-1, 2, 0.5}, b = {2, 2, 0.5};
    EXPECT_EQ(ClipLine2Box(&a, &b, {0, 0, 0}, {1, 1, 1}), 0);
    EXPECT_EQ(a.x, -1);  // untouched

    const Vec3 notch[4] = {{0, 0, 0}, {2, 1, 0}, {0, 2, 0}, {1, 1, 0}};  // concave
    EXPECT_EQ(LineFacet({1.5, 1, -1}, {1.5, 1, 1}, notch, 4, &p), 1);
    EXPECT_NEAR(p.z, 0, 1e-12);
    EXPECT_EQ(LineFacet({0.5, 1, -1}, {0.5, 1, 1}, notch, 4, &p), 0);
    EXPECT_EQ(LineFacet({1, 0.5, -1}, {1, 0.5, 1}, sq, 4, &p), 1);  // on an edge
    EXPECT_EQ(LineFacet({0.5, 0.5, 1}, {0.5, 0.5, 3}, sq, 4, &p), 0);  // stops short
}
