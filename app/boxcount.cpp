// app/boxcount.cpp - the incremental box-counting engine.
//
// A grid is all boxes of one size at one random offset; a pass runs the sizes
// from the start size down to the end size; an analysis is nsamples passes.
// Each step tests one box, scanning rows from the bottom up and each row from
// left to right; the settings are read afresh at every step.
#include "app/boxcount.h"

#include <cstdio>
#include <cstdlib>

#include "app/estimate.h"
#include "app/images.h"
#include "app/options.h"

BoxResult *results = nullptr;
int nresults = 0;
BoxRect *boxlist = nullptr;
int nboxlist = 0;

time_t (*boxcount_clock)(void) = [] { return time(nullptr); };
void (*boxcount_gridhook)(void) = nullptr;

namespace {

int boxsize = 1;           // size of the grid being counted
int left0, bottom0;        // lower-left corner of the next box to test
int noffset;               // 1-based number of the current pass
int offsetx, offsety;      // offset of the current grid
int cycles;                // steps since the last reset

// Grow an array by exactly one element. Running out of memory mid-analysis
// leaves nothing sensible to continue with.
template <typename T> void append(T *&array, int &n, const T &item)
{
    T *grown = (T *)realloc(array, sizeof(T) * (size_t)(n + 1));
    if (!grown) {
        fprintf(stderr, "   Out of memory while counting boxes - fatal\n");
        exit(-1);
    }
    array = grown;
    array[n++] = item;
}

int start_size(void)
{
    if (options.boxstart >= 0) return options.boxstart;
    const long long w = (long long)options.right - options.left;
    const long long h = (long long)options.top - options.bottom;
    return (int)((w < h ? w : h) / 5);
}

// Offset of a new grid, drawn from the box size held at this moment.
void draw_offset(void)
{
    offsetx = (int)(boxsize * drand48());
    offsety = (int)(boxsize * drand48());
    left0 = options.left - offsetx;
    bottom0 = options.bottom - offsety;
}

bool black(int x, int y)
{
    return bwimage[(long)y * options.imagewidth + x] < 128;
}

}  // namespace

int BlackInRect(int x1, int x2, int y1, int y2)
{
    const int L = options.left, R = options.right, B = options.bottom, T = options.top;
    if (R <= x1 || T <= y1) return 0;
    int xa = x1 > L ? x1 : L, xb = x2 < R ? x2 : R;
    int ya = y1 > B ? y1 : B, yb = y2 < T ? y2 : T;
    // The reset clamps the region to the image; clamp again so that no
    // region, however set, can reach outside bwimage.
    if (xa < 0) xa = 0;
    if (ya < 0) ya = 0;
    if (xb > options.imagewidth) xb = options.imagewidth;
    if (yb > options.imageheight) yb = options.imageheight;
    if (xb <= xa || yb <= ya) return 0;

    if (xb - xa == 1) {  // boundary: also the 1 x 1 box
        for (int y = ya; y < yb; y++)
            if (black(xa, y)) return 1;
        return 0;
    }
    if (yb - ya == 1) {
        for (int x = xa; x < xb; x++)
            if (black(x, ya)) return 1;
        return 0;
    }
    // Border first: structures that cross a box usually cross its edges.
    for (int y = ya; y < yb; y++)
        if (black(xa, y) || black(xb - 1, y)) return 1;
    for (int x = xa; x < xb; x++)
        if (black(x, ya) || black(x, yb - 1)) return 1;
    for (int x = xa + 1; x < xb - 1; x++)
        for (int y = ya + 1; y < yb - 1; y++)
            if (black(x, y)) return 1;
    return 0;
}

int BoxCount(int mode)
{
    if (mode == 0) {
        const time_t seed = boxcount_clock();
        nboxlist = 0;
        if (options.left < 0) options.left = 0;
        if (options.right > options.imagewidth) options.right = options.imagewidth;
        if (options.bottom < 0) options.bottom = 0;
        if (options.top > options.imageheight) options.top = options.imageheight;
        srand48((long)seed);
        draw_offset();  // from the previous boxsize, before the new start size is set
        noffset = 1;
        boxsize = start_size();
        nresults = 0;
        append(results, nresults, BoxResult{boxsize, 0, 0});
        cycles = 0;
        return 0;
    }

    if (mode == 1 && !options.quiet && cycles == 0) {
        fprintf(stderr, "Processing starting ");
        if (options.useregion)
            fprintf(stderr, "on region: (%d,%d) to (%d,%d)\n", options.left, options.bottom,
                    options.right, options.top);
        fprintf(stderr, "\n");
    }
    cycles++;

    const int s = boxsize;
    if (BlackInRect(left0, left0 + s, bottom0, bottom0 + s)) {
        results[nresults - 1].count++;
        append(boxlist, nboxlist, BoxRect{left0, left0 + s, bottom0 + s, bottom0, 1});
    }
    left0 += s;
    if (left0 >= options.right) {
        left0 = options.left - offsetx;
        bottom0 += s;
    }
    if (bottom0 < options.top) return 0;

    // The grid is complete.
    nboxlist = 0;
    if (!options.quiet) {
        fprintf(stderr, "   Box size: %4d [%3d]", s, nresults);
        if (options.nsamples >= 2)
            fprintf(stderr, ", Offset %3d of %3d: (%3d,%3d)", noffset, options.nsamples, offsetx,
                    offsety);
        fprintf(stderr, ", Total count = %d\n", results[nresults - 1].count);
    }

    int n = (int)((float)s / options.boxfactor);  // single precision, truncated
    if (n == s) n = s - 1;                        // a factor barely above 1 still progresses
    boxsize = n;
    if (n < options.boxend || n < 1) {
        if (noffset >= options.nsamples) {
            if (!options.quiet) {
                fprintf(stderr, "Processing finished\n");
                fprintf(stderr, "Estimated fractal dimension: %6.3f\n", CalcSlope());
            }
            return 1;
        }
        boxsize = start_size();
        noffset++;
    }
    if (!options.quiet && boxcount_gridhook) boxcount_gridhook();
    append(results, nresults, BoxResult{boxsize, 0, 0});
    draw_offset();
    return 0;
}
