// app/crop.cpp - the black pixels of an analysis's region.
#include "app/crop.h"

#include <algorithm>

namespace {

// The region clamped to the image, as the reset clamps it.
void clamped(const Options *o, int *l, int *r, int *b, int *t)
{
    *l = std::max(o->left, 0);
    *r = std::min(o->right, o->imagewidth);
    *b = std::max(o->bottom, 0);
    *t = std::min(o->top, o->imageheight);
}

}  // namespace

long long BlackPixelsInRegion(const Analysis *a)
{
    int l, r, b, t;
    if (!a->bw) return a->black;  // counted as the rows were read
    clamped(a->opt, &l, &r, &b, &t);
    long long n = 0;
    for (int y = b; y < t; y++) {
        const unsigned char *row = a->bw + (size_t)y * a->opt->imagewidth;
        for (int x = l; x < r; x++) n += row[x] < 128;
    }
    return n;
}

int CropToBlack(Analysis *a)
{
    if (!a->bw) return 0;
    int l, r, b, t;
    clamped(a->opt, &l, &r, &b, &t);
    int x0 = r, x1 = l - 1, y0 = t, y1 = b - 1;
    for (int y = b; y < t; y++) {
        const unsigned char *row = a->bw + (size_t)y * a->opt->imagewidth;
        for (int x = l; x < r; x++) {
            if (row[x] >= 128) continue;
            x0 = std::min(x0, x);
            x1 = std::max(x1, x);
            y0 = std::min(y0, y);
            y1 = y;
        }
    }
    if (x1 < x0) return 0;
    Options *o = a->opt;
    o->left = x0;
    o->right = x1 + 1;
    o->bottom = y0;
    o->top = y1 + 1;
    o->useregion = 1;
    return 1;
}
