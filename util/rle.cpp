// util/rle.cpp - byte run-length codec.
#include "util/rle.h"
