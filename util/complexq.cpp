// util/complexq.cpp - complex numbers and quaternions.
#include "util/complexq.h"
