// bitmap/resample.h - resized copies of a bitmap.
//
// Destination pixel (i, j) of an mx*my copy samples the source at
// x = i*nx/mx, y = j*ny/my (not centred on pixel midpoints). Reads are
// clamped at the source edges. All four channels are filtered alike and each
// result is truncated and stored modulo 256, without clamping. The
// destination must not overlap the source. Both do nothing when mx < 1 or my < 1.
#pragma once

#include "bitmap/pixels.h"

// Uniform cubic B-spline over a fixed 4x4 footprint (smooths, does not
// interpolate).
void BiCubicScale(const BitmapPixel *src, int nx, int ny, BitmapPixel *dst, int mx, int my);
// The cubic B-spline weight: 2/3 at 0, 1/6 at +-1, 0 at +-2 and below -2.
// Defined by the four-term sum, which is meant for -2 < t <= 2 (the scaler
// never asks beyond); above 2 the sum is no longer zero.
double BiCubicR(double t);
// Gaussian of width sigma over +-4 sigma, normalised analytically by
// 1/(2 pi sigma^2) rather than by the sum of the weights used; sigma 0 gives a
// nearest-neighbour copy, a negative sigma gives all-zero pixels.
void GaussianScale(const BitmapPixel *src, int nx, int ny, BitmapPixel *dst, int mx, int my,
                   double sigma);
