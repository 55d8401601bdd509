// Contouring: one-cell cases, visiting order, level curves of sampled planes
// and cones, and the section of a facet by a plane.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <random>
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

// A field sampled at x[i], y[j], with the row pointers Contour takes.
struct Grid {
    std::vector<double> x, y, v;
    std::vector<const double *> rows;
};

template <class F>
Grid sample(const std::vector<double> &x, const std::vector<double> &y, F f)
{
    Grid g{x, y, {}, {}};
    g.v.resize(x.size() * y.size());
    for (size_t i = 0; i < x.size(); i++)
        for (size_t j = 0; j < y.size(); j++) g.v[i * y.size() + j] = f(x[i], y[j]);
    for (size_t i = 0; i < x.size(); i++) g.rows.push_back(&g.v[i * y.size()]);
    return g;
}

void contour(const Grid &g, const std::vector<double> &z)
{
    segs.clear();
    Contour(g.rows.data(), 0, (int)g.x.size() - 1, 0, (int)g.y.size() - 1, g.x.data(), g.y.data(),
            (int)z.size(), z.data(), collect);
}

std::vector<double> steps(int n, double lo, double hi)
{
    std::vector<double> v;
    for (int k = 0; k < n; k++) v.push_back(lo + (hi - lo) * k / (n - 1));
    return v;
}

}  // namespace

TEST(Contour, OneCellCases)
{
    // Values 0 on the left, 1 on the right: two segments through the centre.
    const Grid ramp = sample({0, 1}, {0, 1}, [](double x, double) { return x; });
    contour(ramp, {0.5});
    ASSERT_EQ(segs.size(), 2u);
    const Segment want[2] = {{0.5, 0.5, 0.5, 0, 0.5}, {0.5, 0.5, 0.5, 1, 0.5}};
    for (int k = 0; k < 2; k++) {
        EXPECT_DOUBLE_EQ(segs[k].x1, want[k].x1) << k;
        EXPECT_DOUBLE_EQ(segs[k].y1, want[k].y1) << k;
        EXPECT_DOUBLE_EQ(segs[k].x2, want[k].x2) << k;
        EXPECT_DOUBLE_EQ(segs[k].y2, want[k].y2) << k;
        EXPECT_EQ(segs[k].level, 0.5) << k;
    }

    // All at the level: every triangle draws its outer side, vertex m3 to m1.
    const Grid flat = sample({0, 2}, {0, 3}, [](double, double) { return 4.0; });
    contour(flat, {1.0, 4.0, 9.0});
    const Segment sides[4] = {{2, 0, 0, 0, 4}, {2, 3, 2, 0, 4}, {0, 3, 2, 3, 4}, {0, 0, 0, 3, 4}};
    ASSERT_EQ(segs.size(), 4u);
    for (int k = 0; k < 4; k++) {
        EXPECT_EQ(segs[k].x1, sides[k].x1) << k;
        EXPECT_EQ(segs[k].y1, sides[k].y1) << k;
        EXPECT_EQ(segs[k].x2, sides[k].x2) << k;
        EXPECT_EQ(segs[k].y2, sides[k].y2) << k;
        EXPECT_EQ(segs[k].level, 4.0) << k;
    }

    contour(ramp, {-1.0, 2.0});  // levels outside the cell's range
    EXPECT_TRUE(segs.empty());
    contour(ramp, {});
    EXPECT_TRUE(segs.empty());
    segs.clear();
    const double z = 0.5;
    Contour(ramp.rows.data(), 0, 1, 1, 1, ramp.x.data(), ramp.y.data(), 1, &z, collect);  // jub <= jlb
    EXPECT_TRUE(segs.empty());
}

TEST(Contour, VisitsRowsDownwardsAndLevelsUpwards)
{
    // x + y over 3 x 3 unit cells: every cell meets two of the levels.
    const Grid g = sample(steps(4, 0, 3), steps(4, 0, 3), [](double x, double y) { return x + y; });
    contour(g, {0.5, 1.5, 2.5, 3.5, 4.5, 5.5});
    int last_key = -1;
    for (const Segment &s : segs) {
        const int i = (int)floor((s.x1 + s.x2) / 2), j = (int)floor((s.y1 + s.y2) / 2);
        const int key = (2 - j) * 100 + i * 10 + (int)s.level;  // order: j down, i up, level up
        EXPECT_GE(key, last_key) << "cell " << i << "," << j << " level " << s.level;
        last_key = key;
    }
    EXPECT_EQ(segs.size(), 9u * 2 * 2);  // each level crosses a cell in two triangles
}

TEST(Contour, PlanesLieOnTheirLevelCurves)
{
    // Linear data is interpolated exactly; the levels through grid nodes and
    // cell centres exercise the vertex cases as well as the crossing cases.
    const auto plane = [](double x, double y) { return 0.25 * x + 0.5 * y + 0.125; };
    const Grid g = sample({0, 0.5, 1.5, 2, 3, 4.5}, {-1, 0, 1, 1.5, 2.5}, plane);
    contour(g, {0.125, 0.375, 0.5, 0.8, 1.125, 1.6});
    ASSERT_GT(segs.size(), 40u);
    for (const Segment &s : segs) {
        EXPECT_NEAR(plane(s.x1, s.y1), s.level, 1e-12);
        EXPECT_NEAR(plane(s.x2, s.y2), s.level, 1e-12);
    }
}

TEST(Contour, ConeGivesClosedCircles)
{
    const double r = 1.3;
    for (int n : {21, 81}) {
        const Grid g = sample(steps(n, -2, 2), steps(n, -2, 2),
                              [](double x, double y) { return hypot(x - 0.113, y + 0.0717); });
        contour(g, {r});
        const double h = 4.0 / (n - 1);
        double length = 0;
        std::map<std::pair<long, long>, int> ends;  // endpoint welded to 1e-9, uses
        for (const Segment &s : segs) {
            length += hypot(s.x2 - s.x1, s.y2 - s.y1);
            for (const double *p : {&s.x1, &s.x2}) {
                const double x = p[0], y = p[1];
                EXPECT_NEAR(hypot(x - 0.113, y + 0.0717), r, h * h / r) << n;  // chord error
                ends[{lround(x * 1e9), lround(y * 1e9)}]++;
            }
        }
        for (const auto &e : ends) EXPECT_EQ(e.second, 2) << n;  // every end meets one more
        EXPECT_NEAR(length, 2 * M_PI * r, 2 * M_PI * r * h * h) << n;
    }
}

TEST(ContourFacet, Sections)
{
    const Vec3 z0{0, 0, 0}, up{0, 0, 1};
    const struct { const char *id; double h0, h1, h2; int rc; Vec3 p1, p2; } cs[] = {
        // Lone vertex 0 pairs with 2 then 1; lone 1 with 2 then 0; lone 2 with 0 then 1.
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
        ASSERT_EQ(ContourFacet(f, up, z0, &p1, &p2), c.rc) << c.id;
        if (c.rc != 2) continue;
        EXPECT_NEAR(p1.x, c.p1.x, 1e-15) << c.id;
        EXPECT_NEAR(p1.y, c.p1.y, 1e-15) << c.id;
        EXPECT_NEAR(p1.z, c.p1.z, 1e-15) << c.id;
        EXPECT_NEAR(p2.x, c.p2.x, 1e-15) << c.id;
        EXPECT_NEAR(p2.y, c.p2.y, 1e-15) << c.id;
        EXPECT_NEAR(p2.z, c.p2.z, 1e-15) << c.id;
    }

    const Vec3 f[3] = {{0, 0, 1}, {1, 0, 3}, {0, 1, 3}};
    Vec3 p1, p2;
    EXPECT_EQ(ContourFacet(f, Vec3{0, 0, 0}, z0, &p1, &p2), -1);  // no plane
    // The plane constant takes the normal as given: (0,0,2) through z = 1 cuts at z = 2.
    ASSERT_EQ(ContourFacet(f, Vec3{0, 0, 2}, Vec3{0, 0, 1}, &p1, &p2), 2);
    EXPECT_DOUBLE_EQ(p1.z, 2.0);
    EXPECT_DOUBLE_EQ(p2.z, 2.0);

    // Random facets and unit-normal planes: both ends on the plane and on the facet's sides.
    std::mt19937 g(5);
    auto u = [&] { return g() / 2147483648.0 - 1.0; };
    int cut = 0;
    for (int k = 0; k < 200; k++) {
        Vec3 q[3];
        for (Vec3 &v : q) v = Vec3{u(), u(), u()};
        Vec3 n{u(), u(), u()};
        const double len = sqrt(n.x * n.x + n.y * n.y + n.z * n.z);
        n = Vec3{n.x / len, n.y / len, n.z / len};
        const Vec3 o{0.3 * u(), 0.3 * u(), 0.3 * u()};
        if (ContourFacet(q, n, o, &p1, &p2) != 2) continue;
        cut++;
        const double c = n.x * o.x + n.y * o.y + n.z * o.z;
        for (const Vec3 &p : {p1, p2}) {
            EXPECT_NEAR(n.x * p.x + n.y * p.y + n.z * p.z, c, 1e-12) << k;
            // On some side a-b: the distances |pa| + |pb| add up to |ab|.
            double best = 1e9;
            for (int e = 0; e < 3; e++) {
                const Vec3 a = q[e], b = q[(e + 1) % 3];
                const double on = hypot(hypot(p.x - a.x, p.y - a.y), p.z - a.z) +
                                  hypot(hypot(p.x - b.x, p.y - b.y), p.z - b.z) -
                                  hypot(hypot(a.x - b.x, a.y - b.y), a.z - b.z);
                best = std::min(best, on);
            }
            EXPECT_LT(best, 1e-12) << k;
        }
    }
    EXPECT_GT(cut, 40);
}
