// util/intersect.cpp - lines, planes and polygons: distances, intersections and polygon tests.
//
// Index:
//   SECTION helpers     vector difference, plane coefficients, edge distance
//   SECTION lines       LineIntersect, LineLineIntersect, PointLine2D/3D, FindClosest
//   SECTION solids      PointInBox, LinePlane, LineSegmentPlane, RaySphere
//   SECTION polygons2d  ClockWise, ConvexPolygon, WhichSide, PointInPolygon, InTriangle
//   SECTION facets      PlaneParam, PlanePoint, PointIn3DPolygon, ClipFacet,
//                       ClipLine2Box, LineFacet
//   SECTION polylines   PolygonLength, PolygonCurve
//
// Uses only util/vectors.h.
#include "util/intersect.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

// ---- SECTION helpers ---------------------------------------------------------

const double EPSILON = 0.00001;
const double rad2deg = 57.2957795;

// a - b, the usual way round (VectorSub subtracts its first argument).
Vec3 minus(Vec3 a, Vec3 b)
{
    return Vec3{a.x - b.x, a.y - b.y, a.z - b.z};
}

// a + s b
Vec3 along(Vec3 a, double s, Vec3 b)
{
    return Vec3{a.x + s * b.x, a.y + s * b.y, a.z + s * b.z};
}

// A, B, C, D of the plane through three points, normal by their order.
void plane_of(Vec3 p1, Vec3 p2, Vec3 p3, double c[4])
{
    c[0] = p1.y * (p2.z - p3.z) + p2.y * (p3.z - p1.z) + p3.y * (p1.z - p2.z);
    c[1] = p1.z * (p2.x - p3.x) + p2.z * (p3.x - p1.x) + p3.z * (p1.x - p2.x);
    c[2] = p1.x * (p2.y - p3.y) + p2.x * (p3.y - p1.y) + p3.x * (p1.y - p2.y);
    c[3] = -p1.x * (p2.y * p3.z - p3.y * p2.z) - p2.x * (p3.y * p1.z - p1.y * p3.z) -
           p3.x * (p1.y * p2.z - p2.y * p1.z);
}

// -1, 0 or 1: which side of the plane p is on, within EPSILON counting as on it.
int plane_side(Vec3 p, double A, double B, double C, double D)
{
    const double v = A * p.x + B * p.y + C * p.z + D;
    return v > EPSILON ? 1 : (v < -EPSILON ? -1 : 0);
}

// Whether q lies within EPSILON of the segment a-b.
bool near_segment(Vec3 q, Vec3 a, Vec3 b)
{
    Vec3 foot;
    double u;
    const double d = PointLine3D(q, a, b, &foot, &u);
    if (u >= 0 && u <= 1) return d < EPSILON;
    return Modulus(minus(q, a)) < EPSILON || Modulus(minus(q, b)) < EPSILON;
}

}  // namespace

// ---- SECTION lines ----------------------------------------------------------

int LineIntersect(double x1, double y1, double x2, double y2, double x3, double y3, double x4,
                  double y4, double *x, double *y)
{
    const double numera = (x4 - x3) * (y1 - y3) - (y4 - y3) * (x1 - x3);
    const double numerb = (x2 - x1) * (y1 - y3) - (y2 - y1) * (x1 - x3);
    const double denom = (y4 - y3) * (x2 - x1) - (x4 - x3) * (y2 - y1);

    if (fabs(numera) < EPSILON && fabs(numerb) < EPSILON && fabs(denom) < EPSILON) {
        *x = (x1 + x2) / 2;  // coincident
        *y = (y1 + y2) / 2;
        return 1;
    }
    *x = 0;
    *y = 0;
    if (fabs(denom) < EPSILON) return 0;  // parallel
    const double mub = numerb / denom;
    if (mub > 1) return 0;
    const double mua = numera / denom;
    if (mua < 0 || mua > 1 || mub < 0) return 0;
    *x = x1 + mua * (x2 - x1);
    *y = y1 + mua * (y2 - y1);
    return 1;
}

int LineLineIntersect(Vec3 p1, Vec3 p2, Vec3 p3, Vec3 p4, Vec3 *pa, Vec3 *pb, double *mua,
                      double *mub)
{
    const Vec3 p43 = minus(p4, p3), p21 = minus(p2, p1), p13 = minus(p1, p3);
    if (fabs(p43.x) < EPSILON && fabs(p43.y) < EPSILON && fabs(p43.z) < EPSILON) return 0;
    if (fabs(p21.x) < EPSILON && fabs(p21.y) < EPSILON && fabs(p21.z) < EPSILON) return 0;

    const double d1343 = DotProduct(p13, p43), d4321 = DotProduct(p43, p21);
    const double d1321 = DotProduct(p13, p21), d4343 = DotProduct(p43, p43);
    const double d2121 = DotProduct(p21, p21);
    const double denom = d2121 * d4343 - d4321 * d4321;
    if (fabs(denom) < EPSILON) return 0;  // parallel

    const double a = (d1343 * d4321 - d1321 * d4343) / denom;
    const double b = (d1343 + d4321 * a) / d4343;
    *mua = a;
    *mub = b;
    *pa = along(p1, a, p21);
    *pb = along(p3, b, p43);
    return 1;
}

double PointLine2D(double x, double y, double x1, double y1, double x2, double y2, Vec2 *closest,
                   double *u)
{
    const double dx = x2 - x1, dy = y2 - y1, len2 = dx * dx + dy * dy;
    if (len2 < EPSILON) {
        *u = 0;
        *closest = Vec2{x1, y1};
    } else {
        *u = ((x - x1) * dx + (y - y1) * dy) / len2;
        *closest = Vec2{x1 + *u * dx, y1 + *u * dy};
    }
    return hypot(x - closest->x, y - closest->y);
}

double PointLine3D(Vec3 p, Vec3 p1, Vec3 p2, Vec3 *closest, double *u)
{
    const Vec3 d = minus(p2, p1);
    const double len2 = DotProduct(d, d);
    if (len2 < EPSILON) {
        *u = 0;
        *closest = p1;
    } else {
        *u = DotProduct(minus(p, p1), d) / len2;
        *closest = along(p1, *u, d);
    }
    return Modulus(minus(p, *closest));
}

int FindClosest(const Vec3 *p, int n, Vec3 q, double *distance, Vec3 *closest)
{
    int index = 0;
    *distance = 1e32;
    for (int i = 0; i < n; i++) {
        const double d = Modulus(minus(p[i], q));
        if (d < *distance) {  // strict: ties keep the earlier point
            *distance = d;
            index = i;
        }
    }
    *closest = p[index];
    return index;
}

// ---- SECTION solids ---------------------------------------------------------

int PointInBox(Vec3 p, Vec3 min, Vec3 max)
{
    return min.x < p.x && p.x < max.x && min.y < p.y && p.y < max.y && min.z < p.z && p.z < max.z;
}

int LinePlane(Vec3 p1, Vec3 p2, double A, double B, double C, double D, double *mu, Vec3 *p)
{
    const double denom = A * (p1.x - p2.x) + B * (p1.y - p2.y) + C * (p1.z - p2.z);
    if (fabs(denom) < EPSILON) return 0;
    *mu = (A * p1.x + B * p1.y + C * p1.z + D) / denom;
    *p = along(p1, *mu, minus(p2, p1));
    return 1;
}

int LineSegmentPlane(Vec3 p1, Vec3 p2, double A, double B, double C, double D, Vec3 *p)
{
    double mu;
    Vec3 q;
    if (!LinePlane(p1, p2, A, B, C, D, &mu, &q) || mu < 0 || mu > 1) return 0;
    *p = q;
    return 1;
}

int RaySphere(Vec3 p1, Vec3 p2, Vec3 centre, double radius, double *mu1, double *mu2)
{
    const Vec3 dp = minus(p2, p1);
    const double a = DotProduct(dp, dp);
    const double b = 2 * DotProduct(dp, minus(p1, centre));
    const double c = DotProduct(centre, centre) + DotProduct(p1, p1) -
                     2 * DotProduct(centre, p1) - radius * radius;
    const double disc = b * b - 4 * a * c;
    if (a < EPSILON || disc < 0) {
        *mu1 = 0;
        *mu2 = 0;
        return 0;
    }
    *mu1 = (-b + sqrt(disc)) / (2 * a);
    *mu2 = (-b - sqrt(disc)) / (2 * a);
    return 1;
}

// ---- SECTION polygons2d -----------------------------------------------------

int ClockWise(const Vec2 *p, int n)
{
    if (n < 3) return 0;
    double s = 0;
    for (int i = 0; i < n; i++) {
        const int j = (i + 1) % n;
        s += p[i].x * p[j].y - p[i].y * p[j].x;
    }
    return s < 0 ? 1 : (s > 0 ? -1 : 0);
}

int ConvexPolygon(const Vec2 *p, int n)
{
    if (n < 3) return 0;
    int flag = 0;
    for (int i = 0; i < n; i++) {
        const int j = (i + 1) % n, k = (i + 2) % n;
        const double z = (p[j].x - p[i].x) * (p[k].y - p[j].y) - (p[j].y - p[i].y) * (p[k].x - p[j].x);
        if (z < 0) flag |= 1;
        if (z > 0) flag |= 2;
        if (flag == 3) return -1;
    }
    return flag ? 1 : 0;
}

int WhichSide(Vec2 p, Vec2 p1, Vec2 p2)
{
    const double v = (p.y - p1.y) * (p2.x - p1.x) - (p.x - p1.x) * (p2.y - p1.y);
    return v > 0 ? -1 : (v < 0 ? 1 : 0);
}

int PointInPolygon(const Vec2 *p, int n, Vec2 q)
{
    if (n < 3) return 0;
    int inside = 0;
    for (int i = 0, j = n - 1; i < n; j = i++) {
        // Edges crossing the horizontal through q, half-open so a vertex counts once.
        if ((p[i].y > q.y) != (p[j].y > q.y) &&
            q.x < (p[j].x - p[i].x) * (q.y - p[i].y) / (p[j].y - p[i].y) + p[i].x)
            inside = !inside;
    }
    return inside;
}

int InTriangle(Vec2 q, Vec2 a, Vec2 b, Vec2 c)
{
    auto cross = [](Vec2 o, Vec2 s, Vec2 t) { return (s.x - o.x) * (t.y - o.y) - (s.y - o.y) * (t.x - o.x); };
    const double area = cross(a, b, c);
    if (area == 0) return 0;
    // q is inside when no edge sees it on the opposite side from the third vertex.
    return cross(a, b, q) * area >= 0 && cross(b, c, q) * area >= 0 && cross(c, a, q) * area >= 0;
}

// ---- SECTION facets ---------------------------------------------------------

void PlaneParam(const Vec3 *p, double *A, double *B, double *C, double *D)
{
    double c[4];
    plane_of(p[0], p[1], p[2], c);
    *A = c[0];
    *B = c[1];
    *C = c[2];
    *D = c[3];
}

double PlanePoint(Vec3 p1, Vec3 p2, Vec3 p3, double x, double y)
{
    double c[4];
    plane_of(p1, p2, p3, c);
    if (fabs(c[2]) <= 0.000001) return 0.0;  // near-vertical plane: its own tolerance
    return -(c[0] * x + c[1] * y + c[3]) / c[2];
}

int PointIn3DPolygon(int n, const Vec3 *p, double *distance, Vec3 q)
{
    *distance = 0;
    double c[4];
    plane_of(p[0], p[1], p[2], c);
    const double len = sqrt(c[0] * c[0] + c[1] * c[1] + c[2] * c[2]);
    if (len < 0.000001) return 0;
    *distance = (c[0] * q.x + c[1] * q.y + c[2] * q.z + c[3]) / len;

    const Vec3 normal = {c[0], c[1], c[2]};
    int first = 0;
    for (int i = 0; i < n; i++) {
        const Vec3 a = p[i], b = p[(i + 1) % n];
        double e[4];
        plane_of(a, b, along(a, 1, normal), e);  // contains the edge, perpendicular to the polygon
        const double v = (e[0] * q.x + e[1] * q.y + e[2] * q.z + e[3]) /
                         sqrt(e[0] * e[0] + e[1] * e[1] + e[2] * e[2]);
        const int side = v < 0 ? -1 : 1;  // 0 and not-a-number (zero-length edge) count as +1
        if (i == 0)
            first = side;
        else if (side != first)
            return 0;
    }
    return 1;
}

int ClipFacet(const Vec3 *in, int n, double A, double B, double C, double D, Vec3 *out)
{
    int m = 0;
    for (int i = 0; i < n; i++) {
        const Vec3 a = in[i], b = in[(i + 1) % n];
        const int sa = plane_side(a, A, B, C, D), sb = plane_side(b, A, B, C, D);
        if (sa >= 0) out[m++] = a;
        if (sa * sb < 0) {  // strictly on opposite sides: the edge crosses the plane
            const double da = A * a.x + B * a.y + C * a.z + D, db = A * b.x + B * b.y + C * b.z + D;
            out[m++] = along(a, da / (da - db), minus(b, a));
        }
    }
    return m;
}

int ClipLine2Box(Vec3 *p1, Vec3 *p2, Vec3 min, Vec3 max)
{
    // Parametric clipping: keep the part of p1 + t d, t in [t0, t1], inside every slab.
    const double p[3] = {p1->x, p1->y, p1->z}, d[3] = {p2->x - p1->x, p2->y - p1->y, p2->z - p1->z};
    const double lo[3] = {min.x, min.y, min.z}, hi[3] = {max.x, max.y, max.z};
    double t0 = 0, t1 = 1;
    for (int k = 0; k < 3; k++) {
        if (d[k] == 0) {
            if (p[k] < lo[k] || p[k] > hi[k]) return 0;  // parallel to this slab and outside it
            continue;
        }
        double ta = (lo[k] - p[k]) / d[k], tb = (hi[k] - p[k]) / d[k];
        if (ta > tb) std::swap(ta, tb);
        t0 = std::max(t0, ta);
        t1 = std::min(t1, tb);
        if (t0 > t1) return 0;
    }
    const Vec3 start = *p1, dir = {d[0], d[1], d[2]};
    if (t1 < 1) *p2 = along(start, t1, dir);
    if (t0 > 0) *p1 = along(start, t0, dir);
    return 1;
}

int LineFacet(Vec3 p1, Vec3 p2, const Vec3 *f, int n, Vec3 *p)
{
    if (n < 3) return 0;
    // Newell's normal: sound for concave facets and collinear leading vertices.
    Vec3 nrm = {0, 0, 0};
    for (int i = 0; i < n; i++) {
        const Vec3 a = f[i], b = f[(i + 1) % n];
        nrm.x += (a.y - b.y) * (a.z + b.z);
        nrm.y += (a.z - b.z) * (a.x + b.x);
        nrm.z += (a.x - b.x) * (a.y + b.y);
    }
    if (Modulus(nrm) < EPSILON) return 0;
    Normalise(&nrm);

    const Vec3 dir = minus(p2, p1);
    const double denom = DotProduct(nrm, dir);
    if (fabs(denom) < EPSILON) return 0;
    const double mu = DotProduct(nrm, minus(f[0], p1)) / denom;
    if (mu < 0 || mu > 1) return 0;
    const Vec3 q = along(p1, mu, dir);

    // Project onto the coordinate plane the facet is least tilted to.
    const double ax = fabs(nrm.x), ay = fabs(nrm.y), az = fabs(nrm.z);
    auto flat = [&](Vec3 v) {
        if (az >= ax && az >= ay) return Vec2{v.x, v.y};
        if (ay >= ax) return Vec2{v.z, v.x};
        return Vec2{v.y, v.z};
    };
    std::vector<Vec2> poly(n);
    for (int i = 0; i < n; i++) poly[i] = flat(f[i]);
    int hit = PointInPolygon(poly.data(), n, flat(q));
    for (int i = 0; i < n && !hit; i++) hit = near_segment(q, f[i], f[(i + 1) % n]);
    if (hit) *p = q;
    return hit;
}

// ---- SECTION polylines ------------------------------------------------------

double PolygonLength(const Vec3 *p, int n)
{
    double len = 0;
    for (int i = 0; i < n - 1; i++) len += Modulus(minus(p[i + 1], p[i]));
    return len;
}

double PolygonCurve(const Vec3 *p, int n)
{
    if (n < 3) return 0;
    const Vec3 a = minus(p[1], p[0]);
    double largest = -1e32, smallest = 1e32;
    for (int k = 2; k < n; k++) {
        const Vec3 b = minus(p[k], p[0]);
        const double d = Modulus(a) * Modulus(b);
        double angle = 0;
        if (d > 0.00001) {
            const double x = DotProduct(a, b) / d;
            angle = x <= -1 ? M_PI : (x >= 1 ? 0 : acos(x));
        }
        largest = std::max(largest, angle);
        smallest = std::min(smallest, angle);
    }
    return (largest - smallest) * rad2deg;
}
