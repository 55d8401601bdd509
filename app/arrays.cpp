// app/arrays.cpp - in-memory arrays, rows top first, into bitmaps and
// black/white images. Uses only the threshold rules of app/threshold.h.
#include "app/arrays.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "app/threshold.h"

namespace {

// Row y of the array (0 at the top) as RGBA. With flatten, alpha is laid
// onto white as the decoder does for files (what a viewer shows), leaving
// every pixel opaque.
void convert_row(const PixelArray *p, int y, bool flatten, BitmapPixel *out)
{
    const size_t w = (size_t)p->width;
    const unsigned char *row = (const unsigned char *)p->data + (size_t)y * w * ArrayPixelBytes(p->kind);
    for (size_t x = 0; x < w; x++) {
        int r, g, b, a = 255;
        switch (p->kind) {
        case ARRAY_BOOL: r = g = b = row[x] ? 0 : 255; break;
        case ARRAY_GREY8: r = g = b = row[x]; break;
        case ARRAY_GREY16: {
            uint16_t v;
            memcpy(&v, row + 2 * x, 2);  // the array need not be 2-byte aligned
            r = g = b = v >> 8;
            break;
        }
        case ARRAY_RGB8: r = row[3 * x], g = row[3 * x + 1], b = row[3 * x + 2]; break;
        default: r = row[4 * x], g = row[4 * x + 1], b = row[4 * x + 2], a = row[4 * x + 3]; break;
        }
        if (flatten && a != 255) {
            r = (r * a + 255 * (255 - a) + 127) / 255;
            g = (g * a + 255 * (255 - a) + 127) / 255;
            b = (b * a + 255 * (255 - a) + 127) / 255;
            a = 255;
        }
        out[x] = BitmapPixel{(unsigned char)r, (unsigned char)g, (unsigned char)b, (unsigned char)a};
    }
}

}  // namespace

size_t ArrayPixelBytes(ArrayPixels kind)
{
    switch (kind) {
    case ARRAY_GREY16: return 2;
    case ARRAY_RGB8: return 3;
    case ARRAY_RGBA8: return 4;
    default: return 1;
    }
}

void ArrayToBitmap(const PixelArray *p, BitmapPixel *out)
{
    for (int y = 0; y < p->height; y++)
        convert_row(p, y, false, out + (size_t)(p->height - 1 - y) * p->width);
}

int ArrayToBlackWhite(const PixelArray *p, const Options *o, const ExtraOptions *x, unsigned char *out,
                      int *otsu_level)
{
    const size_t w = (size_t)p->width;
    BitmapPixel *row = (BitmapPixel *)malloc((w ? w : 1) * sizeof *row);
    if (!row) return -1;
    // As a file is loaded: each row thresholded at once, or, for Otsu's
    // method, kept as grey levels until the histogram is whole.
    const bool otsu = x->threshold == kThresholdOtsu;
    const ThresholdRule rule{x->threshold, o->invert};
    uint64_t hist[256] = {};
    unsigned char all = 255;
    for (int y = 0; y < p->height; y++) {
        unsigned char *bw = out + (size_t)(p->height - 1 - y) * w;
        convert_row(p, y, true, row);
        if (otsu)
            GreyLevels(row, bw, w, hist);
        else
            all &= ThresholdPixels(row, bw, w, rule);
    }
    free(row);
    *otsu_level = -1;
    if (otsu) {
        *otsu_level = OtsuLevel(hist);
        all = ThresholdGreyLevels(out, w * (size_t)p->height, *otsu_level + 1, o->invert);
    }
    return all < 128;
}
