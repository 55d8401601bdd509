// Contouring: one-cell cases, visiting order, the closed level curves of a
// sampled cone, and the section of a facet by a plane.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <utility>
#include <vector>

#include "util/contour.h"

namespace {

struct Segment {
    double x1, y1, x2, y2, level;
};

std::vector<Segment> segs;  // what the callback received

void collect(double x1, double y1, double x2, double y2, double level)
{
    segs.push_back({x1, y1, x2, y2, level});
}

// Contours f sampled at x[i], y[j] over the whole grid.
template <class F>
void contour(const std::vector<double> &x, const std::vector<double> &y, F f, const std::vector<double> &z)
{
    std::vector<double> v(x.size() * y.size());
    std::vector<const double *> rows;
    for (size_t i = 0; i < x.size(); i++) {
        for (size_t j = 0; j < y.size(); j++) v[i * y.size() + j] = f(x[i], y[j]);
        rows.push_back(&v[i * y.size()]);
    }
    segs.clear();
    Contour(rows.data(), 0, (int)x.size() - 1, 0, (int)y.size() - 1, x.data(), y.data(), (int)z.size(), z.data(),
            collect);
}

std::vector<double> steps(int n, double lo, double hi)
{
    std::vector<double> v(n);
    for (int k = 0; k < n; k++) v[k] = lo + (hi - lo) * k / (n - 1);
    return v;
}

void expect_segments(const std::vector<Segment> &want, const char *id)
{
    ASSERT_EQ(segs.size(), want.size()) << id;
    for (size_t k = 0; k < want.size(); k++) {
        const Segment &s = segs[k], &w = want[k];
        EXPECT_TRUE(s.x1 == w.x1 && s.y1 == w.y1 && s.x2 == w.x2 && s.y2 == w.y2 && s.level == w.level)
            << id << " segment " << k << ": " << s.x1 << "," << s.y1 << " " << s.x2 << "," << s.y2;
    }
}

}  // namespace

TEST(Contour, OneCellCases)
{
    const auto ramp = [](double x, double) { return x; };
    contour({0, 1}, {0, 1}, ramp, {0.5});  // through the centre, triangles 1 and 3
    expect_segments({{0.5, 0.5, 0.5, 0, 0.5}, {0.5, 0.5, 0.5, 1, 0.5}}, "ct-1.1");
    // All at the level: every triangle draws its outer side, vertex m3 to m1.
    contour({0, 2}, {0, 3}, [](double, double) { return 4.0; }, {1.0, 4.0, 9.0});
    expect_segments({{2, 0, 0, 0, 4}, {2, 3, 2, 0, 4}, {0, 3, 2, 3, 4}, {0, 0, 0, 3, 4}}, "ct-1.2");
    contour({0, 1}, {0, 1}, ramp, {-1.0, 2.0});
    expect_segments({}, "ct-1.3 levels outside the cell");
    contour({0, 1}, {0, 1}, ramp, {});
    expect_segments({}, "ct-1.4 no levels");
    contour({0, 1}, {0}, ramp, {0.5});
    expect_segments({}, "ct-1.5 jub <= jlb");
}

TEST(Contour, VisitsRowsDownwardsAndLevelsUpwards)
{
    // x + y over 3 x 3 unit cells: every cell meets two of the levels.
    contour(steps(4, 0, 3), steps(4, 0, 3), [](double x, double y) { return x + y; }, {0.5, 1.5, 2.5, 3.5, 4.5, 5.5});
    EXPECT_EQ(segs.size(), 9u * 2 * 2);  // two triangles per cell and level
    int last = -1;
    for (const Segment &s : segs) {
        const int i = (int)floor((s.x1 + s.x2) / 2), j = (int)floor((s.y1 + s.y2) / 2);
        const int key = (2 - j) * 100 + i * 10 + (int)s.level;  // j down, then i up, then level up
        EXPECT_GE(key, last) << "cell " << i << "," << j << " level " << s.level;
        last = key;
    }
}

TEST(Contour, ConeGivesClosedCircles)
{
    const double r = 1.3;
    const auto cone = [](double x, double y) { return hypot(x - 0.113, y + 0.0717); };  // no node on the level
    for (int n : {21, 81}) {
        contour(steps(n, -2, 2), steps(n, -2, 2), cone, {r});
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
    const struct { const char *id; double h0, h1, h2; int rc; Vec3 p1, p2; } cs[] = {
        // The lone vertex 0 pairs with 2 then 1; lone 1 with 2 then 0; lone 2 with 0 then 1.
        {"cf-1.1", -1, 1, 1, 2, {0, 0.5, 0}, {0.5, 0, 0}},
        {"cf-1.2", 1, -1, 1, 2, {0.5, 0.5, 0}, {0.5, 0, 0}},
        {"cf-1.3", 1, 1, -3, 2, {0, 0.25, 0}, {0.75, 0.25, 0}},
        {"cf-1.4", 0, -1, 1, 2, {0.5, 0.5, 0}, {0, 0, 0}},  // a vertex in the plane sides with +
        {"cf-1.5", 0, 0, 0, 0, {}, {}},
        {"cf-1.6", 0, 1, 1, 0, {}, {}},
        {"cf-1.7", -2, 0, -1, 0, {}, {}},
    };
    for (const auto &c : cs) {
        const Vec3 f[3] = {{0, 0, c.h0}, {1, 0, c.h1}, {0, 1, c.h2}};
        Vec3 p1{9, 9, 9}, p2{9, 9, 9};
        ASSERT_EQ(ContourFacet(f, Vec3{0, 0, 1}, Vec3{0, 0, 0}, &p1, &p2), c.rc) << c.id;
        if (c.rc != 2) continue;
        EXPECT_TRUE(p1.x == c.p1.x && p1.y == c.p1.y && p1.z == c.p1.z) << c.id;
        EXPECT_TRUE(p2.x == c.p2.x && p2.y == c.p2.y && p2.z == c.p2.z) << c.id;
    }
    const Vec3 f[3] = {{0, 0, 1}, {1, 0, 3}, {0, 1, 3}};
    Vec3 p1, p2;
    EXPECT_EQ(ContourFacet(f, Vec3{0, 0, 0}, Vec3{0, 0, 0}, &p1, &p2), -1);  // no plane
    // The plane constant takes the normal as given: (0,0,2) through z = 1 cuts at z = 2.
    ASSERT_EQ(ContourFacet(f, Vec3{0, 0, 2}, Vec3{0, 0, 1}, &p1, &p2), 2);
    EXPECT_EQ(p1.z, 2.0);
    EXPECT_EQ(p2.z, 2.0);
}
