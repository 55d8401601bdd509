// app/blacktable.h - the black-pixel table of a black/white image: a
// summed-area table that says in constant time whether a rectangle holds a
// black pixel (a byte below 128).
//
// Entry (x, y), at y * (width + 1) + x, holds the number of black pixels in
// columns 0..x-1 of rows 0..y-1, modulo 65536: 2 bytes per pixel. The four
// corners of a rectangle give its count modulo 65536, which is exact, and so
// nonzero exactly when the rectangle holds black, for rectangles of fewer
// than 65536 pixels; larger ones are asked in pieces of 256 x 255.
#pragma once

#include <cstddef>
#include <cstdint>

struct BlackTable {
    uint16_t *sum = nullptr;            // (width + 1) x (height + 1) entries
    const unsigned char *of = nullptr;  // the image it describes
    int width = 0, height = 0;
    size_t stride = 0;                  // width + 1
};

constexpr int kPieceCols = 256, kPieceRows = 255;  // 65280 pixels per piece

// (Re)builds t from the w x h image bw, reusing its storage when the size is
// unchanged. Returns 1 when built; 0 when it could not be allocated or the
// image is absent (t is then empty).
int BuildBlackTable(BlackTable *t, const unsigned char *bw, int w, int h);
void FreeBlackTableOf(BlackTable *t);

// Rectangles larger than one piece, piece by piece.
int TableBlackPieces(const BlackTable *t, int xa, int xb, int ya, int yb);

// 1 when [xa, xb) x [ya, yb), which lies inside the image and is not empty,
// holds black. One piece is one look-up: the common case, kept inline.
inline int TableBlack(const BlackTable *t, int xa, int xb, int ya, int yb)
{
    if (xb - xa > kPieceCols || yb - ya > kPieceRows) return TableBlackPieces(t, xa, xb, ya, yb);
    const uint16_t *lo = t->sum + (size_t)ya * t->stride, *hi = t->sum + (size_t)yb * t->stride;
    // A grid walks the table a row of boxes at a time, and each row's upper
    // edge is new to the cache: ask for the next row's now, so that it is
    // there when the walk comes back. A prefetch never faults, wherever the
    // address falls; it is formed as an integer to stay out of the array.
    __builtin_prefetch((const void *)((uintptr_t)(hi + xb) + 2 * t->stride * (size_t)(yb - ya)));
    return (uint16_t)(hi[xb] - hi[xa] - lo[xb] + lo[xa]) != 0;
}
