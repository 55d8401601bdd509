// app/boxcount.h - the incremental box-counting engine.
//
// BoxCount(0) resets an analysis; every other call tests exactly one box of
// the grid being counted, so an interactive caller can step it from its idle
// loop. Coordinates are image pixels, y upward from the bottom row. The region
// in options is half-open: columns left..right-1, rows bottom..top-1.
#pragma once

#include <ctime>

// One counted grid: its box size and the boxes found occupied so far.
struct BoxResult {
    int size;
    int count;
    int done;  // scratch mark of the results writer; the engine never sets it
};

// An occupied box of the current grid, unclipped: left = x, right = x + s,
// top = y + s, bottom = y.
struct BoxRect {
    int left, right, top, bottom;
    int occupied;
};

extern BoxResult *results;  // one entry per grid, in counting order
extern int nresults;
extern BoxRect *boxlist;    // occupied boxes of the grid being counted
extern int nboxlist;

// Where the reset's seed comes from; time() by default. Tests may replace it.
extern time_t (*boxcount_clock)(void);
// Called after every completed grid except the last one, unless quiet (the
// interactive shell refreshes its graph there).
extern void (*boxcount_gridhook)(void);

// mode 0: reset and return 0. Otherwise one step: returns 1 when the last grid
// of the last pass has just been completed, else 0.
int BoxCount(int mode);
// 1 when the part of [x1, x2) x [y1, y2) inside the region holds a black
// pixel of bwimage. Answers from the black-pixel table in constant time when
// one matches bwimage, otherwise by BlackInRectScan; the answer is the same.
int BlackInRect(int x1, int x2, int y1, int y2);
// The same test by looking at pixels: the border before the interior,
// stopping at the first black pixel.
int BlackInRectScan(int x1, int x2, int y1, int y2);

// The black-pixel table: a summed-area table of bwimage's black pixels,
// 2 bytes per pixel. MakeBlackTable (re)builds it from bwimage, imagewidth
// and imageheight; call it after every change to bwimage (UpdateImages does).
// Returns 1 when built, 0 when it could not be allocated, in which case
// BlackInRect scans pixels. FreeBlackTable releases it; BlackInRect then
// scans pixels until the next MakeBlackTable.
int MakeBlackTable(void);
void FreeBlackTable(void);
