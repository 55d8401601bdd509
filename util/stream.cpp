// util/stream.cpp - binary and text stream helpers with byte-order control and string cleaning.
#include "util/stream.h"
