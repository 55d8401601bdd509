// util/matrix.cpp - determinants, inverses, linear systems and matrix output.
#include "util/matrix.h"
