// app/crop.h - the black pixels of an analysis's region: their number and
// their bounding box.
#pragma once

#include "app/boxcount.h"

// The number of black pixels of a's image inside its region (clamped to the
// image); for an image counted by rows and not held, as they were counted.
long long BlackPixelsInRegion(const Analysis *a);
// Shrinks a's region to the bounding box of the black pixels inside it, as
// if it had been given with the region switches (useregion is set), so the
// automatic start size follows the object rather than its canvas. Reset the
// analysis afterwards. Returns 1; 0, leaving the region alone, when the
// region holds no black pixel.
int CropToBlack(Analysis *a);
