// app/alloffsets.cpp - the smallest box count over every grid offset.
//
// Each grid row is a band of image rows. Within a band, prefix[i] counts the
// region columns left .. left+i-1 that hold black in the band, so a box of
// the row is occupied exactly when prefix differs at its two clipped edges:
// one look-up per box, whatever its size. A band serves the s column offsets
// at once, and the s row offsets give the bands, so a size costs about one
// pass to build the bands and one to count their boxes.
#include "app/alloffsets.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <vector>

namespace {

// How many offsets along an axis of extent n need counting. Once s reaches
// n, offset 0 lays one box over the whole extent, and no other offset can
// occupy fewer boxes: each band (or column) that holds black still holds a
// box, so offset 0 alone gives the minimum.
inline int offsets_to_count(int s, int n)
{
    return s < n ? s : 1;
}

// prefix[0..w] over the band of rows [ya, yb) of columns [left, left + w).
void band_prefix(const BlackTable *t, const unsigned char *bw, long width, int left, int w, int ya, int yb,
                 uint32_t *prefix)
{
    prefix[0] = 0;
    // The table holds counts modulo 65536; a column of the band holds fewer
    // black pixels than that, so the difference of two neighbouring entries
    // of (hi - lo) says exactly whether the column holds black.
    if (t && yb - ya < 65536) {
        const uint16_t *lo = t->sum + (size_t)ya * t->stride + left, *hi = t->sum + (size_t)yb * t->stride + left;
        uint16_t prev = (uint16_t)(hi[0] - lo[0]);
        for (int i = 0; i < w; i++) {
            const uint16_t next = (uint16_t)(hi[i + 1] - lo[i + 1]);
            prefix[i + 1] = prefix[i] + (next != prev);
            prev = next;
        }
        return;
    }
    std::vector<unsigned char> black((size_t)w);
    for (int y = ya; y < yb; y++) {
        const unsigned char *row = bw + (size_t)y * width + left;
        for (int i = 0; i < w; i++) black[i] |= row[i] < 128;
    }
    for (int i = 0; i < w; i++) prefix[i + 1] = prefix[i] + black[i];
}

}  // namespace

int MinBoxCount(const BlackTable *t, const unsigned char *bw, int width, int left, int right, int bottom,
                int top, int s, int *ox, int *oy)
{
    *ox = *oy = 0;
    if (s < 1 || left >= right || bottom >= top) return 0;
    const int w = right - left;
    const int nx = offsets_to_count(s, w), ny = offsets_to_count(s, top - bottom);
    std::vector<uint32_t> prefix((size_t)w + 1);
    std::vector<long long> count((size_t)nx);
    long long best = LLONG_MAX;

    for (int dy = 0; dy < ny; dy++) {
        std::fill(count.begin(), count.end(), 0);
        for (long long y0 = (long long)bottom - dy; y0 < top; y0 += s) {
            const int ya = (int)std::max<long long>(y0, bottom), yb = (int)std::min<long long>(y0 + s, top);
            band_prefix(t, bw, width, left, w, ya, yb, prefix.data());
            if (prefix[w] == 0) continue;  // no black in the band: no box of it counts
            const uint32_t *p = prefix.data();
            for (int dx = 0; dx < nx; dx++) {
                // Box edges relative to left: 0, s - dx, 2s - dx, ..., w.
                long long c = 0, prev = 0;
                for (long long k = (long long)s - dx; k < w; k += s) {
                    c += p[k] != p[prev];
                    prev = k;
                }
                count[dx] += c + (p[w] != p[prev]);
            }
        }
        for (int dx = 0; dx < nx; dx++) {
            if (count[dx] < best) {
                best = count[dx];
                *ox = dx;
                *oy = dy;
            }
        }
    }
    return best > INT_MAX ? INT_MAX : (int)best;
}
