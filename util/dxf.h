// util/dxf.h - DXF and Radiance facet writers.
//
// Text output of 3-D geometry to an open stream, which is neither flushed nor
// closed. A DXF drawing is written as WriteDXFHeader, any number of
// WriteDXFFacet calls, then WriteDXFFooter. Each function returns 1 when it
// wrote everything, 0 when it wrote nothing for its arguments or the stream
// reported an error.
#pragma once

#include <cstdio>

#include "util/vectors.h"

// The "999" comment "DXF from <source>", the HEADER, TABLES (line type
// CONTINUOUS, layers 1 and 2, no styles) and empty BLOCKS sections, and the
// opening of the ENTITIES section.
int WriteDXFHeader(FILE *fptr, const char *source);
// One entity on layer LAYER1: a POINT for n = 1, a LINE for n = 2, a 3DFACE
// for n = 3 or 4 (a triangle repeats its third corner). Coordinates in "%g".
// Any other n writes nothing and returns 0.
int WriteDXFFacet(FILE *fptr, const Vec3 *p, int n);
// Closes the ENTITIES section and the file.
int WriteDXFFooter(FILE *fptr);

// One Radiance polygon of material `material`: "<material> polygon p", two
// empty argument lists ("0", "0"), then 3n and the n vertices in "%g", each
// after a tab; the first vertex shares the line of the count. n < 3 writes
// nothing and returns 0.
int WriteRadFacet(FILE *fptr, const Vec3 *p, int n, const char *material);
