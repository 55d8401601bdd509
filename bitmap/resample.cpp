// bitmap/resample.cpp - bicubic B-spline and Gaussian resampling.
#include "bitmap/resample.h"

#include <cmath>

namespace {

double cube_pos(double u)
{
    return u > 0 ? u * u * u : 0.0;
}

int clampi(int v, int lo, int hi)
{
    return v < lo ? lo : (v > hi ? hi : v);
}

struct Sums {
    double r = 0, g = 0, b = 0, a = 0;

    void add(const BitmapPixel &p, double w)
    {
        r += w * p.r;
        g += w * p.g;
        b += w * p.b;
        a += w * p.a;
    }

    // Truncated, low 8 bits kept: out-of-range sums wrap rather than saturate.
    BitmapPixel pixel() const
    {
        return BitmapPixel{(unsigned char)(long long)r, (unsigned char)(long long)g,
                           (unsigned char)(long long)b, (unsigned char)(long long)a};
    }
};

}  // namespace

double BiCubicR(double t)
{
    return (cube_pos(t + 2) - 4 * cube_pos(t + 1) + 6 * cube_pos(t) - 4 * cube_pos(t - 1)) / 6;
}

void BiCubicScale(const BitmapPixel *src, int nx, int ny, BitmapPixel *dst, int mx, int my)
{
    if (mx < 1 || my < 1) return;
    for (int i = 0; i < mx; i++) {
        const int px = i * nx;  // 32-bit product, as the mapping is defined
        const int ix = px / mx;
        const double dx = (double)px / mx - ix;
        for (int j = 0; j < my; j++) {
            const int py = j * ny;
            const int iy = py / my;
            const double dy = (double)py / my - iy;
            Sums s;
            for (int m = -1; m <= 2; m++) {
                const int c = clampi(ix + m, 0, nx - 1);
                const double wx = BiCubicR(m - dx);
                for (int n = -1; n <= 2; n++) {
                    const int r = clampi(iy + n, 0, ny - 1);
                    s.add(src[(long long)r * nx + c], wx * BiCubicR(n - dy));
                }
            }
            dst[(long long)j * mx + i] = s.pixel();
        }
    }
}

void GaussianScale(const BitmapPixel *src, int nx, int ny, BitmapPixel *dst, int mx, int my,
                   double sigma)
{
    if (mx < 1 || my < 1) return;
    const double twopi = 6.283185307179586;
    const double s2 = sigma * sigma;
    for (int i = 0; i < mx; i++) {
        const int px = i * nx;
        const int ix = px / mx;
        const double x = (double)px / mx;
        for (int j = 0; j < my; j++) {
            const int py = j * ny;
            const int iy = py / my;
            const double y = (double)py / my;
            if (s2 <= 0) {
                dst[(long long)j * mx + i] = src[(long long)iy * nx + ix];
                continue;
            }
            Sums s;
            for (double xx = x - 4 * sigma; xx <= x + 4 * sigma + 0.01; xx += 1) {
                const int c = clampi((int)xx, 0, nx - 1);
                for (double yy = y - 4 * sigma; yy <= y + 4 * sigma + 0.01; yy += 1) {
                    const int r = clampi((int)yy, 0, ny - 1);
                    const double w = exp(-0.5 * ((y - yy) * (y - yy) + (x - xx) * (x - xx)) / s2) /
                                     (twopi * s2);
                    s.add(src[(long long)r * nx + c], w);
                }
            }
            dst[(long long)j * mx + i] = s.pixel();
        }
    }
}
