// Delaunay triangulation: the circumcircle test, empty circles, the array
// bounds a caller provides, error codes and agreement with scipy.spatial.Delaunay.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "capture.h"
#include "util/delaunay.h"

namespace {

// n points uniform in a disc of radius 100, sorted by x; with a ring of points
// at radius about 105 so that every hull triangle has a modest circumcircle.
// (The circle test's tolerance is absolute: much closer points meet near-ties.)
std::vector<Vec3> random_disc(int n, int ring, unsigned seed)
{
    std::mt19937 g(seed);  // its output is fixed by the standard
    std::vector<Vec3> p;
    while ((int)p.size() < n) {
        const double x = 2 * (g() / 4294967296.0) - 1, y = 2 * (g() / 4294967296.0) - 1;
        if (x * x + y * y < 1) p.push_back({100 * x, 100 * y, 0});
    }
    for (int k = 0; k < ring; k++) {
        const double a = 2 * M_PI * k / ring, r = 105 + 0.01 * (g() / 4294967296.0 - 0.5);
        p.push_back({r * cos(a), r * sin(a), 0});
    }
    std::sort(p.begin(), p.end(), [](Vec3 a, Vec3 b) { return a.x < b.x || (a.x == b.x && a.y < b.y); });
    return p;
}

// Triangulates a copy of pts, one guard entry around each array of exactly the
// documented size (nv + 3 points, 4 nv triangles); returns the code.
int triangulate(std::vector<Vec3> pts, std::vector<TriIndex> *tri, std::string *progress = nullptr)
{
    const int nv = (int)pts.size(), tmax = std::max(4 * nv, 1);
    pts.insert(pts.begin(), {-7777, -7777, -7777});
    pts.resize(nv + 5, {-7777, -7777, -7777});
    tri->assign(tmax + 2, {-5, -5, -5});
    int ntri = -1;
    testing::internal::CaptureStderr();
    const int rc = Triangulate(nv, pts.data() + 1, tri->data() + 1, &ntri);
    const std::string err = testing::internal::GetCapturedStderr();
    if (progress) *progress = err;
    EXPECT_TRUE(pts.front().x == -7777 && pts.back().x == -7777 && tri->front().p1 == -5 && tri->back().p1 == -5) << nv;
    EXPECT_TRUE(ntri >= 0 && ntri <= tmax && (rc != 0 || (ntri > 0) == (nv > 0))) << nv << " " << ntri;
    *tri = std::vector<TriIndex>(tri->begin() + 1, tri->begin() + 1 + std::max(ntri, 0));
    return rc;
}

}  // namespace

TEST(Delaunay, CircumCircle)
{
    const struct { double xp, yp, x1, y1, x2, y2, x3, y3, xc, yc, r2; int in; } cs[] = {
        {1.0, 1.0, 0, 0, 1, 0, 0, 1, 0.5, 0.5, 0.5, 1},  // y1 == y2; on the circle counts
        {1.2, 1.2, 0, 0, 1, 0, 0, 1, 0.5, 0.5, 0.5, 0},  {0.0, 0.0, 0, 1, 0, 0, 1, 0, 0.5, 0.5, 0.5, 1},  // y2 == y3
        {0.0, -1.01, 1, 0, 0, 1, -1, 0, 0.0, 0.0, 1.0, 0}, {3.0, 4.0, -3, 4, 5, 0, 0, -5, 0.0, 0.0, 25.0, 1},
    };
    for (const auto &c : cs) {
        double xc = 0, yc = 0, r2 = 0;
        EXPECT_EQ(CircumCircle(c.xp, c.yp, c.x1, c.y1, c.x2, c.y2, c.x3, c.y3, &xc, &yc, &r2), c.in) << c.xp << " "
            << c.yp;
        EXPECT_LT(fabs(xc - c.xc) + fabs(yc - c.yc) + fabs(r2 - c.r2), 1e-12) << c.xp << " " << c.yp;
    }
    double xc = 7, yc = 8, r2 = 9;  // three equal y: no circle, outputs untouched
    EXPECT_TRUE(CircumCircle(0, 0, 0, 2, 1, 2, 3, 2, &xc, &yc, &r2) == 0 && xc == 7 && yc == 8 && r2 == 9);
}

TEST(Delaunay, ProgressOrderAndBounds)
{
    std::vector<TriIndex> tri;
    std::string progress, want;
    ASSERT_EQ(triangulate(random_disc(100, 0, 7), &tri, &progress), 0);
    for (int i = 0; i < 100; i++) want += "Triangulated " + std::to_string(i) + " of 100\n";
    EXPECT_EQ(progress, want);
    ASSERT_EQ(tri.size(), 186u);  // the output order is part of the contract: pinned from this input
    const TriIndex first[4] = {{0, 10, 13}, {3, 2, 4}, {97, 98, 99}, {6, 17, 20}};
    for (int k = 0; k < 4; k++) EXPECT_TRUE(tri[k].p1 == first[k].p1 && tri[k].p2 == first[k].p2
        && tri[k].p3 == first[k].p3) << k;
    EXPECT_EQ(triangulate({}, &tri), 0);
    EXPECT_EQ(triangulate(random_disc(257, 0, 3), &tri), 0);

    // Negative counts and counts whose 4 nv overflows touch no array.
    Vec3 p[4] = {{1, 2, 3}};
    TriIndex t[1] = {{-5, -5, -5}};
    int ntri = -1;
    EXPECT_TRUE(Triangulate(-3, p, t, &ntri) == 0 && ntri == 0);
    EXPECT_TRUE(Triangulate(INT_MAX / 4 + 1, p, t, &ntri) == 1 && ntri == 0 && p[0].x == 1 && t[0].p1 == -5);
    // Over a span of 0.003 the absolute tolerance puts far points "inside",
    // and triangles pile up to the 4 nv limit, which must stop them.
    std::vector<Vec3> q = random_disc(200, 0, 1);
    for (Vec3 &v : q) v = {0.000015 * v.x, 0.000015 * v.y, 0};
    EXPECT_EQ(triangulate(q, &tri), 4);
    EXPECT_EQ(tri.size(), 800u);
}

TEST(Delaunay, EmptyCirclesAsScipyFindsThem)
{
    // A framed set must match scipy triangle for triangle; a plain set may lack
    // thin hull triangles whose circles reach the enclosing triangle.
    const struct { int n, ring; unsigned seed; const char *mode; } cs[] = {{1000, 100, 12, "full"},
        {800, 0, 14, "subset"}};
    for (const auto &c : cs) {
        const std::vector<Vec3> p = random_disc(c.n, c.ring, c.seed);
        std::vector<TriIndex> tri;
        ASSERT_EQ(triangulate(p, &tri), 0) << c.seed;
        const std::string data = testing::TempDir() + "delaunay_" + std::to_string(c.seed) + ".txt";
        FILE *f = fopen(data.c_str(), "w");
        ASSERT_TRUE(f);
        fprintf(f, "%zu %zu\n", p.size(), tri.size());
        for (const Vec3 &v : p) fprintf(f, "%.17g %.17g\n", v.x, v.y);
        for (const TriIndex &t : tri) fprintf(f, "%d %d %d\n", t.p1, t.p2, t.p3);
        fclose(f);
        int status = -1;
        const std::string out = run("/usr/bin/python3 " QUORL_DELAUNAY_CHECK " " + data + " " + c.mode + " 2>&1",
            &status);
        remove(data.c_str());
        EXPECT_EQ(status, 0) << "seed " << c.seed << ": " << out;
    }
}
