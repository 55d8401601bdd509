// util/colour.cpp - colour maps and RGB/HSV/HSL/YCC conversions.
#include "util/colour.h"
