// util/dxf.cpp - DXF and Radiance facet writers.
#include "util/dxf.h"
