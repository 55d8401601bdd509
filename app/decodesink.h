// app/decodesink.h - where a decoder hands the pixels of an image, and what
// it returns. Shared by the decoders (app/decode.h, app/gif.h).
#pragma once

#include "bitmap/pixels.h"

// Where the pixels go. begin is called once, before any pixel, with the
// size and bits per pixel of the image; when it returns 0 the decode stops
// with DECODE_NOMEMORY. Then either row is called once per row, y counted
// from the bottom, with width pixels, or (for an image whose orientation
// tag turns it a quarter, decoded without holding it whole) column is
// called once per column x with height pixels, from the bottom up; each
// in any order.
// begin also learns the order the rows (or columns) will come in, so that
// a sink can use each as it comes rather than keep the image.
enum RowOrder {
    ROWS_ANY_ORDER = 0,
    ROWS_UPWARD = 1,        // from row 0
    ROWS_DOWNWARD = 2,      // from the top row
    COLUMNS_RIGHTWARD = 3,  // from column 0
    COLUMNS_LEFTWARD = 4    // from the last column
};

struct DecodeSink {
    int (*begin)(void *ctx, int width, int height, int depth, RowOrder order);
    void (*row)(void *ctx, int y, const BitmapPixel *px);
    void (*column)(void *ctx, int x, const BitmapPixel *px);
    void *ctx;
};

enum { DECODE_OK = 0, DECODE_NOMEMORY = 1, DECODE_FAILED = 2 };
