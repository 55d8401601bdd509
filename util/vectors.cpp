// util/vectors.cpp - vector arithmetic, rotations, polar conversions and
// interpolation. Pure maths over the Vec3 and Vec2 records.
#include "util/vectors.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double equal_tol = 0.000001;   // VectorEqual and degenerate polar cases
constexpr double angle_tol = 0.00001;    // zero-length test of VectorAngle
constexpr double dtor = 0.0174532925;    // degrees to radians, deliberately short
constexpr double rtod = 57.2957795;      // radians to degrees, deliberately short

// asin of a ratio that rounding may push just past +-1.
double safe_asin(double v)
{
    return asin(std::clamp(v, -1.0, 1.0));
}

}  // namespace

// ---- arithmetic --------------------------------------------------------------

Vec3 MakeVector(double x, double y, double z)
{
    return Vec3{x, y, z};
}

Vec3 VectorAdd(Vec3 p1, Vec3 p2)
{
    return Vec3{p1.x + p2.x, p1.y + p2.y, p1.z + p2.z};
}

Vec3 VectorSub(Vec3 p1, Vec3 p2)
{
    return Vec3{p2.x - p1.x, p2.y - p1.y, p2.z - p1.z};
}

Vec3 VectorMul(Vec3 p, double s)
{
    return Vec3{s * p.x, s * p.y, s * p.z};
}

Vec3 VectorInvert(Vec3 p)
{
    return Vec3{-p.x, -p.y, -p.z};
}

Vec3 VectorCombination(double a, double b, double c, Vec3 p1, Vec3 p2, Vec3 p3)
{
    return Vec3{a * p1.x + b * p2.x + c * p3.x, a * p1.y + b * p2.y + c * p3.y,
                a * p1.z + b * p2.z + c * p3.z};
}

Vec3 MidPoint(Vec3 p1, Vec3 p2)
{
    return Vec3{(p1.x + p2.x) / 2, (p1.y + p2.y) / 2, (p1.z + p2.z) / 2};
}

Vec3 Centroid(const Vec3 *p, int n)
{
    Vec3 sum{0, 0, 0};
    for (int i = 0; i < n; i++) sum = VectorAdd(sum, p[i]);
    return Vec3{sum.x / n, sum.y / n, sum.z / n};
}

void MinMaxXYZ(Vec3 *min, Vec3 *max, Vec3 p)
{
    if (p.x < min->x) min->x = p.x;
    if (p.y < min->y) min->y = p.y;
    if (p.z < min->z) min->z = p.z;
    if (p.x > max->x) max->x = p.x;
    if (p.y > max->y) max->y = p.y;
    if (p.z > max->z) max->z = p.z;
}

double DotProduct(Vec3 p1, Vec3 p2)
{
    return p1.x * p2.x + p1.y * p2.y + p1.z * p2.z;
}

Vec3 CrossProduct(Vec3 p1, Vec3 p2)
{
    return Vec3{p1.y * p2.z - p1.z * p2.y, p1.z * p2.x - p1.x * p2.z, p1.x * p2.y - p1.y * p2.x};
}

// ---- lengths, angles, normals ------------------------------------------------

double Modulus(Vec3 p)
{
    return sqrt(p.x * p.x + p.y * p.y + p.z * p.z);
}

double VectorLength(Vec3 p1, Vec3 p2)
{
    return Modulus(VectorSub(p2, p1));
}

void Normalise(Vec3 *p)
{
    const double len = Modulus(*p);
    if (len > 0) {
        p->x /= len;
        p->y /= len;
        p->z /= len;
    } else {
        *p = Vec3{0, 0, 0};
    }
}

void SetVectorLength(Vec3 *p, double len)
{
    Normalise(p);
    *p = VectorMul(*p, len);
}

int VectorEqual(Vec3 p1, Vec3 p2)
{
    return fabs(p1.x - p2.x) <= equal_tol && fabs(p1.y - p2.y) <= equal_tol &&
           fabs(p1.z - p2.z) <= equal_tol;
}

double VectorAngle(Vec3 p1, Vec3 p2)
{
    const double d = Modulus(p1) * Modulus(p2);
    if (d <= angle_tol) return 0;
    const double c = DotProduct(p1, p2) / d;
    if (c <= -1) return M_PI;
    if (c >= 1) return 0;
    return acos(c);
}

void VectorPerp(Vec3 *v, Vec3 n)
{
    const double len = Modulus(*v);
    // (n x v) x n = |n|^2 v - (n.v) n: v without its part along n, scaled by
    // |n|^2, so only its direction is used.
    Vec3 u = CrossProduct(CrossProduct(n, *v), n);
    Normalise(&u);
    *v = VectorMul(u, len);
}

Vec3 CalcNormal(Vec3 p1, Vec3 p2, Vec3 p3)
{
    Vec3 n = CrossProduct(VectorSub(p1, p2), VectorSub(p1, p3));
    Normalise(&n);
    return n;
}

void SwapXYZ(Vec3 *p1, Vec3 *p2)
{
    const Vec3 t = *p1;
    *p1 = *p2;
    *p2 = t;
}

double Angle2D(double x1, double y1, double x2, double y2)
{
    double a = atan2(y2, x2) - atan2(y1, x1);
    while (a > M_PI) a -= 2 * M_PI;
    while (a < -M_PI) a += 2 * M_PI;
    return a;
}

double FowlerAngle(double dy, double dx)
{
    const double ax = fabs(dx), ay = fabs(dy);
    const bool steep = ay > ax;  // closer to the y axis than to the x axis
    if (dx >= 0 && dy >= 0) {
        if (!steep) return ax == 0 ? 0 : ay / ax;  // boundary: dx == dy == 0
        return 2 - ax / ay;
    }
    if (dx < 0 && dy >= 0) return steep ? 2 + ax / ay : 4 - ay / ax;
    if (dx >= 0) return steep ? 6 + ax / ay : 8 - ay / ax;  // dy < 0
    return steep ? 6 - ax / ay : 4 + ay / ax;             // dx < 0, dy < 0
}

// ---- rotations ---------------------------------------------------------------

Vec2 Vector2DRotate(double x, double y, double theta)
{
    const double c = cos(theta), s = sin(theta);
    return Vec2{c * x + s * y, c * y - s * x};
}

Vec3 RotateX(Vec3 p, double theta)
{
    const double c = cos(theta), s = sin(theta);
    return Vec3{p.x, c * p.y + s * p.z, c * p.z - s * p.y};
}

Vec3 RotateY(Vec3 p, double theta)
{
    const double c = cos(theta), s = sin(theta);
    return Vec3{c * p.x - s * p.z, p.y, s * p.x + c * p.z};
}

Vec3 RotateZ(Vec3 p, double theta)
{
    const double c = cos(theta), s = sin(theta);
    return Vec3{c * p.x + s * p.y, c * p.y - s * p.x, p.z};
}

Vec3 ArbitraryRotate(Vec3 p, double theta, Vec3 r)
{
    Normalise(&r);
    const double c = cos(theta), s = sin(theta), t = 1 - c;
    Vec3 q;
    q.x = (c + t * r.x * r.x) * p.x + (t * r.x * r.y - s * r.z) * p.y + (t * r.x * r.z + s * r.y) * p.z;
    q.y = (t * r.x * r.y + s * r.z) * p.x + (c + t * r.y * r.y) * p.y + (t * r.y * r.z - s * r.x) * p.z;
    q.z = (t * r.x * r.z - s * r.y) * p.x + (t * r.y * r.z + s * r.x) * p.y + (c + t * r.z * r.z) * p.z;
    return q;
}

Vec3 ArbitraryRotate2(Vec3 p, double theta, Vec3 p1, Vec3 p2)
{
    const Vec3 q = ArbitraryRotate(VectorSub(p1, p), theta, VectorSub(p1, p2));
    return VectorAdd(q, p1);
}

// ---- polar conversions ---------------------------------------------------------

void XYZ2Polar(double x, double y, double z, double *radius, double *latitude, double *longitude)
{
    const double r = sqrt(x * x + y * y + z * z);
    *radius = r;
    if (r < equal_tol) {
        *latitude = 0;
        *longitude = 90;
        return;
    }
    const double lat = safe_asin(z / r);
    const double k = cos(lat) * r;  // distance from the z axis
    *latitude = lat * rtod;
    *longitude = fabs(k) < equal_tol ? 90 : safe_asin(y / k) * rtod + 90;
}

void Polar2XYZ(double radius, double latitude, double longitude, double *x, double *y, double *z)
{
    const double lat = latitude * dtor;
    const double lon = (longitude - 90) * dtor;
    *x = radius * cos(lat) * cos(lon);
    *y = radius * cos(lat) * sin(lon);
    *z = radius * sin(lat);
}

void InverseSpherical(Vec3 p, double *theta, double *phi)
{
    Normalise(&p);
    *theta = atan2(p.y, p.x) + M_PI;
    *phi = atan2(p.z, sqrt(p.x * p.x + p.y * p.y));
}

// ---- interpolation between samples ---------------------------------------------

double LinearInterpolate(double y1, double y2, double mu)
{
    return y1 * (1 - mu) + y2 * mu;
}

double CosineInterpolate(double y1, double y2, double mu)
{
    const double m = (1 - cos(mu * M_PI)) / 2;
    return y1 * (1 - m) + y2 * m;
}

double CubicInterpolate(double y0, double y1, double y2, double y3, double mu)
{
    const double mu2 = mu * mu;
    const double a0 = y3 - y2 - y0 + y1;
    const double a1 = y0 - y1 - a0;
    const double a2 = y2 - y0;
    const double a3 = y1;
    return a0 * mu * mu2 + a1 * mu2 + a2 * mu + a3;
}

double HermiteInterpolate(double y0, double y1, double y2, double y3, double mu, double tension,
                          double bias)
{
    const double mu2 = mu * mu, mu3 = mu2 * mu;
    const double k = (1 - tension) / 2;
    const double m0 = (y1 - y0) * (1 + bias) * k + (y2 - y1) * (1 - bias) * k;
    const double m1 = (y2 - y1) * (1 + bias) * k + (y3 - y2) * (1 - bias) * k;
    return (2 * mu3 - 3 * mu2 + 1) * y1 + (mu3 - 2 * mu2 + mu) * m0 + (mu3 - mu2) * m1 +
           (-2 * mu3 + 3 * mu2) * y2;
}
