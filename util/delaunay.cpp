// util/delaunay.cpp - Delaunay triangulation of points in the plane.
#include "util/delaunay.h"
