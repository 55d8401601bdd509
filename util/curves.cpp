// util/curves.cpp - open uniform B-splines and Bezier curves.
#include "util/curves.h"

#include <cmath>

namespace {

// Multiplies blend by C(n, k), dividing as it goes so that no intermediate
// grows much beyond the result.
double times_binomial(double blend, int n, int k)
{
    int nn = n, kn = k, nkn = n - k;
    while (nn >= 1) {
        blend *= nn;
        nn--;
        if (kn > 1) {
            blend /= kn;
            kn--;
        }
        if (nkn > 1) {
            blend /= nkn;
            nkn--;
        }
    }
    return blend;
}

// p += s * q
void add_scaled(Vec3 *p, double s, Vec3 q)
{
    p->x += s * q.x;
    p->y += s * q.y;
    p->z += s * q.z;
}

}  // namespace

// ---- B-splines ----------------------------------------------------------------

void SplineKnots(int *u, int n, int t)
{
    for (int j = 0; j <= n + t; j++) {
        if (j < t)
            u[j] = 0;
        else if (j <= n)
            u[j] = j - t + 1;
        else
            u[j] = n - t + 2;
    }
}

double SplineBlend(int k, int t, const int *u, double v)
{
    if (t < 1) return 0;
    if (t == 1) return (u[k] <= v && v < u[k + 1]) ? 1 : 0;
    const int a = u[k + t - 1] - u[k], b = u[k + t] - u[k + 1];  // knot spans; 0 for repeated knots
    if (a == 0 && b == 0) return 0;
    if (a == 0) return (u[k + t] - v) / b * SplineBlend(k + 1, t - 1, u, v);
    if (b == 0) return (v - u[k]) / a * SplineBlend(k, t - 1, u, v);
    return (v - u[k]) / a * SplineBlend(k, t - 1, u, v) +
           (u[k + t] - v) / b * SplineBlend(k + 1, t - 1, u, v);
}

void SplinePoint(const int *u, int n, int t, double v, const Vec3 *control, Vec3 *output)
{
    *output = Vec3{0, 0, 0};
    for (int k = 0; k <= n; k++) add_scaled(output, SplineBlend(k, t, u, v), control[k]);
}

void SplineCurve(const Vec3 *inp, int n, const int *knots, int t, Vec3 *outp, int res)
{
    if (res < 1) return;
    if (res >= 2) {
        const double step = (double)(n - t + 2) / (res - 1);
        double v = 0;
        for (int i = 0; i < res - 1; i++) {
            SplinePoint(knots, n, t, v, inp, &outp[i]);
            v += step;
        }
    }
    // The half-open blending gives 0 at the last knot; end on the last point instead.
    outp[res - 1] = n >= 0 ? inp[n] : Vec3{0, 0, 0};
}

// ---- Bezier curves --------------------------------------------------------------

Vec3 Bezier(const Vec3 *p, int n, double mu)
{
    Vec3 b = {0, 0, 0};
    if (n < 0) return b;
    double muk = 1, munk = pow(1 - mu, (double)n);
    for (int k = 0; k <= n; k++) {
        const double blend = times_binomial(muk * munk, n, k);
        muk *= mu;
        munk /= 1 - mu;  // kept: at mu == 1 this is 0/0 from the second term on
        add_scaled(&b, blend, p[k]);
    }
    return b;
}

double BezierBlend(int k, int n, double mu)
{
    double blend = times_binomial(1, n, k);
    if (k >= 1) blend *= pow(mu, (double)k);
    if (n - k >= 1) blend *= pow(1 - mu, (double)(n - k));
    return blend;
}

Vec3 Bezier3(Vec3 p1, Vec3 p2, Vec3 p3, double mu)
{
    const double m = 1 - mu, a = m * m, b = 2 * mu * m, c = mu * mu;
    return Vec3{a * p1.x + b * p2.x + c * p3.x, a * p1.y + b * p2.y + c * p3.y,
                a * p1.z + b * p2.z + c * p3.z};
}

Vec3 Bezier4(Vec3 p1, Vec3 p2, Vec3 p3, Vec3 p4, double mu)
{
    const double m = 1 - mu, a = m * m * m, b = 3 * mu * m * m, c = 3 * mu * mu * m,
                 d = mu * mu * mu;
    return Vec3{a * p1.x + b * p2.x + c * p3.x + d * p4.x, a * p1.y + b * p2.y + c * p3.y + d * p4.y,
                a * p1.z + b * p2.z + c * p3.z + d * p4.z};
}

Vec3 CubicBezier(Vec3 p0, Vec3 p1, Vec3 p2, Vec3 p3, double mu)
{
    const double q[4][3] = {{p0.x, p0.y, p0.z}, {p1.x, p1.y, p1.z}, {p2.x, p2.y, p2.z},
                            {p3.x, p3.y, p3.z}};
    double r[3];
    for (int i = 0; i < 3; i++) {
        const double c = 3 * (q[1][i] - q[0][i]);
        const double b = 3 * (q[2][i] - q[1][i]) - c;
        const double a = q[3][i] - q[0][i] - c - b;
        r[i] = a * mu * mu * mu + b * mu * mu + c * mu + q[0][i];
    }
    return Vec3{r[0], r[1], r[2]};
}
