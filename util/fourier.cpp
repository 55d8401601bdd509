// util/fourier.cpp - Fourier transforms and correlation.
#include "util/fourier.h"
