// app/rowcount.cpp - counting grids from rows of bits.
//
// Rows are numbered t = 0, 1, ... in the order they arrive. Level k holds
// blocks of 2^k rows, block b being rows [b 2^k, (b + 1) 2^k) ORed together;
// it is made when its last row arrives, from the two blocks of level k - 1 it
// covers. Each level keeps its latest blocks in a ring, enough of them to
// reach back one row of boxes. A row of boxes [ta, tb) is the OR of at most
// two blocks per level, taken greedily from ta upward.
#include "app/rowcount.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace {

struct Span {  // words [lo, hi) of a row of bits may be nonzero; the rest are zero
    uint32_t lo, hi;
};

struct Track {  // a grid's current row of boxes: rows [start, end) in arrival order
    long long start, end;
};

struct Free {
    void operator()(void *p) const { free(p); }
};

}  // namespace

struct RowCounter {
    int width, height;  // of the region
    size_t words;       // 64-bit words per row of bits
    int levels;         // blocks of 1, 2, ... 2^(levels - 1) rows
    std::vector<size_t> first, slots;  // each level's ring: its first slot and number of slots
    std::unique_ptr<uint64_t[], Free> store;
    std::vector<Span> span;            // of every slot
    std::vector<uint64_t> acc;         // a row of boxes' columns
    RowGrid *grids;
    std::vector<Track> track;
    std::vector<std::vector<uint64_t>> starts;  // of each grid of small boxes: its boxes' first columns
    long long t = 0;                   // rows seen
    long long black = 0;               // black pixels seen
};

namespace {

// Bits of n pixels: bit u set when px[u] is black (below 128). Returns the
// span of nonzero words.
Span pack(const unsigned char *px, int n, uint64_t *bits)
{
    const size_t words = ((size_t)n + 63) / 64;
    size_t w = 0;
#ifdef __SSE2__
    for (; (w + 1) * 64 <= (size_t)n; w++) {  // the high bit of a byte is clear for black
        const unsigned char *p = px + w * 64;
        uint64_t white = 0;
        for (int k = 0; k < 4; k++)
            white |= (uint64_t)(uint16_t)_mm_movemask_epi8(_mm_loadu_si128((const __m128i *)(p + (size_t)16 * k))) << (16 * k);
        bits[w] = ~white;
    }
#endif
    for (; w < words; w++) {
        uint64_t b = 0;
        const int e = std::min(64, n - (int)(w * 64));
        for (int k = 0; k < e; k++) b |= (uint64_t)(px[w * 64 + k] < 128) << k;
        bits[w] = b;
    }
    Span s{0, 0};
    size_t lo = 0, hi = words;
    while (lo < hi && !bits[lo]) lo++;
    while (hi > lo && !bits[hi - 1]) hi--;
    if (lo < hi) s = Span{(uint32_t)lo, (uint32_t)hi};
    return s;
}

[[gnu::target_clones("popcnt", "default")]]
long long ones(const uint64_t *bits, Span s)
{
    long long n = 0;
    for (uint32_t w = s.lo; w < s.hi; w++) n += __builtin_popcountll(bits[w]);
    return n;
}

uint64_t *slot_bits(RowCounter *c, size_t slot)
{
    return c->store.get() + slot * c->words;
}

size_t slot_of(const RowCounter *c, int k, long long block)
{
    return c->first[k] + (size_t)(block % (long long)c->slots[k]);
}

// dst = a | b over the union of their spans.
Span merge(RowCounter *c, size_t dst, const size_t *from, int nfrom)
{
    uint32_t lo = UINT32_MAX, hi = 0;
    for (int i = 0; i < nfrom; i++) {
        const Span s = c->span[from[i]];
        if (s.lo < s.hi) lo = std::min(lo, s.lo), hi = std::max(hi, s.hi);
    }
    if (lo >= hi) return Span{0, 0};
    uint64_t *d = dst == SIZE_MAX ? c->acc.data() : slot_bits(c, dst);
    std::fill(d + lo, d + hi, 0);
    for (int i = 0; i < nfrom; i++) {
        const Span s = c->span[from[i]];
        const uint64_t *src = slot_bits(c, from[i]);
        for (uint32_t w = s.lo; w < s.hi; w++) d[w] |= src[w];
    }
    return Span{lo, hi};
}

// Occupied boxes of one row of boxes: bit u of m (u = x - left) is set when
// column x holds black there; box i spans u in [i s - ox, (i + 1) s - ox).
// Words outside [lo, hi) are zero.
int count_boxes(const uint64_t *m, Span sp, long long s, long long ox)
{
    int n = 0;
    long long from = (long long)sp.lo * 64;      // the first bit not looked at
    long long end = (from + ox) / s * s - ox;    // end of the last box counted
    for (;;) {
        size_t w = (size_t)(from >> 6);
        if (w >= sp.hi) return n;
        uint64_t bits = m[w] & (~0ull << (from & 63));
        while (!bits) {
            if (++w >= sp.hi) return n;
            bits = m[w];
        }
        const long long b = (long long)w * 64 + __builtin_ctzll(bits);
        end = b - end < s ? end + s : ((b + ox) / s + 1) * s - ox;  // the box of b ends there
        n++;
        from = end;
    }
}

// The same for boxes of at most 64 columns, whose many boxes per row make
// a bit at a time slow. m (a scratch copy) becomes the OR of each bit with
// the s - 1 bits after it, by doubling shifts; then a box is occupied when
// its first column's bit is set: one AND and a bit count per word, starts
// marking the first columns of boxes 1, 2, ... (box 0 may begin left of
// the region and is looked at on its own).
[[gnu::target_clones("popcnt", "default")]]
int count_small_boxes(uint64_t *m, Span sp, int s, int ox, const uint64_t *starts)
{
    const int first = s - ox;  // box 0 holds bits [0, first), first <= 64
    int n = sp.lo == 0 && (m[0] & (first == 64 ? ~0ull : (1ull << first) - 1)) != 0;
    const uint32_t a = sp.lo ? sp.lo - 1 : 0;  // the word before the span takes bits from it
    if (a < sp.lo) m[a] = 0;
    auto or_shifted = [&](int k) {  // m |= m >> k, across words, 0 < k < 64
        for (uint32_t w = a; w < sp.hi; w++) m[w] |= m[w] >> k | (w + 1 < sp.hi ? m[w + 1] << (64 - k) : 0);
    };
    int len = 1;
    for (; len * 2 <= s; len *= 2) or_shifted(len);
    if (len < s) or_shifted(s - len);
    for (uint32_t w = a; w < sp.hi; w++) n += __builtin_popcountll(m[w] & starts[w]);
    return n;
}

// Counts the row of boxes [ta, tb) of grid g.
void count_row_of_boxes(RowCounter *c, RowGrid *g, long long ta, long long tb)
{
    size_t used[2 * 32];
    int n = 0;
    for (long long u = ta; u < tb;) {
        int k = u ? std::min(__builtin_ctzll((unsigned long long)u), c->levels - 1) : c->levels - 1;
        while ((1ll << k) > tb - u) k--;
        used[n++] = slot_of(c, k, u >> k);
        u += 1ll << k;
    }
    const std::vector<uint64_t> &starts = c->starts[(size_t)(g - c->grids)];
    if (!starts.empty()) {
        const Span s = merge(c, SIZE_MAX, used, n);
        if (s.lo < s.hi) g->count += count_small_boxes(c->acc.data(), s, g->size, g->offsetx, starts.data());
        return;
    }
    if (n == 1) {
        const Span s = c->span[used[0]];
        if (s.lo < s.hi) g->count += count_boxes(slot_bits(c, used[0]), s, g->size, g->offsetx);
        return;
    }
    const Span s = merge(c, SIZE_MAX, used, n);
    if (s.lo < s.hi) g->count += count_boxes(c->acc.data(), s, g->size, g->offsetx);
}

}  // namespace

RowCounter *StartRowCount(int left, int right, int bottom, int top, bool upward, RowGrid *grids, size_t n)
{
    std::unique_ptr<RowCounter> c(new (std::nothrow) RowCounter);
    if (!c) return nullptr;
    c->width = right - left;
    c->height = top - bottom;
    c->words = ((size_t)c->width + 63) / 64;
    c->grids = grids;
    long long reach = 1;  // the most rows a row of boxes spans
    for (size_t i = 0; i < n; i++) reach = std::max(reach, std::min<long long>(grids[i].size, c->height));
    c->levels = 1;
    while ((2ll << (c->levels - 1)) <= reach) c->levels++;
    size_t total = 0;
    for (int k = 0; k < c->levels; k++) {
        c->first.push_back(total);
        c->slots.push_back((size_t)(reach >> k) + 2);
        total += c->slots.back();
    }
    c->store.reset((uint64_t *)malloc(total * c->words * sizeof(uint64_t)));
    if (!c->store) return nullptr;
    c->span.assign(total, Span{0, 0});
    c->acc.assign(c->words, 0);
    // Grids of boxes up to 64 columns wide count from a mask of their boxes'
    // first columns, while those masks take under 64 MiB in all.
    c->starts.resize(n);
    size_t masks = 0;
    for (size_t i = 0; i < n; i++) {
        if (grids[i].size > 64 || (masks += c->words * sizeof(uint64_t)) > ((size_t)64 << 20)) continue;
        std::vector<uint64_t> &m = c->starts[i];
        m.assign(c->words, 0);
        for (long long u = grids[i].size - grids[i].offsetx; u < c->width; u += grids[i].size)
            m[(size_t)u / 64] |= 1ull << (u % 64);
    }
    for (size_t i = 0; i < n; i++) {
        const long long s = grids[i].size, oy = grids[i].offsety;
        const long long end = upward ? s - oy : (c->height + oy - 1) % s + 1;
        c->track.push_back(Track{0, std::min<long long>(end, c->height)});
        grids[i].count = 0;
    }
    return c.release();
}

void CountRow(RowCounter *c, const unsigned char *row)
{
    const long long t = c->t++;
    const size_t s0 = slot_of(c, 0, t);
    c->span[s0] = pack(row, c->width, slot_bits(c, s0));
    c->black += ones(slot_bits(c, s0), c->span[s0]);
    for (int k = 1; k < c->levels && ((t + 1) & ((1ll << k) - 1)) == 0; k++) {
        const long long b = t >> k;
        const size_t halves[2] = {slot_of(c, k - 1, 2 * b), slot_of(c, k - 1, 2 * b + 1)};
        const size_t d = slot_of(c, k, b);
        c->span[d] = merge(c, d, halves, 2);
    }
    for (size_t i = 0; i < c->track.size(); i++) {
        Track &tr = c->track[i];
        if (tr.end != t + 1) continue;
        count_row_of_boxes(c, &c->grids[i], tr.start, tr.end);
        tr.start = tr.end;
        tr.end = std::min<long long>(tr.end + c->grids[i].size, c->height);
    }
}

long long RowCountDone(RowCounter *c)
{
    const long long black = c ? c->black : 0;
    delete c;
    return black;
}
