// util/vectors.cpp - the Vec3 and Vec2 records, vector arithmetic, rotations, polar conversions and interpolation.
#include "util/vectors.h"
