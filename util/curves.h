// util/curves.h - open uniform B-splines and Bezier curves of any degree.
//
// Points are Vec3. A curve of n + 1 control points uses indices 0..n. A
// B-spline of order t (degree t - 1) uses an int knot vector of n + t + 1
// entries, filled by SplineKnots; its parameter runs from 0 to n - t + 2.
// Pure functions: results go into caller arrays, nothing is allocated.
#pragma once

#include "util/vectors.h"

// ---- B-splines ----------------------------------------------------------------

// Fills u[0..n+t] with the clamped uniform knots: t zeros, then 1, 2, ...,
// then t copies of n - t + 2. For n = 4, t = 3: 0 0 0 1 2 3 3 3.
void SplineKnots(int *u, int n, int t);
// The Cox-de Boor weight of control point k for order t at parameter v. The
// order-1 test is half-open, u[k] <= v < u[k+1], so at the last knot every
// weight is 0. Reads u[k..k+t]; 0 for t < 1.
double SplineBlend(int k, int t, const int *u, double v);
// *output = sum over k = 0..n of SplineBlend(k, t, u, v) * control[k];
// (0, 0, 0) for n < 0 and at v equal to the last knot.
void SplinePoint(const int *u, int n, int t, double v, const Vec3 *control, Vec3 *output);
// Samples the curve of inp[0..n] at res evenly spaced parameters from 0 to
// n - t + 2 into outp[0..res-1]. The last sample is set to inp[n] exactly
// (the blending alone gives 0 there); with n < 0 every sample is (0, 0, 0).
// res < 1 writes nothing.
void SplineCurve(const Vec3 *inp, int n, const int *knots, int t, Vec3 *outp, int res);

// ---- Bezier curves --------------------------------------------------------------

// The point at mu of the degree-n curve of p[0..n]; (0, 0, 0) for n < 0. The
// powers of (1 - mu) are formed by division, so mu must stay below 1: at
// mu == 1 every coordinate is not-a-number for n >= 1 (use Bezier3, Bezier4
// or CubicBezier to reach the end point).
Vec3 Bezier(const Vec3 *p, int n, double mu);
// The Bernstein weight C(n, k) mu^k (1 - mu)^(n - k); a power whose exponent
// is below 1 counts as 1.
double BezierBlend(int k, int n, double mu);
// Quadratic curve point: (1-mu)^2 p1 + 2 mu (1-mu) p2 + mu^2 p3.
Vec3 Bezier3(Vec3 p1, Vec3 p2, Vec3 p3, double mu);
// Cubic curve point in Bernstein form, p1 at mu = 0 and p4 at mu = 1.
Vec3 Bezier4(Vec3 p1, Vec3 p2, Vec3 p3, Vec3 p4, double mu);
// The same cubic in polynomial form a mu^3 + b mu^2 + c mu + p0.
Vec3 CubicBezier(Vec3 p0, Vec3 p1, Vec3 p2, Vec3 p3, double mu);
