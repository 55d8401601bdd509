// app/threshold.cpp - the black/white rules over pixels, and Otsu's level.
#include "app/threshold.h"

#include "app/longopts.h"

namespace {

// Writes dark where a pixel is black by the fixed rule, else 255 - dark.
// Branch-free in 16-bit arithmetic so that the compiler does many pixels at a
// time: a black pixel has every channel below 128, and then the sum of
// squares (at most 48387) fits 16 bits. On x86-64 a second copy uses AVX2
// where the processor has it, which makes this about twice as fast.
#if defined(__x86_64__) && defined(__GNUC__)
[[gnu::target_clones("avx2", "default")]]
#endif
unsigned char fixed(const BitmapPixel *__restrict px, unsigned char *__restrict out, size_t n,
                    unsigned char dark)
{
    const unsigned char light = 255 - dark;
    unsigned char all = 255;
    for (size_t i = 0; i < n; i++) {
        const uint16_t r = px[i].r, g = px[i].g, b = px[i].b;
        const uint16_t s = (uint16_t)(r * r + g * g + b * b);
        const unsigned char v = (((r | g | b) < 128) & (s < 16384)) ? dark : light;
        out[i] = v;
        all &= v;
    }
    return all;
}

#if defined(__x86_64__) && defined(__GNUC__)
[[gnu::target_clones("avx2", "default")]]
#endif
unsigned char grey(const BitmapPixel *__restrict px, unsigned char *__restrict out, size_t n, int cut,
                   unsigned char dark)
{
    const unsigned char light = 255 - dark;
    unsigned char all = 255;
    for (size_t i = 0; i < n; i++) {
        const int y = GreyLevel(px[i].r, px[i].g, px[i].b);
        const unsigned char v = y < cut ? dark : light;
        out[i] = v;
        all &= v;
    }
    return all;
}

}  // namespace

unsigned char ThresholdPixels(const BitmapPixel *px, unsigned char *out, size_t n, ThresholdRule rule)
{
    const unsigned char dark = rule.invert ? 255 : 0;
    return rule.cut == kThresholdFixed ? fixed(px, out, n, dark) : grey(px, out, n, rule.cut, dark);
}

void GreyLevels(const BitmapPixel *px, unsigned char *y, size_t n, uint64_t hist[256])
{
    for (size_t i = 0; i < n; i++) {
        y[i] = (unsigned char)GreyLevel(px[i].r, px[i].g, px[i].b);
        hist[y[i]]++;
    }
}

unsigned char ThresholdGreyLevels(unsigned char *y, size_t n, int cut, int invert)
{
    const unsigned char dark = invert ? 255 : 0, light = 255 - dark;
    unsigned char all = 255;
    for (size_t i = 0; i < n; i++) {
        y[i] = y[i] < cut ? dark : light;
        all &= y[i];
    }
    return all;
}

int OtsuLevel(const uint64_t hist[256])
{
    int lo = 0, hi = 255;
    while (lo < 256 && !hist[lo]) lo++;
    if (lo == 256) return 0;
    while (!hist[hi]) hi--;
    if (lo == hi) return lo;

    // Class weights and sums below and above each split, in integers; the
    // means and the variance in doubles, computed in the same order as the
    // usual array formulation so that equal variances resolve the same way.
    uint64_t total = 0, total_sum = 0;
    for (int v = lo; v <= hi; v++) {
        total += hist[v];
        total_sum += hist[v] * (uint64_t)v;
    }
    uint64_t w1 = 0, s1 = 0;
    double best = -1;
    int level = lo;
    for (int t = lo; t < hi; t++) {
        w1 += hist[t];
        s1 += hist[t] * (uint64_t)t;
        const uint64_t w2 = total - w1, s2 = total_sum - s1;
        const double m1 = (double)s1 / (double)w1, m2 = (double)s2 / (double)w2;
        const double d = m1 - m2;
        const double var = (double)(int64_t)(w1 * w2) * (d * d);
        if (var > best) {
            best = var;
            level = t;
        }
    }
    return level;
}
