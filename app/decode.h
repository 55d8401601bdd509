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

#include "app/decodesink.h"

// The name of the format of a file by its first bytes (16 are enough), or
// null when it is none of these (TGA files have no signature).
const char *DecodeFormatName(const unsigned char *head, size_t n);

// Decodes the file name, or (name null) the size bytes at data, into sink.
// Returns a code of app/decodesink.h; on DECODE_FAILED *why says what is wrong in words
// for the user, as one sentence without a final full stop.
int DecodeImage(const char *name, const void *data, size_t size, const DecodeSink *sink, std::string *why);
