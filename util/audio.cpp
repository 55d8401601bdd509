// util/audio.cpp - AIFF, AU and WAVE sample writers.
#include "util/audio.h"
