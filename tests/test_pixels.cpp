// Bitmap allocation and the elementary pixel operations.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <vector>

#include "bitmap/pixels.h"

namespace {

const BitmapPixel red = {255, 0, 0, 255};
const BitmapPixel blue = {0, 0, 255, 255};

bool same(BitmapPixel a, BitmapPixel b)
{
    return a.r == b.r && a.g == b.g && a.b == b.b && a.a == b.a;
}

// A 6 x 5 image whose every pixel is distinct: r = x, g = y.
std::vector<BitmapPixel> numbered(int nx, int ny)
{
    std::vector<BitmapPixel> bm((size_t)(nx * ny));
    for (int y = 0; y < ny; y++)
        for (int x = 0; x < nx; x++) bm[(size_t)(y * nx + x)] = {(unsigned char)x, (unsigned char)y, 7, 255};
    return bm;
}

}  // namespace

TEST(Create, RefusesNegativeAndOverflowingSizes)
{
    const struct { const char *id; int nx, ny; bool ok; } cases[] = {
        {"create-1.1", 4, 3, true},          {"create-1.2", 0, 0, true},
        {"create-1.3", -1, 5, false},        {"create-1.4", 5, -1, false},
        {"create-1.5", 65536, 65536, false}, {"create-1.6", INT_MAX, 2, false},
        {"create-1.7", 46341, 46341, false},  // 2147488281 pixels: one row past the limit
    };
    for (const auto &c : cases) {
        BitmapPixel *bm = Create_Bitmap(c.nx, c.ny);
        EXPECT_EQ(bm != nullptr, c.ok) << c.id;
        Destroy_Bitmap(bm);
    }
}

TEST(Pixels, ReadAndWriteOnlyInside)
{
    std::vector<BitmapPixel> bm(12, blue);
    EXPECT_EQ(Draw_Pixel(bm.data(), 4, 3, 3, 2, red), 1);
    EXPECT_TRUE(same(bm[11], red));
    const int outside[][2] = {{-1, 0}, {0, -1}, {4, 0}, {0, 3}};
    for (auto &p : outside) {
        EXPECT_EQ(Draw_Pixel(bm.data(), 4, 3, p[0], p[1], red), 0);
        EXPECT_TRUE(same(Get_Pixel(bm.data(), 4, 3, p[0], p[1]), BitmapPixel{0, 0, 0, 255}));
    }
    EXPECT_EQ(std::count_if(bm.begin(), bm.end(), [](BitmapPixel p) { return same(p, red); }), 1);
    EXPECT_TRUE(same(Get_Pixel(bm.data(), 4, 3, 0, 0), blue));
}

TEST(Pixels, EraseFillsAllAndIgnoresEmptySizes)
{
    std::vector<BitmapPixel> bm(6, blue);
    Erase_Bitmap(bm.data(), 0, 6, red);
    Erase_Bitmap(bm.data(), 6, -1, red);
    EXPECT_TRUE(same(bm[0], blue));
    Erase_Bitmap(bm.data(), 3, 2, red);
    for (auto p : bm) EXPECT_TRUE(same(p, red));
}

TEST(Pixels, CompareScaleAndYuv)
{
    EXPECT_EQ(Same_BitmapPixel({10, 20, 30, 255}, {10, 20, 30, 255}), 1);
    EXPECT_EQ(Same_BitmapPixel({10, 20, 30, 255}, {10, 20, 30, 0}), 0);
    EXPECT_EQ(Same_BitmapPixel({10, 20, 31, 255}, {10, 20, 30, 255}), 0);

    const struct { const char *id; BitmapPixel in; double f; BitmapPixel want; } scale[] = {
        {"scale-1.1", {200, 100, 0, 255}, 1.5, {255, 150, 0, 255}},
        {"scale-1.2", {200, 100, 0, 255}, -1, {0, 0, 0, 0}},
        {"scale-1.3", {3, 5, 7, 9}, 0.5, {1, 2, 3, 4}},  // truncated, not rounded
    };
    for (const auto &c : scale) EXPECT_TRUE(same(Scale_Pixel(c.in, c.f), c.want)) << c.id;

    const struct { const char *id; int y, u, v; BitmapPixel want; } yuv[] = {
        {"yuv-1.1", 128, 128, 128, {128, 128, 128, 0}},
        {"yuv-1.2", 255, 128, 255, {255, 166, 255, 0}},  // r clamped; g = 255 - 0.698001*127
        {"yuv-1.3", 0, 0, 0, {0, 132, 0, 0}},            // g = 0.698001*128 + 0.337633*128
        {"yuv-1.4", 100, 200, 60, {6, 123, 224, 0}},
    };
    for (const auto &c : yuv) {
        BitmapPixel p = YUV_to_Bitmap(c.y, c.u, c.v);
        EXPECT_TRUE(same(p, c.want)) << c.id << ": " << int(p.r) << " " << int(p.g) << " " << int(p.b);
    }
}

TEST(Line, HalfPixelWalk)
{
    // (0,0)-(3,4): length 5, eleven points from s = 0 to 5, end pixel reached.
    std::vector<BitmapPixel> bm(25, blue);
    Draw_Line(bm.data(), 5, 5, 0, 0, 3, 4, red);
    const int want[][2] = {{0, 0}, {0, 1}, {1, 1}, {1, 2}, {2, 2}, {2, 3}, {3, 4}};
    for (auto &p : want) EXPECT_TRUE(same(bm[(size_t)(p[1] * 5 + p[0])], red)) << p[0] << "," << p[1];
    EXPECT_EQ(std::count_if(bm.begin(), bm.end(), [](BitmapPixel p) { return same(p, red); }), 7);

    // (0,0)-(1,1): the walk stops at s = 1.0 and never reaches (1,1).
    std::vector<BitmapPixel> d(4, blue);
    Draw_Line(d.data(), 2, 2, 0, 0, 1, 1, red);
    EXPECT_TRUE(same(d[0], red));
    EXPECT_TRUE(same(d[3], blue));

    // Equal ends set exactly one pixel; points outside are skipped.
    std::vector<BitmapPixel> e(9, blue);
    Draw_Line(e.data(), 3, 3, 1, 1, 1, 1, red);
    EXPECT_TRUE(same(e[4], red));
    Draw_Line(e.data(), 3, 3, -2, 0, 5, 0, red);
    for (int x = 0; x < 3; x++) EXPECT_TRUE(same(e[(size_t)x], red));
    EXPECT_TRUE(same(e[3], blue));
}

TEST(Flip, ByDirection)
{
    const int nx = 6, ny = 5;
    auto bm = numbered(nx, ny);
    Flip_Bitmap(bm.data(), nx, ny, 0);  // odd height: the middle row stays
    for (int y = 0; y < ny; y++) EXPECT_EQ(bm[(size_t)(y * nx)].g, ny - 1 - y);

    bm = numbered(nx, ny);
    Flip_Bitmap(bm.data(), nx, ny, 1);
    for (int x = 0; x < nx; x++) EXPECT_EQ(bm[(size_t)(2 * nx + x)].r, nx - 1 - x);

    auto untouched = numbered(nx, ny);
    bm = untouched;
    Flip_Bitmap(bm.data(), nx, ny, 2);
    Flip_Bitmap(bm.data(), nx, 1, 0);  // one row: nothing to exchange
    Flip_Bitmap(bm.data(), 1, ny, 1);  // one column likewise
    for (size_t i = 0; i < bm.size(); i++) EXPECT_TRUE(same(bm[i], untouched[i])) << i;
}
