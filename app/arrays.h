// app/arrays.h - images that another program holds in memory (a numpy array,
// say) as the program's own images.
//
// Such arrays keep their rows top first; the program keeps row 0 at the
// bottom, so every function here turns the rows over. The pixels become
// what a file of the same pixels would give: grey is r = g = b, 16-bit grey
// keeps its high byte, a black/white array is grey 0 (black) and 255 (white),
// and for an analysis alpha is flattened onto white. No globals, no output,
// no allocation beyond one row: safe on any thread.
#pragma once

#include <cstddef>

#include "app/longopts.h"
#include "app/options.h"
#include "bitmap/pixels.h"

enum ArrayPixels {
    ARRAY_BOOL,    // 1 byte: nonzero is black
    ARRAY_GREY8,   // 1 byte of grey
    ARRAY_GREY16,  // 2 bytes of grey in the host's order
    ARRAY_RGB8,    // r, g, b
    ARRAY_RGBA8    // r, g, b, a
};

// A contiguous array of height rows of width pixels, row 0 at the top.
struct PixelArray {
    const void *data;
    ArrayPixels kind;
    int width, height;
};

// The bytes of one pixel of kind.
size_t ArrayPixelBytes(ArrayPixels kind);

// The array as a bitmap of width x height pixels into out, row 0 at the
// bottom. Alpha is the array's own for RGBA, else 255; nothing is flattened,
// so a 32-bit writer keeps the alpha.
void ArrayToBitmap(const PixelArray *p, BitmapPixel *out);

// The black/white image (0 black, 255 white, row 0 at the bottom; width x
// height bytes into out) by the rules of x->threshold and o->invert, exactly
// as LoadBlackWhite makes it from a file of these pixels. Returns 1 when a
// pixel is black, else 0, and sets *otsu_level as ThresholdByRule does; -1
// when a row buffer cannot be allocated (out is then incomplete).
int ArrayToBlackWhite(const PixelArray *p, const Options *o, const ExtraOptions *x, unsigned char *out,
                      int *otsu_level);
