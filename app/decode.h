// app/decode.h - images in the formats besides TGA: PNG, TIFF, JPEG, BMP,
// PNM, GIF and WebP. The one file that talks to the decoding library
// (libvips), except for GIF files, which app/gif.h reads a line at a time.
//
// Every image ends as rows of RGBA pixels handed to a sink, row 0 at the
// bottom: grey becomes r = g = b, 16-bit samples keep their high byte, a
// palette is expanded, alpha is flattened onto white (a = 255 after), and an
// orientation tag is applied. A damaged or truncated file is an error, never
// half an image. Nothing is printed; safe on any thread.
#pragma once

#include <cstddef>
#include <string>

#include "bitmap/pixels.h"

// The name of the format of a file by its first bytes (16 are enough), or
// null when it is none of these (TGA files have no signature).
const char *DecodeFormatName(const unsigned char *head, size_t n);

// Where the pixels go. begin is called once, before any pixel, with the
// size and bits per pixel of the image; when it returns 0 the decode stops
// with DECODE_NOMEMORY. Then either row is called once per row, y counted
// from the bottom, with width pixels, or (for an image whose orientation
// tag turns it a quarter, decoded without holding it whole) column is
// called once per column x with height pixels, from the bottom up; each
// in any order.
struct DecodeSink {
    int (*begin)(void *ctx, int width, int height, int depth);
    void (*row)(void *ctx, int y, const BitmapPixel *px);
    void (*column)(void *ctx, int x, const BitmapPixel *px);
    void *ctx;
};

enum { DECODE_OK = 0, DECODE_NOMEMORY = 1, DECODE_FAILED = 2 };

// Decodes the file name, or (name null) the size bytes at data, into sink.
// Returns a code above; on DECODE_FAILED *why says what is wrong in words
// for the user, as one sentence without a final full stop.
int DecodeImage(const char *name, const void *data, size_t size, const DecodeSink *sink, std::string *why);
