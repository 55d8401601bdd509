// Delaunay triangulation: the circumcircle test, empty circles, array bounds,
// error codes and agreement with scipy.spatial.Delaunay.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "util/delaunay.h"

namespace {

// mt19937 output is fixed by the standard, so these points are the same everywhere.
double uniform(std::mt19937 &g)
{
    return g() / 4294967296.0;
}

void sort_by_x(std::vector<Vec3> &p)
{
    std::sort(p.begin(), p.end(), [](Vec3 a, Vec3 b) { return a.x < b.x || (a.x == b.x && a.y < b.y); });
}

// n points uniform in a disc of radius 100; with a frame, ring points at radius
// about 105 around them, so that every hull triangle has a modest circumcircle.
// The circle test's tolerance is absolute (0.000001 on squared distances):
// points much closer than this scale would be judged on near-ties.
std::vector<Vec3> random_disc(int n, int ring, unsigned seed)
{
    std::mt19937 g(seed);
    std::vector<Vec3> p;
    while ((int)p.size() < n) {
        const double x = 2 * uniform(g) - 1, y = 2 * uniform(g) - 1;
        if (x * x + y * y < 1) p.push_back({100 * x, 100 * y, 0});
    }
    for (int k = 0; k < ring; k++) {
        const double a = 2 * M_PI * k / ring, r = 1.05 + 0.0001 * (uniform(g) - 0.5);
        p.push_back({100 * r * cos(a), 100 * r * sin(a), 0});
    }
    sort_by_x(p);
    return p;
}

struct Result {
    int rc, ntri;
    std::vector<TriIndex> tri;
};

// Triangulates a copy of pts with arrays of exactly the documented sizes.
Result triangulate(std::vector<Vec3> pts)
{
    const int nv = (int)pts.size();
    pts.resize(nv + 3);
    Result r{0, -1, std::vector<TriIndex>(std::max(4 * nv, 1))};
    testing::internal::CaptureStderr();  // the progress lines
    r.rc = Triangulate(nv, pts.data(), r.tri.data(), &r.ntri);
    testing::internal::GetCapturedStderr();
    r.tri.resize(r.ntri > 0 ? r.ntri : 0);
    return r;
}

// Points strictly inside some triangle's circumcircle, with the centre found
// from the determinant form rather than the bisector slopes.
int circle_violations(const std::vector<Vec3> &p, const std::vector<TriIndex> &tri)
{
    int bad = 0;
    for (const TriIndex &t : tri) {
        const Vec3 a = p[t.p1], b = p[t.p2], c = p[t.p3];
        const double d = 2 * (a.x * (b.y - c.y) + b.x * (c.y - a.y) + c.x * (a.y - b.y));
        const double a2 = a.x * a.x + a.y * a.y, b2 = b.x * b.x + b.y * b.y, c2 = c.x * c.x + c.y * c.y;
        const double ux = (a2 * (b.y - c.y) + b2 * (c.y - a.y) + c2 * (a.y - b.y)) / d;
        const double uy = (a2 * (c.x - b.x) + b2 * (a.x - c.x) + c2 * (b.x - a.x)) / d;
        const double r2 = (a.x - ux) * (a.x - ux) + (a.y - uy) * (a.y - uy), r = sqrt(r2);
        // Points are sorted by x: only those within r of ux can be inside.
        auto it = std::lower_bound(p.begin(), p.end(), ux - r, [](Vec3 q, double x) { return q.x < x; });
        for (; it != p.end() && it->x <= ux + r; ++it) {
            const double dx = it->x - ux, dy = it->y - uy;
            if (dx * dx + dy * dy < r2 * (1 - 1e-9)) bad++;
        }
    }
    return bad;
}

// Runs tests/tools/delaunay_check.py; returns its exit status and output.
int scipy_check(const std::string &name, const std::vector<Vec3> &p, const std::vector<TriIndex> &tri,
                const char *mode, std::string *out)
{
    const std::string data = testing::TempDir() + "delaunay_" + name + ".txt";
    const std::string log = data + ".log";
    {
        std::ofstream f(data);
        f.precision(17);
        f << p.size() << " " << tri.size() << "\n";
        for (const Vec3 &q : p) f << q.x << " " << q.y << "\n";
        for (const TriIndex &t : tri) f << t.p1 << " " << t.p2 << " " << t.p3 << "\n";
    }
    const std::string cmd = std::string("/usr/bin/python3 ") + QUORL_DELAUNAY_CHECK + " " + data + " " + mode +
                            " > " + log + " 2>&1";
    const int status = std::system(cmd.c_str());  // NOLINT(cert-env33-c): runs the fixed checker script
    std::ifstream f(log);
    std::stringstream ss;
    ss << f.rdbuf();
    *out = ss.str();
    std::remove(data.c_str());
    std::remove(log.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

TEST(DelaunayCircle, KnownCircles)
{
    const struct { const char *id; double xp, yp, x1, y1, x2, y2, x3, y3, xc, yc, r2; int in; } cs[] = {
        {"cc-1.1", 0.5, 0.5, 0, 0, 1, 0, 0, 1, 0.5, 0.5, 0.5, 1},  // y1 == y2
        {"cc-1.2", 1.0, 1.0, 0, 0, 1, 0, 0, 1, 0.5, 0.5, 0.5, 1},  // on the circle
        {"cc-1.3", 1.2, 1.2, 0, 0, 1, 0, 0, 1, 0.5, 0.5, 0.5, 0},
        {"cc-1.4", 0.0, 0.0, 0, 1, 0, 0, 1, 0, 0.5, 0.5, 0.5, 1},  // y2 == y3
        {"cc-1.5", 0.0, -1.0, 1, 0, 0, 1, -1, 0, 0.0, 0.0, 1.0, 1},  // general case
        {"cc-1.6", 0.0, -1.01, 1, 0, 0, 1, -1, 0, 0.0, 0.0, 1.0, 0},
        {"cc-1.7", 3.0, 4.0, -3, 4, 5, 0, 0, -5, 0.0, 0.0, 25.0, 1},
    };
    for (const auto &c : cs) {
        double xc = 0, yc = 0, r2 = 0;
        EXPECT_EQ(CircumCircle(c.xp, c.yp, c.x1, c.y1, c.x2, c.y2, c.x3, c.y3, &xc, &yc, &r2), c.in) << c.id;
        EXPECT_LT(fabs(xc - c.xc) + fabs(yc - c.yc) + fabs(r2 - c.r2), 1e-12) << c.id;
    }
    double xc = 7, yc = 8, r2 = 9;  // three equal y: no circle, outputs untouched
    EXPECT_EQ(CircumCircle(0, 0, 0, 2, 1, 2, 3, 2, &xc, &yc, &r2), 0);
    EXPECT_TRUE(xc == 7 && yc == 8 && r2 == 9);
}

TEST(Delaunay, ProgressAndOrder)
{
    std::vector<Vec3> p = random_disc(100, 0, 7);
    p.resize(103);
    std::vector<TriIndex> tri(400);
    int ntri = -1;
    testing::internal::CaptureStderr();
    ASSERT_EQ(Triangulate(100, p.data(), tri.data(), &ntri), 0);
    const std::string progress = testing::internal::GetCapturedStderr();
    std::string want;
    for (int i = 0; i < 100; i++) want += "Triangulated " + std::to_string(i) + " of 100\n";
    EXPECT_EQ(progress, want);

    tri.resize(ntri);
    p.resize(100);
    EXPECT_EQ(circle_violations(p, tri), 0);

    // The output order is part of the contract: pinned from this input.
    ASSERT_EQ(ntri, 186);
    const TriIndex first[4] = {{0, 10, 13}, {3, 2, 4}, {97, 98, 99}, {6, 17, 20}};
    for (int k = 0; k < 4; k++)
        EXPECT_TRUE(tri[k].p1 == first[k].p1 && tri[k].p2 == first[k].p2 && tri[k].p3 == first[k].p3) << k;
}

TEST(Delaunay, WritesOnlyTheDocumentedArrays)
{
    // One guard entry before and after each array of exactly the stated size.
    const Vec3 pg{-7777, -7777, -7777};
    const TriIndex tg{-5, -5, -5};
    for (int nv : {0, 100, 257}) {
        std::vector<Vec3> p(nv + 5, pg);
        const std::vector<Vec3> src = random_disc(nv, 0, 3);
        std::copy(src.begin(), src.end(), p.begin() + 1);
        const int tmax = std::max(4 * nv, 1);
        std::vector<TriIndex> tri(tmax + 2, tg);
        int ntri = -1;
        testing::internal::CaptureStderr();
        EXPECT_EQ(Triangulate(nv, p.data() + 1, tri.data() + 1, &ntri), 0) << nv;
        testing::internal::GetCapturedStderr();
        EXPECT_TRUE(p.front().x == pg.x && p.back().x == pg.x) << nv;
        EXPECT_TRUE(tri.front().p1 == tg.p1 && tri.back().p1 == tg.p1) << nv;
        EXPECT_EQ(p[nv + 3].z, 0.0) << nv;  // the enclosing triangle is left in place
        EXPECT_TRUE(nv > 0 ? ntri > 0 && ntri <= tmax : ntri == 0) << nv;
    }
}

TEST(Delaunay, ErrorCodes)
{
    std::vector<Vec3> p(4, Vec3{1, 2, 3});
    std::vector<TriIndex> tri(1, TriIndex{-5, -5, -5});
    int ntri = -1;
    // Negative counts and counts whose 4 * nv overflows touch no array.
    EXPECT_EQ(Triangulate(-3, p.data(), tri.data(), &ntri), 0);
    EXPECT_EQ(ntri, 0);
    EXPECT_EQ(Triangulate(INT_MAX / 4 + 1, p.data(), tri.data(), &ntri), 1);
    EXPECT_TRUE(ntri == 0 && p[0].x == 1.0 && tri[0].p1 == -5);

    // Over a span of 0.003 (radius 100 scaled down) the absolute circle tolerance of 0.000001 puts far
    // points "inside", the removed regions split, and triangles pile up to the
    // 4 * nv limit, which must stop them.
    std::vector<Vec3> q = random_disc(200, 0, 1);
    for (Vec3 &v : q) v = {0.000015 * v.x, 0.000015 * v.y, 0};
    q.resize(203);
    std::vector<TriIndex> t(802, TriIndex{-5, -5, -5});
    testing::internal::CaptureStderr();
    EXPECT_EQ(Triangulate(200, q.data(), t.data(), &ntri), 4);
    testing::internal::GetCapturedStderr();
    EXPECT_TRUE(ntri == 800 && t[800].p1 == -5 && t[801].p1 == -5);
}

TEST(Delaunay, MatchesScipy)
{
    if (access("/usr/bin/python3", X_OK) != 0) GTEST_SKIP() << "no /usr/bin/python3";
    // Framed sets must match scipy triangle for triangle; a plain set may lack
    // thin hull triangles whose circles reach the enclosing triangle.
    const struct { const char *id; int n, ring; unsigned seed; const char *mode; } cs[] = {
        {"dt-2.2", 1000, 100, 12, "full"}, {"dt-2.4", 800, 0, 14, "subset"},
    };
    for (const auto &c : cs) {
        const std::vector<Vec3> p = random_disc(c.n, c.ring, c.seed);
        const Result r = triangulate(p);
        ASSERT_EQ(r.rc, 0) << c.id;
        EXPECT_EQ(circle_violations(p, r.tri), 0) << c.id;
        std::string out;
        const int status = scipy_check(c.id, p, r.tri, c.mode, &out);
        if (status == 77) GTEST_SKIP() << "numpy or scipy missing";
        EXPECT_EQ(status, 0) << c.id << ": " << out;
    }
}
