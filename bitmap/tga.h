// bitmap/tga.h - Truevision TGA reader.
//
// Reads uncompressed and run-length true-colour (types 2, 10), grey (3, 11)
// and uncompressed colour-mapped (1) images of 8, 16, 24 or 32 bits into a
// bottom-up bitmap (see pixels.h). Two calls: TGA_Info reports the size so
// the caller can allocate, then TGA_Read fills the bitmap. Nothing is printed.
#pragma once

#include <cstdio>

#include "bitmap/pixels.h"

// Reads the 18-byte header at the current position into width, height and
// depth (bits per pixel as a signed byte), then rewinds the stream. Validates
// nothing; fields the file does not hold read as 0.
void TGA_Info(FILE *fptr, int *width, int *height, int *depth);

// Return codes of TGA_Read.
enum {
    TGA_OK = 0,
    TGA_BADTYPE = 1,      // image type not 1, 2, 3, 10 or 11
    TGA_BADDEPTH = 2,     // bits per pixel not 8, 16, 24 or 32
    TGA_BADMAPTYPE = 3,   // colour map type above 1
    TGA_EOFPIXELS = 4,    // file ended in the header or the pixel data
    TGA_EOFMAP = 5,       // file ended inside the colour map
    TGA_EOFRAWPACKET = 6  // file ended inside a raw run-length packet
};

// Reads a whole TGA file from the start of the stream into image, which must
// hold width*height pixels as TGA_Info reported. width and height are stored
// as soon as the header is read, even on failure. Returns 0 or a code above;
// checks run in the order type, depth, map type. Run-length packets never
// write past width*height pixels. A header that declares no pixels needs
// no bytes after its 17th. Rows stored top-down are flipped so the
// result is always bottom-up.
int TGA_Read(FILE *fptr, BitmapPixel *image, int *width, int *height);

// Receives one decoded row of a TGA_ReadRows read: width pixels, for
// bitmap row y (counted from the bottom, as TGA_Read would store it).
typedef void (*TGA_RowFunc)(void *ctx, int y, const BitmapPixel *row);

// Reads a TGA file as TGA_Read does, with the same checks, codes and
// results, but never holds more than a few rows: each row goes to
// row(ctx, y, pixels) as soon as it is decoded, in the file's order (so
// top-down files give y from the top). On failure the rows handed on so far
// are all there is.
int TGA_ReadRows(FILE *fptr, int *width, int *height, TGA_RowFunc row, void *ctx);

// Converts one TGA value of 1 to 4 bytes (grey; 16-bit ARRRRRGG GGGBBBBB
// little-endian; BGR; BGRA) into *dst. Other byte counts write nothing.
void TGA_MergeBytes(BitmapPixel *dst, const unsigned char *src, int nbytes);
