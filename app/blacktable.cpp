// app/blacktable.cpp - building the black-pixel table.
#include "app/blacktable.h"

#include <cstdlib>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include "app/hugepages.h"

int BuildBlackTable(BlackTable *t, const unsigned char *bw, int w, int h)
{
    if (!bw || w < 0 || h < 0) {
        FreeBlackTableOf(t);
        return 0;
    }
    if (!t->sum || t->width != w || t->height != h) {
        FreeBlackTableOf(t);  // before the new one: never two tables at once
        const size_t bytes = sizeof(uint16_t) * ((size_t)w + 1) * ((size_t)h + 1);
        t->sum = (uint16_t *)malloc(bytes);
        if (!t->sum) return 0;
        AskHugePages(t->sum, bytes);  // far fewer faults while it is filled
    }
    const size_t stride = (size_t)w + 1;
    uint16_t *below = t->sum;
    for (size_t x = 0; x < stride; x++) below[x] = 0;
    for (int y = 0; y < h; y++) {
        const unsigned char *row_bw = bw + (size_t)y * w;
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
            const __m128i bytes = _mm_loadl_epi64((const __m128i *)(row_bw + x));
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
            run += row_bw[x] < 128;
            row[x + 1] = (uint16_t)(below[x + 1] + run);
        }
        below = row;
    }
    t->of = bw;
    t->width = w;
    t->height = h;
    t->stride = stride;
    return 1;
}

void FreeBlackTableOf(BlackTable *t)
{
    free(t->sum);
    *t = BlackTable{};
}

int TableBlackPieces(const BlackTable *t, int xa, int xb, int ya, int yb)
{
    const size_t stride = t->stride;
    for (int y = ya; y < yb; y += kPieceRows) {
        const int y2 = yb - y > kPieceRows ? y + kPieceRows : yb;
        const uint16_t *lo = t->sum + (size_t)y * stride, *hi = t->sum + (size_t)y2 * stride;
        for (int x = xa; x < xb; x += kPieceCols) {
            const int x2 = xb - x > kPieceCols ? x + kPieceCols : xb;
            if ((uint16_t)(hi[x2] - hi[x] - lo[x2] + lo[x])) return 1;
        }
    }
    return 0;
}
