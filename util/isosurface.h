// util/isosurface.h - isosurface polygonisation of volume cells and facetted spheres.
//
// Marching cubes over one cell or over a tetrahedron cut from it, the edge
// interpolation they share, an octahedron refined into a unit sphere, and an
// ordering of facets for sorting. Results go into caller arrays; nothing is
// allocated.
//
// Corners of a cell: 0 to 3 go round the bottom face, 4 to 7 round the top,
// corner k+4 above corner k. Edges: 0: 0-1, 1: 1-2, 2: 2-3, 3: 3-0, 4: 4-5,
// 5: 5-6, 6: 6-7, 7: 7-4, 8: 0-4, 9: 1-5, 10: 2-6, 11: 3-7.
#pragma once

#include "util/vectors.h"

// One cell of a sampled field: corner positions, then the values there.
struct GridCell {
    Vec3 p[8];
    double val[8];
};

// One output triangle.
struct Facet {
    Vec3 p[3];
};

// Cube index: bit k set when corner k lies below the level. edgeTable[index]
// has bit e set when edge e joins a corner below the level to one at or above
// it. triTable[index] lists up to five triangles as edge triples, -1 ended.
extern const int edgeTable[256];
extern const int triTable[256][16];

// Triangles where the field crosses iso in the cell, into tri[0..4]. A corner
// exactly at iso counts as above. With corners 0-1-2 going anticlockwise seen
// from above, facets wind anticlockwise seen from the side below iso. Returns
// the count, 0 to 5.
int PolygoniseCube(GridCell g, double iso, Facet *tri);

// The same for the tetrahedron on cell corners v0..v3, into tri[0..1]: one
// facet when one corner is alone on its side, two (a quadrilateral) when the
// corners split two and two. Facets wind anticlockwise seen from the side below
// iso, whatever the order of v0..v3. Returns the count, 0 to 2.
int PolygoniseTri(GridCell g, double iso, Facet *tri, int v0, int v1, int v2, int v3);

// The point between p1 (value f1) and p2 (value f2) where the field is iso, by
// linear interpolation: p1 when iso is within 0.00001 of f1, p2 when within
// 0.00001 of f2, p1 when f1 and f2 are that close to each other.
Vec3 VertexInterp(double iso, Vec3 p1, Vec3 p2, double f1, double f2);

// A unit sphere: the octahedron's 8 facets, each split into four `iterations`
// times with the new corners pushed out to unit length. f must hold
// 8 * 4^iterations facets. Facets wind anticlockwise seen from outside.
// Returns the count; 8 for iterations < 1.
int CreateNSphere(Facet *f, int iterations);

// qsort comparison of two Facet records: lexicographic on p[0].x, p[0].y,
// p[0].z, then p[1], then p[2]. Returns -1, 0 or 1.
int PolygonCompare(const void *f1, const void *f2);
