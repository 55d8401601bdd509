// app/boxcount.cpp - the incremental box-counting engine.
//
// A grid is all boxes of one size at one random offset; a pass runs the sizes
// from the start size down to the end size; an analysis is nsamples passes.
// Each step tests one box, scanning rows from the bottom up and each row from
// left to right; the settings are read afresh at every step. A box is tested
// in constant time from a summed-area table of the black pixels, so a whole
// analysis costs about as much as reading the image.
#include "app/boxcount.h"

#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

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

// Elements allocated in each array. The box list is emptied after every grid
// but never shrunk, so only a grid with more occupied boxes than any before
// it reallocates; the results table is reallocated to one entry by the reset.
int resultslength = 0;
int boxlistlength = 0;

// Appends item, growing the array by exactly one element when it is full.
// Running out of memory mid-analysis leaves nothing sensible to continue with.
template <typename T> void append(T *&array, int &n, int &length, const T &item)
{
    if (n == length) {
        T *grown = (T *)realloc(array, sizeof(T) * (size_t)(n + 1));
        if (!grown) {
            fprintf(stderr, "   Out of memory while counting boxes - fatal\n");
            exit(-1);
        }
        array = grown;
        length = n + 1;
    }
    array[n++] = item;
}

// Grid corners near the int limits. The corners are 32-bit; a step that
// would carry one past the largest int ends the row (or the grid) instead, as
// the corner would then lie beyond any region, and a box edge past the limit
// is held at it, which leaves the box test's answer and the stored extent
// within the image unchanged. Past the smallest int a corner is held there
// (only a negative box size walks that way, and it never finishes anyway).
inline int sat(long long v)
{
    return v > INT_MAX ? INT_MAX : v < INT_MIN ? INT_MIN : (int)v;
}

inline int edge(int corner, int s)
{
    int e;
    return __builtin_add_overflow(corner, s, &e) ? (s > 0 ? INT_MAX : INT_MIN) : e;
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
    left0 = sat((long long)options.left - offsetx);
    bottom0 = sat((long long)options.bottom - offsety);
}

bool black(int x, int y)
{
    return bwimage[(long)y * options.imagewidth + x] < 128;
}

// Clips [x1, x2) x [y1, y2) to the region and to the image. The reset clamps
// the region to the image; clamping again means no region, however set, can
// reach outside bwimage. False when nothing is left.
bool clip(int x1, int x2, int y1, int y2, int *xa, int *xb, int *ya, int *yb)
{
    const int L = options.left, R = options.right, B = options.bottom, T = options.top;
    if (R <= x1 || T <= y1) return false;
    *xa = x1 > L ? x1 : L;
    *xb = x2 < R ? x2 : R;
    *ya = y1 > B ? y1 : B;
    *yb = y2 < T ? y2 : T;
    if (*xa < 0) *xa = 0;
    if (*ya < 0) *ya = 0;
    if (*xb > options.imagewidth) *xb = options.imagewidth;
    if (*yb > options.imageheight) *yb = options.imageheight;
    return *xa < *xb && *ya < *yb;
}

[[gnu::noinline]] int scan(int xa, int xb, int ya, int yb)
{
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

// The black-pixel table. Entry (x, y), at y * (width + 1) + x, holds the
// number of black pixels in columns 0..x-1 of rows 0..y-1, modulo 65536. The
// four corners of a rectangle give its count modulo 65536, which is exact,
// and so nonzero exactly when the rectangle holds black, for rectangles of
// fewer than 65536 pixels; larger ones are asked in pieces of 256 x 255.
struct BlackTable {
    uint16_t *sum = nullptr;
    const unsigned char *of = nullptr;  // the bwimage it describes
    int width = 0, height = 0;
    size_t stride = 0;  // width + 1
};
BlackTable table;

constexpr int piece_cols = 256, piece_rows = 255;  // 65280 pixels per piece

bool table_matches(void)
{
    return table.sum && table.of == bwimage && table.width == options.imagewidth &&
           table.height == options.imageheight;
}

// Rectangles larger than one piece, piece by piece.
[[gnu::noinline]] int table_black(int xa, int xb, int ya, int yb)
{
    const size_t stride = table.stride;
    for (int y = ya; y < yb; y += piece_rows) {
        const int y2 = yb - y > piece_rows ? y + piece_rows : yb;
        const uint16_t *lo = table.sum + (size_t)y * stride, *hi = table.sum + (size_t)y2 * stride;
        for (int x = xa; x < xb; x += piece_cols) {
            const int x2 = xb - x > piece_cols ? x + piece_cols : xb;
            if ((uint16_t)(hi[x2] - hi[x] - lo[x2] + lo[x])) return 1;
        }
    }
    return 0;
}

// Reset (mode 0).
[[gnu::noinline]] int reset(void)
{
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
    nresults = resultslength = 0;  // reallocated to one entry
    append(results, nresults, resultslength, BoxResult{boxsize, 0, 0});
    cycles = 0;
    return 0;
}

[[gnu::noinline]] void banner(void)
{
    fprintf(stderr, "Processing starting ");
    if (options.useregion)
        fprintf(stderr, "on region: (%d,%d) to (%d,%d)\n", options.left, options.bottom,
                options.right, options.top);
    fprintf(stderr, "\n");
}

// The box of size s at (left0, bottom0) holds black.
[[gnu::noinline]] void occupied(int s)
{
    results[nresults - 1].count++;
    append(boxlist, nboxlist, boxlistlength, BoxRect{left0, edge(left0, s), edge(bottom0, s), bottom0, 1});
}

// The grid of size s is complete: report it, then set up the next grid, the
// next pass, or finish (returns 1).
[[gnu::noinline]] int end_grid(int s)
{
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
    append(results, nresults, resultslength, BoxResult{boxsize, 0, 0});
    draw_offset();
    return 0;
}

}  // namespace

int MakeBlackTable(void)
{
    const int w = options.imagewidth, h = options.imageheight;
    if (!bwimage || w < 0 || h < 0) {
        FreeBlackTable();
        return 0;
    }
    if (!table.sum || table.width != w || table.height != h) {
        FreeBlackTable();  // before the new one: never two tables at once
        const size_t bytes = sizeof(uint16_t) * ((size_t)w + 1) * ((size_t)h + 1);
        table.sum = (uint16_t *)malloc(bytes);
        if (!table.sum) return 0;
        AskHugePages(table.sum, bytes);  // far fewer faults while it is filled
    }
    const size_t stride = (size_t)w + 1;
    uint16_t *below = table.sum;
    for (size_t x = 0; x < stride; x++) below[x] = 0;
    for (int y = 0; y < h; y++) {
        const unsigned char *bw = bwimage + (size_t)y * w;
        uint16_t *row = below + stride;
        row[0] = 0;
        int x = 0;
        uint16_t run = 0;  // black pixels of this row left of x
#ifdef __SSE2__
        // Eight pixels at a time: a running sum across the lanes by three
        // shifted adds, then the total so far carried into every lane.
        const __m128i zero = _mm_setzero_si128(), minus_one = _mm_set1_epi8(-1);
        __m128i carry = zero;
        for (; x + 8 <= w; x += 8) {
            const __m128i bytes = _mm_loadl_epi64((const __m128i *)(bw + x));
            // As signed bytes, black (high bit clear) is 0 or more: above -1.
            const __m128i dark = _mm_cmpgt_epi8(bytes, minus_one);
            __m128i v = _mm_srli_epi16(_mm_unpacklo_epi8(dark, zero), 7);
            v = _mm_add_epi16(v, _mm_slli_si128(v, 2));
            v = _mm_add_epi16(v, _mm_slli_si128(v, 4));
            v = _mm_add_epi16(v, _mm_slli_si128(v, 8));
            v = _mm_add_epi16(v, carry);
            carry = _mm_shuffle_epi32(_mm_shufflehi_epi16(v, 0xFF), 0xFF);
            const __m128i up = _mm_loadu_si128((const __m128i *)(below + x + 1));
            _mm_storeu_si128((__m128i *)(row + x + 1), _mm_add_epi16(v, up));
        }
        run = (uint16_t)_mm_extract_epi16(carry, 7);
#endif
        for (; x < w; x++) {
            run += bw[x] < 128;
            row[x + 1] = (uint16_t)(below[x + 1] + run);
        }
        below = row;
    }
    table.of = bwimage;
    table.width = w;
    table.height = h;
    table.stride = stride;
    return 1;
}

void FreeBlackTable(void)
{
    free(table.sum);
    table = BlackTable{};
}

int BlackInRect(int x1, int x2, int y1, int y2)
{
    int xa, xb, ya, yb;
    if (!clip(x1, x2, y1, y2, &xa, &xb, &ya, &yb)) return 0;
    if (!table_matches()) return scan(xa, xb, ya, yb);
    if (xb - xa > piece_cols || yb - ya > piece_rows) return table_black(xa, xb, ya, yb);
    // One piece, one look-up: the common case, kept short so that the step
    // inlines it.
    const uint16_t *lo = table.sum + (size_t)ya * table.stride, *hi = table.sum + (size_t)yb * table.stride;
    // A grid walks the table a row of boxes at a time, and each row's upper
    // edge is new to the cache: ask for the next row's now, so that it is
    // there when the walk comes back. A prefetch never faults, wherever the
    // address falls; it is formed as an integer to stay out of the array.
    __builtin_prefetch((const void *)((uintptr_t)(hi + xb) + 2 * table.stride * (size_t)(yb - ya)));
    return (uint16_t)(hi[xb] - hi[xa] - lo[xb] + lo[xa]) != 0;
}

int BlackInRectScan(int x1, int x2, int y1, int y2)
{
    int xa, xb, ya, yb;
    if (!clip(x1, x2, y1, y2, &xa, &xb, &ya, &yb)) return 0;
    return scan(xa, xb, ya, yb);
}

int BoxCount(int mode)
{
    if (mode == 0) return reset();
    if (cycles == 0 && mode == 1 && !options.quiet) banner();
    cycles++;

    // The one box of this step; everything else here is rare.
    const int s = boxsize;
    if (BlackInRect(left0, edge(left0, s), bottom0, edge(bottom0, s))) occupied(s);
    int next;
    const bool carried = __builtin_add_overflow(left0, s, &next);
    if (carried ? s > 0 : next >= options.right) {
        left0 = sat((long long)options.left - offsetx);
        if (__builtin_add_overflow(bottom0, s, &bottom0)) {
            if (s > 0) return end_grid(s);  // past the largest int: above any region
            bottom0 = INT_MIN;
        }
    } else {
        left0 = carried ? INT_MIN : next;
    }
    if (bottom0 < options.top) return 0;
    return end_grid(s);
}
