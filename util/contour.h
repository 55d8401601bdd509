// util/contour.h - contour lines of gridded data and plane sections of facets.
//
// Contour walks a sampled function cell by cell and hands every segment to a
// callback; it keeps nothing. ContourFacet cuts one triangle with a plane.
#pragma once

#include "util/vectors.h"

// Receives one contour segment from (x1, y1) to (x2, y2) at the given level.
typedef void (*ContourCallback)(double x1, double y1, double x2, double y2, double level);

// Contour lines of d[i][j], the value at (x[i], y[j]), over the inclusive index
// ranges ilb..iub and jlb..jub, at the nc levels z[0..nc-1] (ascending). Each
// cell is cut into four triangles about its centre, whose value is the mean of
// the corners; a level meets each triangle in at most one segment. Cells go row
// by row from j = jub-1 down to jlb, i upwards within a row; levels ascend.
// A grid with all values at a level draws the outer edges of every cell.
// Draws nothing when jub <= jlb, iub <= ilb or nc < 1.
void Contour(const double *const *d, int ilb, int iub, int jlb, int jub, const double *x,
             const double *y, int nc, const double *z, ContourCallback callback);

// Crossing of the triangle facet[0..2] with the plane through point with the
// given unit normal. The side of q is n.q - normal.point with n the normal
// scaled to unit length, so a longer normal moves the plane along it. Returns 2 with the segment in *p1, *p2 when
// vertices lie strictly on both sides (a vertex in the plane counts with the
// positive side); 0 when the facet lies on one side or only touches the plane;
// -1 when no vertex stands alone, which only a zero or non-finite normal gives.
int ContourFacet(const Vec3 *facet, Vec3 normal, Vec3 point, Vec3 *p1, Vec3 *p2);
