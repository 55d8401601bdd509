// Delaunay triangulation: the circumcircle test, the array bounds a caller provides, error codes, the output
// order, and agreement with scipy.spatial.Delaunay.
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

// n points uniform in a disc of radius 100, and a ring of points at radius about 105 so that every hull triangle
// has a modest circumcircle (the circle test's tolerance is absolute), sorted by x.
std::vector<Vec3> random_disc(int n, int ring, unsigned seed)
{
    std::mt19937 g(seed);
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

// Triangulates a copy of pts with a guard entry around each array of exactly the documented size (nv + 3 points,
// 4 nv triangles); returns the code.
int triangulate(std::vector<Vec3> pts, std::vector<TriIndex> *tri, std::string *progress = nullptr)
{
    std::string err;
    const int nv = (int)pts.size(), tmax = std::max(4 * nv, 1);
    pts.insert(pts.begin(), {-7777, -7777, -7777});
    pts.resize(nv + 5, {-7777, -7777, -7777});
    tri->assign(tmax + 2, {-5, -5, -5});
    int ntri = -1;
    testing::internal::CaptureStderr();
    const int rc = Triangulate(nv, pts.data() + 1, tri->data() + 1, &ntri);
    *(progress ? progress : &err) = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(pts.front().x == -7777 && pts.back().x == -7777 && tri->front().p1 == -5 && tri->back().p1 == -5) << nv;
    EXPECT_TRUE(ntri >= 0 && ntri <= tmax && (rc != 0 || (ntri > 0) == (nv > 0))) << nv << " " << ntri;
    *tri = std::vector<TriIndex>(tri->begin() + 1, tri->begin() + 1 + std::max(ntri, 0));
    return rc;
}

}  // namespace

TEST(Delaunay, CircumCircle)  // scipy checks the triangulation it drives; here the corner cases
{
    double xc = 0, yc = 0, r2 = 0;  // y1 == y2, and on the circle counts as inside
    EXPECT_TRUE(CircumCircle(1, 1, 0, 0, 1, 0, 0, 1, &xc, &yc, &r2) == 1 && xc == 0.5 && yc == 0.5 && r2 == 0.5);
    xc = 7;  // three equal y: no circle, outputs untouched
    EXPECT_TRUE(CircumCircle(0, 0, 0, 2, 1, 2, 3, 2, &xc, &yc, &r2) == 0 && xc == 7 && yc == 0.5 && r2 == 0.5);
}

TEST(Delaunay, ProgressOrderAndBounds)
{
    std::vector<TriIndex> tri;
    std::string progress, want;
    ASSERT_EQ(triangulate(random_disc(100, 0, 7), &tri, &progress), 0);
    for (int i = 0; i < 100; i++) want += "Triangulated " + std::to_string(i) + " of 100\n";
    EXPECT_EQ(progress, want);
    ASSERT_EQ(tri.size(), 186u);  // the output order is part of the contract: pinned from this input
    EXPECT_TRUE(tri[0].p1 == 0 && tri[0].p2 == 10 && tri[0].p3 == 13 && tri[2].p1 == 97 && tri[2].p3 == 99);
    EXPECT_EQ(triangulate({}, &tri), 0);
    Vec3 p[4] = {{1, 2, 3}};  // negative counts and counts whose 4 nv overflows touch no array
    TriIndex t[1] = {{-5, -5, -5}};
    int ntri = -1;
    EXPECT_TRUE(Triangulate(-3, p, t, &ntri) == 0 && ntri == 0);
    EXPECT_TRUE(Triangulate(INT_MAX / 4 + 1, p, t, &ntri) == 1 && ntri == 0 && p[0].x == 1 && t[0].p1 == -5);
    // Over a span of 0.003 the absolute tolerance puts far points "inside": triangles pile up to the 4 nv limit.
    std::vector<Vec3> q = random_disc(200, 0, 1);
    for (Vec3 &v : q) v = {0.000015 * v.x, 0.000015 * v.y, 0};
    EXPECT_EQ(triangulate(q, &tri), 4);
    EXPECT_EQ(tri.size(), 800u);
}

TEST(Delaunay, EmptyCirclesAsScipyFindsThem)
{
    // A framed set must match scipy triangle for triangle; a plain set may lack thin hull triangles.
    for (const auto &[n, ring, seed, mode] : {std::tuple{1000, 100, 12, "full"}, {800, 0, 14, "subset"}}) {
        const std::vector<Vec3> p = random_disc(n, ring, seed);
        std::vector<TriIndex> tri;
        ASSERT_EQ(triangulate(p, &tri), 0) << seed;
        const std::string data = testing::TempDir() + "delaunay_" + std::to_string(seed) + ".txt";
        FILE *f = fopen(data.c_str(), "w");
        ASSERT_TRUE(f);
        fprintf(f, "%zu %zu\n", p.size(), tri.size());
        for (const Vec3 &v : p) fprintf(f, "%.17g %.17g\n", v.x, v.y);
        for (const TriIndex &t : tri) fprintf(f, "%d %d %d\n", t.p1, t.p2, t.p3);
        fclose(f);
        int status = -1;
        const std::string out = run("/usr/bin/python3 " QUORL_DELAUNAY_CHECK " " + data + " " + mode, &status);
        remove(data.c_str());
        EXPECT_EQ(status, 0) << "seed " << seed << ": " << out;
    }
}
