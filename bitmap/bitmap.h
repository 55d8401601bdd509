// bitmap/bitmap.h - umbrella header of the raster image library.
//
// An image is a bare array of BitmapPixel (r, g, b, a bytes), width and height
// passed beside it, row 0 at the bottom. Functions return 1 on success and 0
// on failure unless their header says otherwise (TGA_Read returns codes).
// The library never prints and never exits.
#pragma once

#include "bitmap/pixels.h"
#include "bitmap/resample.h"
#include "bitmap/tga.h"
#include "bitmap/writer.h"
