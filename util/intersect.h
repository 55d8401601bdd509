// util/intersect.h - lines, planes and polygons: distances, intersections and polygon tests.
//
// 3-D points are Vec3, plane points and polygons Vec2; a polygon is an array
// of n vertices with the last joined back to the first. A plane is
// A*x + B*y + C*z + D = 0 given by four doubles (the normal (A, B, C) need not
// be unit length). Truth values are ints, 1 true and 0 false. Near-zero tests
// use EPSILON = 0.00001 unless a function says otherwise. Pure functions:
// results go out through caller pointers; nothing is allocated or kept.
#pragma once

#include "util/vectors.h"

// ---- Lines and segments -------------------------------------------------------

// Whether segments (x1,y1)-(x2,y2) and (x3,y3)-(x4,y4) meet, end points
// included; (*x, *y) is the meeting point. Collinear segments (all three
// determinants below EPSILON) count as meeting at the midpoint of the first,
// even when they do not overlap; parallel or missing segments give 0 with
// the point (0, 0).
int LineIntersect(double x1, double y1, double x2, double y2, double x3, double y3, double x4,
                  double y4, double *x, double *y);
// The shortest segment pa-pb between the infinite lines p1p2 and p3p4, with
// pa = p1 + mua (p2 - p1) and pb = p3 + mub (p4 - p3). Returns 0, writing
// nothing, when either line has (near) zero length or the lines are parallel.
int LineLineIntersect(Vec3 p1, Vec3 p2, Vec3 p3, Vec3 p4, Vec3 *pa, Vec3 *pb, double *mua,
                      double *mub);
// Distance from (x, y) to the infinite line through (x1, y1) and (x2, y2).
// *closest is the foot p1 + u (p2 - p1), u unclamped; when the two line points
// are (nearly) equal, u = 0 and the foot is (x1, y1).
double PointLine2D(double x, double y, double x1, double y1, double x2, double y2, Vec2 *closest,
                   double *u);
// As PointLine2D, in space: distance from p to the line through p1 and p2.
double PointLine3D(Vec3 p, Vec3 p1, Vec3 p2, Vec3 *closest, double *u);
// Index of the point of p[0..n-1] nearest to q (the earlier one on ties),
// with its distance and a copy of it. For n < 1: index 0, *closest = p[0]
// and *distance = 1e32, so p must always hold at least one point.
int FindClosest(const Vec3 *p, int n, Vec3 q, double *distance, Vec3 *closest);

// ---- Boxes, planes and spheres ------------------------------------------------

// Whether p lies strictly inside the box: a point on a face is outside.
int PointInBox(Vec3 p, Vec3 min, Vec3 max);
// Where the infinite line p1p2 meets the plane: *p = p1 + *mu (p2 - p1), any
// mu. Returns 0, writing nothing, when the line is (nearly) parallel to it.
int LinePlane(Vec3 p1, Vec3 p2, double A, double B, double C, double D, double *mu, Vec3 *p);
// As LinePlane, but only between p1 and p2 (0 <= mu <= 1); *p is written
// only when the segment meets the plane.
int LineSegmentPlane(Vec3 p1, Vec3 p2, double A, double B, double C, double D, Vec3 *p);
// Where the infinite line p1p2 meets the sphere: at p1 + mu (p2 - p1) for
// mu = *mu1 and *mu2, with *mu1 >= *mu2 (equal for a tangent). Returns 0 with
// both 0 when the line misses or p1 and p2 (nearly) coincide.
int RaySphere(Vec3 p1, Vec3 p2, Vec3 centre, double radius, double *mu1, double *mu2);

// ---- Plane polygons -----------------------------------------------------------

// 1 clockwise, -1 counter-clockwise (by the sign of the signed area), 0 for
// zero area or n < 3.
int ClockWise(const Vec2 *p, int n);
// 1 convex, -1 concave (turns both ways), 0 for n < 3 or all collinear.
int ConvexPolygon(const Vec2 *p, int n);
// Which side of the line p1->p2 the point p lies on: -1 to the left, 1 to the
// right, 0 exactly on it.
int WhichSide(Vec2 p, Vec2 p1, Vec2 p2);
// Whether q lies inside the polygon p[0..n-1] by the even-odd rule (so
// concave and self-crossing polygons work). Points exactly on an edge may
// fall either side. 0 for n < 3.
int PointInPolygon(const Vec2 *p, int n, Vec2 q);
// Whether q lies inside the triangle a, b, c or on its edges, for either
// vertex order. A degenerate (zero-area) triangle contains nothing.
int InTriangle(Vec2 q, Vec2 a, Vec2 b, Vec2 c);

// ---- Planes through points and facets -----------------------------------------

// The plane through p[0], p[1], p[2]; its normal (A, B, C) is not normalised
// and its sign follows the order of the points. All zero for collinear points.
void PlaneParam(const Vec3 *p, double *A, double *B, double *C, double *D);
// z of the plane through p1, p2, p3 above (x, y); 0.0 when the plane is
// within 1e-6 of vertical (|C| <= 0.000001).
double PlanePoint(Vec3 p1, Vec3 p2, Vec3 p3, double x, double y);
// Whether q, projected along the normal, lies within the edges of the convex
// polygon p[0..n-1]; *distance is q's signed distance from the plane of the
// first three vertices. p must hold at least three vertices even for n < 3.
// Returns 0 with distance 0 when those three are collinear; n = 0 gives 1.
int PointIn3DPolygon(int n, const Vec3 *p, double *distance, Vec3 q);
// Clips the facet in[0..n-1] to the half-space A x + B y + C z + D >= 0
// (vertices within EPSILON of the plane count as on it and are kept),
// writing the clipped polygon to out and returning its vertex count, 0 when
// nothing is left. out must not overlap in and needs room for 2n vertices
// (n + n/2 is the most a polygon can produce).
int ClipFacet(const Vec3 *in, int n, double A, double B, double C, double D, Vec3 *out);
// Clips the segment p1-p2 to the closed box min..max (faces included),
// moving the end points onto the box. Returns 0, leaving both untouched,
// when no part of the segment is inside.
int ClipLine2Box(Vec3 *p1, Vec3 *p2, Vec3 min, Vec3 max);
// Where the segment p1-p2 crosses the plane facet f[0..n-1] (convex or not,
// assumed flat): returns 1 and the point in *p when the crossing lies inside
// the facet or within EPSILON of an edge; 0, writing nothing, when it misses,
// when the segment is (nearly) parallel to the facet, or the facet has n < 3
// or (near) zero area.
int LineFacet(Vec3 p1, Vec3 p2, const Vec3 *f, int n, Vec3 *p);

// ---- Polylines ----------------------------------------------------------------

// Length of the open polyline p[0] ... p[n-1] (no closing edge); 0 for n < 2.
double PolygonLength(const Vec3 *p, int n);
// Spread in degrees of the directions from p[0] to p[2..n-1], each measured
// as its angle to p[1] - p[0]: largest minus smallest. 0 for n < 3.
double PolygonCurve(const Vec3 *p, int n);
