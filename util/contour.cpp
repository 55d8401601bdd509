// util/contour.cpp - contour lines of gridded data and plane sections of facets.
#include "util/contour.h"

namespace {

// Corner offsets of vertices 1..4 of a cell: (i,j), (i+1,j), (i+1,j+1), (i,j+1).
constexpr int im[4] = {0, 1, 1, 0};
constexpr int jm[4] = {0, 0, 1, 1};

// Segment case of a triangle by the signs (+1) of its vertices m1, m2, m3:
// 1-3 an edge between two vertices on the level, 4-6 a vertex on the level to
// the crossing of the opposite side, 7-9 a crossing to a crossing.
constexpr int castab[3][3][3] = {
    {{0, 0, 8}, {0, 2, 5}, {7, 6, 9}},
    {{0, 3, 4}, {1, 3, 1}, {4, 3, 0}},
    {{9, 6, 7}, {5, 2, 0}, {8, 0, 0}},
};

int sign(double h)
{
    return h > 0.0 ? 1 : (h < 0.0 ? -1 : 0);
}

double lesser(double a, double b)
{
    return a < b ? a : b;
}

double greater(double a, double b)
{
    return a > b ? a : b;
}

}  // namespace

void Contour(const double *const *d, int ilb, int iub, int jlb, int jub, const double *x,
             const double *y, int nc, const double *z, ContourCallback callback)
{
    if (jub <= jlb || nc < 1) return;
    double h[5], xh[5], yh[5];
    int sh[5];

    for (int j = jub - 1; j >= jlb; j--) {
        for (int i = ilb; i <= iub - 1; i++) {
            const double dmin = lesser(lesser(d[i][j], d[i][j + 1]), lesser(d[i + 1][j], d[i + 1][j + 1]));
            const double dmax = greater(greater(d[i][j], d[i][j + 1]), greater(d[i + 1][j], d[i + 1][j + 1]));
            if (dmax < z[0] || dmin > z[nc - 1]) continue;

            for (int k = 0; k < nc; k++) {
                if (z[k] < dmin || z[k] > dmax) continue;
                for (int m = 4; m >= 1; m--) {
                    h[m] = d[i + im[m - 1]][j + jm[m - 1]] - z[k];
                    xh[m] = x[i + im[m - 1]];
                    yh[m] = y[j + jm[m - 1]];
                }
                h[0] = 0.25 * (h[1] + h[2] + h[3] + h[4]);
                xh[0] = 0.5 * (x[i] + x[i + 1]);
                yh[0] = 0.5 * (y[j] + y[j + 1]);
                for (int m = 0; m <= 4; m++) sh[m] = sign(h[m]);

                // Triangle m runs corner m, centre, next corner.
                for (int m = 1; m <= 4; m++) {
                    const int m1 = m, m2 = 0, m3 = m == 4 ? 1 : m + 1;
                    const int c = castab[sh[m1] + 1][sh[m2] + 1][sh[m3] + 1];
                    if (c == 0) continue;
                    // Crossing of the level on side a-b, by linear interpolation.
                    auto xs = [&](int a, int b) { return (h[b] * xh[a] - h[a] * xh[b]) / (h[b] - h[a]); };
                    auto ys = [&](int a, int b) { return (h[b] * yh[a] - h[a] * yh[b]) / (h[b] - h[a]); };
                    double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
                    switch (c) {
                    case 1: x1 = xh[m1]; y1 = yh[m1]; x2 = xh[m2]; y2 = yh[m2]; break;
                    case 2: x1 = xh[m2]; y1 = yh[m2]; x2 = xh[m3]; y2 = yh[m3]; break;
                    case 3: x1 = xh[m3]; y1 = yh[m3]; x2 = xh[m1]; y2 = yh[m1]; break;
                    case 4: x1 = xh[m1]; y1 = yh[m1]; x2 = xs(m2, m3); y2 = ys(m2, m3); break;
                    case 5: x1 = xh[m2]; y1 = yh[m2]; x2 = xs(m3, m1); y2 = ys(m3, m1); break;
                    case 6: x1 = xh[m3]; y1 = yh[m3]; x2 = xs(m1, m2); y2 = ys(m1, m2); break;
                    case 7: x1 = xs(m1, m2); y1 = ys(m1, m2); x2 = xs(m2, m3); y2 = ys(m2, m3); break;
                    case 8: x1 = xs(m2, m3); y1 = ys(m2, m3); x2 = xs(m3, m1); y2 = ys(m3, m1); break;
                    case 9: x1 = xs(m3, m1); y1 = ys(m3, m1); x2 = xs(m1, m2); y2 = ys(m1, m2); break;
                    }
                    callback(x1, y1, x2, y2, z[k]);
                }
            }
        }
    }
}

int ContourFacet(const Vec3 *facet, Vec3 normal, Vec3 point, Vec3 *p1, Vec3 *p2)
{
    // Divided, not Normalise()d: a zero normal gives NaN sides and so -1 below.
    const Vec3 n = VectorMul(normal, 1.0 / Modulus(normal));
    // The plane constant takes the normal as given; for a unit normal the two agree.
    const double c = DotProduct(normal, point);
    double s[3];
    for (int k = 0; k < 3; k++) s[k] = DotProduct(n, facet[k]) - c;

    if (s[0] >= 0 && s[1] >= 0 && s[2] >= 0) return 0;
    if (s[0] <= 0 && s[1] <= 0 && s[2] <= 0) return 0;

    int sg[3];
    for (int k = 0; k < 3; k++) sg[k] = s[k] < 0 ? -1 : 1;
    // The lone vertex and the two across from it, in this fixed pairing.
    int l, a, b;
    if (sg[0] != sg[1] && sg[0] != sg[2]) {
        l = 0, a = 2, b = 1;
    } else if (sg[1] != sg[0] && sg[1] != sg[2]) {
        l = 1, a = 2, b = 0;
    } else if (sg[2] != sg[0] && sg[2] != sg[1]) {
        l = 2, a = 0, b = 1;
    } else {
        return -1;
    }
    // p = L - (A - L) s(L) / (s(A) - s(L)), where the side changes sign.
    *p1 = VectorSub(VectorMul(VectorSub(facet[l], facet[a]), s[l] / (s[a] - s[l])), facet[l]);
    *p2 = VectorSub(VectorMul(VectorSub(facet[l], facet[b]), s[l] / (s[b] - s[l])), facet[l]);
    return 2;
}
