// app/rowcount.h - every grid of an analysis counted in one pass over the
// rows of its region.
//
// A quiet run knows all its grids before it counts a box: their sizes follow
// from the settings and the region, their offsets from the seed. So rather
// than test each box of each grid in turn, it can look at each row of the
// region once. A row becomes bits, one per column, set where the pixel is
// black. Rows are kept ORed together in aligned blocks of 1, 2, 4, 8 ...
// rows, the last few blocks of each length. When the rows have passed the
// top of a row of boxes of some grid, a few of those blocks, ORed, say which
// columns of that row of boxes hold black, and its occupied boxes are
// counted from those bits.
//
// The memory is a few rows of bits: twice the largest box size (or the
// region's height, if smaller) in rows of one bit per column, whatever the
// number of grids. The time grows with the number of rows of boxes and the
// region's width, not with the number of boxes.
#pragma once

#include <cstddef>

struct RowGrid {
    int size;              // box edge in pixels, at least 1
    int offsetx, offsety;  // boxes start at columns left - offsetx + i * size, rows bottom - offsety + j * size
    int count;             // occupied boxes, set by the count
};

// Rows arrive in order, upward from bottom or downward from top - 1, each
// row's pixels for columns left..right-1 at row[0..right-left-1] (black: a
// byte below 128). Feed every row of the region exactly once.
struct RowCounter;

// A counter for the n grids (kept by the caller until RowCountDone) over
// columns [left, right) and rows [bottom, top), a region that is not empty.
// Null when the memory for its rows of bits cannot be had.
RowCounter *StartRowCount(int left, int right, int bottom, int top, bool upward, RowGrid *grids, size_t n);
void CountRow(RowCounter *c, const unsigned char *row);
// Sets every grid's count (once all rows are in), frees the counter and
// returns the number of black pixels in the rows it saw.
long long RowCountDone(RowCounter *c);

