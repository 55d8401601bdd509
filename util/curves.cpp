// util/curves.cpp - splines and Bezier curves.
#include "util/curves.h"
