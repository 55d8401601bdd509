// bitmap/pixels.cpp - the bitmap record and elementary pixel operations.
#include "bitmap/pixels.h"

#include <climits>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace {

unsigned char clamp_byte(double v)
{
    if (v < 0) return 0;
    if (v > 255) return 255;
    return (unsigned char)(int)v;  // truncation toward zero
}

bool inside(int nx, int ny, int x, int y)
{
    return x >= 0 && y >= 0 && x < nx && y < ny;
}

}  // namespace

BitmapPixel *Create_Bitmap(int nx, int ny)
{
    if (nx < 0 || ny < 0) return nullptr;
    long long n = (long long)nx * ny;
    if (n > INT_MAX) return nullptr;  // the pixel count must fit a signed 32-bit int
    if (n == 0) n = 1;                // keep empty bitmaps distinct from failure
    return (BitmapPixel *)malloc((size_t)n * sizeof(BitmapPixel));
}

void Destroy_Bitmap(BitmapPixel *bm)
{
    free(bm);
}

void Erase_Bitmap(BitmapPixel *bm, int nx, int ny, BitmapPixel colour)
{
    if (nx < 1 || ny < 1) return;
    for (long long i = 0, n = (long long)nx * ny; i < n; i++) bm[i] = colour;
}

int Draw_Pixel(BitmapPixel *bm, int nx, int ny, int x, int y, BitmapPixel colour)
{
    if (!inside(nx, ny, x, y)) return 0;
    bm[(long long)y * nx + x] = colour;
    return 1;
}

BitmapPixel Get_Pixel(const BitmapPixel *bm, int nx, int ny, int x, int y)
{
    if (!inside(nx, ny, x, y)) return BitmapPixel{0, 0, 0, 255};
    return bm[(long long)y * nx + x];
}

void Draw_Line(BitmapPixel *bm, int nx, int ny, int x1, int y1, int x2, int y2,
               BitmapPixel colour)
{
    double dx = x2 - x1, dy = y2 - y1;
    double len = sqrt(dx * dx + dy * dy);
    if (len <= 0) {
        Draw_Pixel(bm, nx, ny, x1, y1, colour);
        return;
    }
    for (int t = 0; t <= 2 * len; t++) {
        double s = t * 0.5;
        int x = (int)(x1 + s * dx / len);
        int y = (int)(y1 + s * dy / len);
        Draw_Pixel(bm, nx, ny, x, y, colour);
    }
}

int Same_BitmapPixel(BitmapPixel p1, BitmapPixel p2)
{
    if (p1.r != p2.r || p1.g != p2.g || p1.b != p2.b) return 0;
    return p1.a == p2.a;
}

BitmapPixel Scale_Pixel(BitmapPixel p, double factor)
{
    return BitmapPixel{clamp_byte(p.r * factor), clamp_byte(p.g * factor),
                       clamp_byte(p.b * factor), clamp_byte(p.a * factor)};
}

void Flip_Bitmap(BitmapPixel *bm, int nx, int ny, int direction)
{
    if (direction == 0) {
        if (ny < 2 || nx < 1) return;
        for (int j = 0; j < ny / 2; j++) {
            BitmapPixel *lo = bm + (long long)j * nx;
            BitmapPixel *hi = bm + (long long)(ny - 1 - j) * nx;
            for (int i = 0; i < nx; i++) std::swap(lo[i], hi[i]);
        }
    } else if (direction == 1) {
        if (ny < 1 || nx < 2) return;
        for (int j = 0; j < ny; j++) {
            BitmapPixel *row = bm + (long long)j * nx;
            for (int i = 0; i < nx / 2; i++) std::swap(row[i], row[nx - 1 - i]);
        }
    }
}

BitmapPixel YUV_to_Bitmap(int y, int u, int v)
{
    int U = u - 128, V = v - 128;
    // Truncate first, then clamp: clamp_byte truncates values inside 0..255
    // and saturates the rest, which is the same thing.
    return BitmapPixel{clamp_byte(y + 1.370705 * V),
                       clamp_byte(y - 0.698001 * V - 0.337633 * U),
                       clamp_byte(y + 1.732446 * U), 0};
}
