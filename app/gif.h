// app/gif.h - the first frame of a GIF file, row by row, through giflib.
//
// The image decoding library holds a GIF frame whole, as RGBA, before it
// hands on a row; giflib decodes a line at a time, so a large GIF costs a
// row of memory instead of four bytes per pixel. Called by DecodeImage for
// GIF files; the rows are those the library would give: the frame drawn on
// the logical screen, transparent pixels and everything off the frame
// white (shown over white), a colour index past its table black.
#pragma once

#include <cstddef>
#include <string>

#include "app/decodesink.h"

// As DecodeImage, for a GIF file by name or (name null) in memory.
int DecodeGif(const char *name, const void *data, size_t size, const DecodeSink *sink, std::string *why);
