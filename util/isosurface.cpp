// util/isosurface.cpp - isosurface polygonisation of volume cells and facetted spheres.
#include "util/isosurface.h"
