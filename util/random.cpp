// util/random.cpp - seeded uniform, Gaussian and integer random number generators.
#include "util/random.h"
