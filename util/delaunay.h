// util/delaunay.h - Delaunay triangulation of points in the plane.
//
// Incremental insertion into a large enclosing triangle (Bowyer-Watson). Points
// are Vec3 records whose z is carried but ignored. Triangles are index triples
// into the caller's point array. The one output of the family is the progress
// line Triangulate writes to standard error.
#pragma once

#include "util/vectors.h"

// One triangle: three indices into the point array.
struct TriIndex {
    int p1, p2, p3;
};

// One edge of a triangle: two indices into the point array.
struct EdgeIndex {
    int p1, p2;
};

// Triangulates the nv points pxyz[0..nv-1], which must be sorted by increasing
// x (ties in any order, e.g. sorted by x then y): a triangle whose circumcircle
// lies wholly left of the current point is never tested again.
//
// Array sizes the caller provides, and the only entries written:
//   pxyz: nv + 3 points. The enclosing triangle's corners go to pxyz[nv],
//         pxyz[nv+1] and pxyz[nv+2] (z = 0) and stay there.
//   v:    4 * nv triangles, and at least 1 (the enclosing triangle is built in
//         v[0] even for nv = 0). No more than 4 * nv triangles ever exist.
// On success v[0..*ntri-1] holds the triangles, vertices as (p1, p2, p3) of
// Bowyer-Watson insertion; the order is fixed by the input.
//
// Writes "Triangulated %d of %d\n" to standard error for every point whose
// index is a multiple of nv / 100. That interval is zero for 1 to 99 points
// and the remainder then divides by zero: the function serves nv = 0 and
// nv >= 100 only. Negative nv gives 0 triangles and touches no array.
//
// Returns 0 on success; 1 when the per-triangle flags cannot be allocated
// (also when 4 * nv exceeds the int range); 2 when the edge buffer cannot be
// allocated; 3 when it cannot be enlarged; 4 when the triangle count would
// pass 4 * nv. On failure v holds partial work and *ntri the running count.
int Triangulate(int nv, Vec3 *pxyz, TriIndex *v, int *ntri);

// Circumcircle of (x1,y1), (x2,y2), (x3,y3): centre (*xc, *yc) and squared
// radius *rsqr. Returns 1 when (xp, yp) lies inside or on it (within 0.000001
// of the squared radius), else 0. When all three y agree within 0.000001 it
// returns 0 at once and leaves the outputs untouched.
int CircumCircle(double xp, double yp, double x1, double y1, double x2, double y2, double x3,
                 double y3, double *xc, double *yc, double *rsqr);
