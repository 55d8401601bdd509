// util/intersect.cpp - lines, planes and polygons: distances, intersections and polygon tests.
#include "util/intersect.h"
