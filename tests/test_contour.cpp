// Contouring: one-cell cases, the visiting order, the closed level curves of a sampled cone, and the section of
// a facet by a plane.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <vector>

#include "util/contour.h"

namespace {

struct Segment {
    double x1, y1, x2, y2, level;
};
std::vector<Segment> segs;  // what the callback received

// Contours f sampled at n x n points of [lo, hi]^2, rows j up to jub (-1: all).
template <class F> void contour(int n, double lo, double hi, F f, std::vector<double> z, int jub = -1)
{
    std::vector<double> x(n), v((size_t)n * n);
    std::vector<const double *> rows;
    for (int k = 0; k < n; k++) x[k] = lo + (hi - lo) * k / (n - 1);
    for (int i = 0; i < n * n; i++) v[(size_t)i] = f(x[i / n], x[i % n]);
    for (int i = 0; i < n; i++) rows.push_back(&v[(size_t)i * n]);
    segs.clear();
    Contour(rows.data(), 0, n - 1, 0, jub < 0 ? n - 1 : jub, x.data(), x.data(), (int)z.size(), z.data(),
            [](double x1, double y1, double x2, double y2, double level) { segs.push_back({x1, y1, x2, y2, level}); });
}

}  // namespace

TEST(Contour, CellsAndVisitingOrder)
{
    auto ramp = [](double x, double) { return x; };
    contour(2, 0, 1, ramp, {0.5});  // through the centre, triangles 1 and 3
    ASSERT_EQ(segs.size(), 2u);
    EXPECT_TRUE(segs[0].x1 == 0.5 && segs[0].y1 == 0.5 && segs[0].x2 == 0.5 && segs[0].y2 == 0 && segs[1].y2 == 1);
    contour(2, 0, 2, [](double, double) { return 4.0; }, {1.0, 4.0, 9.0});  // all at the level: the outer sides
    ASSERT_EQ(segs.size(), 4u);
    EXPECT_TRUE(segs[0].x1 == 2 && segs[0].y1 == 0 && segs[0].x2 == 0 && segs[3].y2 == 2 && segs[3].level == 4);
    for (int jub : {-1, 0}) {  // levels outside the cell, no levels, jub <= jlb
        contour(2, 0, 1, ramp, jub ? std::vector<double>{-1.0, 2.0} : std::vector<double>{0.5}, jub);
        EXPECT_TRUE(segs.empty()) << jub;
    }
    // x + y over 3 x 3 unit cells: rows j downwards, then i upwards, then levels upwards; two triangles per cell.
    contour(4, 0, 3, [](double x, double y) { return x + y; }, {0.5, 1.5, 2.5, 3.5, 4.5, 5.5});
    EXPECT_EQ(segs.size(), 9u * 2 * 2);
    int last = -1;
    for (const Segment &s : segs) {
        const int key = (2 - (int)floor((s.y1 + s.y2) / 2)) * 100 + (int)floor((s.x1 + s.x2) / 2) * 10 + (int)s.level;
        EXPECT_GE(key, last) << s.x1 << "," << s.y1 << " level " << s.level;
        last = key;
    }
}

TEST(Contour, ConeGivesClosedCircles)
{
    const double r = 1.3;
    const auto cone = [](double x, double y) { return hypot(x - 0.113, y + 0.0717); };  // no node on the level
    for (int n : {21, 81}) {
        contour(n, -2, 2, cone, {r});
        const double h = 4.0 / (n - 1);
        double length = 0;
        std::map<std::pair<long, long>, int> ends;  // end points welded to 1e-9
        for (const Segment &s : segs) {
            length += hypot(s.x2 - s.x1, s.y2 - s.y1);
            for (const double *p : {&s.x1, &s.x2}) {
                EXPECT_NEAR(cone(p[0], p[1]), r, h * h / r) << n;  // chord error of linear interpolation
                ends[{lround(p[0] * 1e9), lround(p[1] * 1e9)}]++;
            }
        }
        for (const auto &e : ends) EXPECT_EQ(e.second, 2) << n;  // each end joins one other segment
        EXPECT_NEAR(length, 2 * M_PI * r, 2 * M_PI * r * h * h) << n;
    }
}

TEST(ContourFacet, Sections)
{
    // The lone vertex 0 pairs with 2 then 1; lone 1 with 2 then 0; lone 2 with 0 then 1; 0 sides with +.
    const struct { double h0, h1, h2; int rc; Vec3 p1, p2; } cs[] = {
        {-1, 1, 1, 2, {0, 0.5, 0}, {0.5, 0, 0}}, {1, -1, 1, 2, {0.5, 0.5, 0}, {0.5, 0, 0}},
        {1, 1, -3, 2, {0, 0.25, 0}, {0.75, 0.25, 0}}, {0, -1, 1, 2, {0.5, 0.5, 0}, {0, 0, 0}},
        {0, 0, 0, 0, {}, {}}, {0, 1, 1, 0, {}, {}}, {-2, 0, -1, 0, {}, {}},
    };
    for (const auto &c : cs) {
        const Vec3 f[3] = {{0, 0, c.h0}, {1, 0, c.h1}, {0, 1, c.h2}};
        Vec3 p1{9, 9, 9}, p2{9, 9, 9};
        ASSERT_EQ(ContourFacet(f, Vec3{0, 0, 1}, Vec3{0, 0, 0}, &p1, &p2), c.rc) << c.h0 << c.h1 << c.h2;
        EXPECT_TRUE(c.rc != 2 || (p1.x == c.p1.x && p1.y == c.p1.y && p1.z == 0 && p2.x == c.p2.x && p2.y == c.p2.y))
            << c.h0 << c.h1 << c.h2;
    }
    const Vec3 f[3] = {{0, 0, 1}, {1, 0, 3}, {0, 1, 3}};
    Vec3 p1, p2;  // no plane; then (0,0,2) through z = 1 cuts at z = 2: the constant takes the normal as given
    EXPECT_EQ(ContourFacet(f, Vec3{0, 0, 0}, Vec3{0, 0, 0}, &p1, &p2), -1);
    EXPECT_TRUE(ContourFacet(f, Vec3{0, 0, 2}, Vec3{0, 0, 1}, &p1, &p2) == 2 && p1.z == 2.0 && p2.z == 2.0);
}
