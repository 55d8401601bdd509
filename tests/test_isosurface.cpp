// Isosurfaces: the table rules, cell cases, closed and oriented sphere meshes, and the facet ordering.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <map>
#include <tuple>
#include <vector>

#include "util/isosurface.h"
#include "util/vectors.h"

namespace {

constexpr int corner_of_edge[12][2] = {{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 5}, {5, 6},
                                       {6, 7}, {7, 4}, {0, 4}, {1, 5}, {2, 6}, {3, 7}};
constexpr Vec3 corner[8] = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}};
// The six tetrahedra of a cell about its diagonal 0-6; corner orders mix both handednesses.
constexpr int tetra[6][4] = {{0, 1, 2, 6}, {1, 0, 5, 6}, {0, 3, 2, 6}, {3, 0, 7, 6}, {0, 4, 5, 6}, {4, 0, 7, 6}};

bool same(Vec3 a, Vec3 b) { return VectorLength(a, b) < 1e-15; }

// Area, signed volume (positive when facets face outwards) and the directed edges not matched by exactly
// one reverse (0: closed and consistently oriented), corners welded to 1e-9.
std::tuple<double, double, int> mesh_stats(const std::vector<Facet> &fs)
{
    double area = 0, volume = 0;
    int bad = 0;
    std::map<std::tuple<long, long, long>, int> ids;
    std::map<std::pair<int, int>, int> edges;
    for (const Facet &f : fs) {
        const Vec3 n = CrossProduct(VectorSub(f.p[0], f.p[1]), VectorSub(f.p[0], f.p[2]));
        area += 0.5 * Modulus(n), volume += DotProduct(f.p[0], n) / 6;
        int id[3];
        for (int k = 0; k < 3; k++)
            id[k] = ids.emplace(std::make_tuple(lround(f.p[k].x * 1e9), lround(f.p[k].y * 1e9), lround(f.p[k].z * 1e9)),
                                (int)ids.size()).first->second;
        for (int k = 0; k < 3; k++) edges[{id[k], id[(k + 1) % 3]}]++;
    }
    for (const auto &e : edges) bad += e.second != 1 || edges[{e.first.second, e.first.first}] != 1;
    return {area, volume, bad};
}

// A sphere of radius r as the level 1000 r^2 of 1000 |p - c|^2 over n^3 cells of [-1, 1]^3; the factor keeps
// nodes clear of VertexInterp's absolute snapping, and c keeps them off the level.
std::vector<Facet> sphere_mesh(int n, double r, bool by_tetra)
{
    const Vec3 c{0.0123, -0.0371, 0.0217};
    std::vector<Facet> out;
    Facet f[5];
    for (int i = 0; i < n * n * n; i++) {
        GridCell g;
        const int ix = i % n, iy = i / n % n, iz = i / n / n;  // the cell's index along each axis
        for (int m = 0; m < 8; m++) {
            g.p[m] = VectorSub({1, 1, 1}, {(ix + corner[m].x) * 2 / n, (iy + corner[m].y) * 2 / n,
                                           (iz + corner[m].z) * 2 / n});
            g.val[m] = 1000 * DotProduct(VectorSub(c, g.p[m]), VectorSub(c, g.p[m]));
        }
        if (!by_tetra) out.insert(out.end(), f, f + PolygoniseCube(g, 1000 * r * r, f));
        for (const auto &t : tetra)
            if (by_tetra) out.insert(out.end(), f, f + PolygoniseTri(g, 1000 * r * r, f, t[0], t[1], t[2], t[3]));
    }
    return out;
}

}  // namespace

TEST(IsosurfaceTables, FollowTheirRules)
{
    for (int index = 0; index < 256; index++) {
        int crossing = 0, n = 0, used = 0;
        for (int e = 0; e < 12; e++)
            if (((index >> corner_of_edge[e][0]) & 1) != ((index >> corner_of_edge[e][1]) & 1)) crossing |= 1 << e;
        ASSERT_EQ(edgeTable[index], crossing) << index;
        const int *row = triTable[index];  // triples of crossing edges, then -1 to the end; every crossing edge used
        for (; n < 16 && row[n] != -1; n++) {
            ASSERT_TRUE(row[n] >= 0 && row[n] < 12 && (crossing >> row[n] & 1)) << index << ":" << n;
            used |= 1 << row[n];
        }
        EXPECT_TRUE(n % 3 == 0 && n <= 15 && used == crossing) << index;
        for (int k = n; k < 16; k++) EXPECT_EQ(row[k], -1) << index;
    }
}

TEST(Isosurface, CellsVertexInterpAndOrder)
{
    const Vec3 a{0, 0, 0}, b{2, 4, -8};  // between, then snapped to an end, and equal ends give the first
    for (auto [iso, f1, f2, mu] : {std::tuple{3.0, 5.0, 1.0, 0.5}, {0.999995, 0, 1, 1}, {9, 2, 2.000005, 0}})
        EXPECT_TRUE(same(VertexInterp(iso, a, b, f1, f2), {2 * mu, 4 * mu, -8 * mu})) << iso;
    // Only corner 0 below: one facet through edges 0, 8, 3, facing corner 0; at the level counts as above.
    // Tetrahedra: one corner alone, then two and two.
    Facet f[5];
    const double one_v[8] = {0, 4, 4, 4, 4, 4, 4, 1}, alt_v[8] = {0, 4, 0, 4, 4, 0, 4, 0};
    GridCell one, alt;
    for (int k = 0; k < 8; k++) one.p[k] = alt.p[k] = corner[k], one.val[k] = one_v[k], alt.val[k] = alt_v[k];
    ASSERT_EQ(PolygoniseCube(one, 1.0, f), 1);
    EXPECT_TRUE(same(f[0].p[0], {0.25, 0, 0}) && same(f[0].p[1], {0, 0, 0.25}) && same(f[0].p[2], {0, 0.25, 0}));
    EXPECT_EQ(PolygoniseTri(one, 1.0, f, 0, 1, 3, 4) + 10 * PolygoniseTri(alt, 1.0, f, 0, 1, 2, 3), 21);
    f[1] = {{{0, 5, 0}, {}, {}}}, f[2] = {{{0, 5, 0}, {}, {0, 0, -1}}};  // lexicographic: f[0] starts at x = 0.25
    qsort(f, 3, sizeof(Facet), PolygonCompare);
    EXPECT_TRUE(f[0].p[2].z == -1 && f[1].p[0].y == 5 && f[2].p[0].x == 0.25 && PolygonCompare(&f[0], &f[0]) == 0);
}

TEST(Isosurface, SpheresAreClosedAndClose)
{
    const double r = 0.71, area = 4 * M_PI * r * r, volume = 4 * M_PI * r * r * r / 3;
    for (bool by_tetra : {false, true}) {  // closed; the facets face the low side, the inside here
        const auto [a, v, bad] = mesh_stats(sphere_mesh(16, r, by_tetra));
        EXPECT_TRUE(bad == 0 && fabs(-v / volume - 1) < 0.05 && fabs(a / area - 1) < 0.02) << by_tetra << " " << bad;
    }
    std::vector<Facet> f(8u * 64);
    EXPECT_EQ(CreateNSphere(f.data(), -2), 8);
    for (int it = 0; it <= 3; it++) {
        const int n = CreateNSphere(f.data(), it);
        ASSERT_EQ(n, 8 << (2 * it));
        const std::vector<Facet> mesh(f.begin(), f.begin() + n);
        for (const Facet &t : mesh)
            for (const Vec3 &p : t.p) EXPECT_NEAR(Modulus(p), 1.0, 1e-15);
        const auto [a, v, bad] = mesh_stats(mesh);  // anticlockwise seen from outside
        EXPECT_TRUE(bad == 0 && v > 0 && (it < 3 || fabs(a - 4 * M_PI) < 0.2)) << it << " " << a;
    }
}
