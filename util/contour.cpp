// util/contour.cpp - contour lines of gridded data and plane sections of facets.
#include "util/contour.h"
