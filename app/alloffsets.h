// app/alloffsets.h - the smallest box count of one size over every grid
// offset.
//
// A grid of size s at offset (ox, oy) over the region [left, right) x
// [bottom, top) has its columns at left - ox + i*s and its rows at
// bottom - oy + j*s, its boxes clipped to the region; a box counts when its
// clipped part holds a black pixel. Any one grid over-counts against the
// best placed grid of its size, so the smallest count over all s*s offsets
// is the count without the placement error.
#pragma once

#include "app/blacktable.h"

// The smallest number of occupied boxes of size s over every offset (ox, oy)
// in 0..s-1, and in *ox, *oy the first offset giving it (ox fastest, then
// oy). bw is the image, `width` pixels wide, 0 black and 255 white; t is its
// black-pixel table, or null to read pixels (much slower). The region must
// lie inside the image. 0, at offset (0, 0), for an empty region or s < 1.
// Costs about two passes over the region per size.
int MinBoxCount(const BlackTable *t, const unsigned char *bw, int width, int left, int right, int bottom,
                int top, int s, int *ox, int *oy);
