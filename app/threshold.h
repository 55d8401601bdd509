// app/threshold.h - black and white from pixels: the fixed rule, a grey level,
// or a grey level chosen by Otsu's method. Pure functions over caller-owned
// arrays: no allocation, no output, no globals, so every loading path and
// every thread uses the same rules.
//
// The grey level of a pixel is Y = (299 r + 587 g + 114 b + 500) / 1000 in
// integers (0..255). A black/white byte is 0 for black and 255 for white,
// swapped when inverted.
#pragma once

#include <cstddef>
#include <cstdint>

#include "bitmap/pixels.h"

// How a pixel becomes black: the fixed rule (r*r + g*g + b*b < 16384) when
// cut is kThresholdFixed (app/longopts.h), else Y < cut, cut in 0..256.
struct ThresholdRule {
    int cut;
    int invert;  // 1: black and white swap (-bw)
};

inline int GreyLevel(int r, int g, int b)
{
    return (299 * r + 587 * g + 114 * b + 500) / 1000;
}

// Writes the black/white bytes of n pixels into out. Returns the AND of the
// bytes written (255 when n is 0): below 128 exactly when one is black.
unsigned char ThresholdPixels(const BitmapPixel *px, unsigned char *out, size_t n, ThresholdRule rule);
// Writes the grey level of n pixels into y and counts them in hist[256]
// (added to what it holds).
void GreyLevels(const BitmapPixel *px, unsigned char *y, size_t n, uint64_t hist[256]);
// Turns n grey levels into black/white bytes in place by Y < cut. Returns
// the AND of the bytes, as ThresholdPixels.
unsigned char ThresholdGreyLevels(unsigned char *y, size_t n, int cut, int invert);
// Otsu's method over a histogram of grey levels: the level t (black when
// Y <= t) that maximises the between-class variance, the first of equals,
// searched between the lowest and the highest level present; the one level
// present when there is only one; 0 for an empty histogram.
int OtsuLevel(const uint64_t hist[256]);
