// Bitmap allocation and the elementary pixel operations; bicubic and Gaussian resampling, by known weights and
// properties rather than reference pictures.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <vector>

#include "bitmap/pixels.h"
#include "bitmap/resample.h"

static const BitmapPixel red = {255, 0, 0, 255}, blue = {0, 0, 255, 255};

static int count_red(const std::vector<BitmapPixel> &bm)
{
    return (int)std::count_if(bm.begin(), bm.end(), [](BitmapPixel p) { return Same_BitmapPixel(p, red); });
}

TEST(Pixels, CreateAndKnownValues)
{
    // 46341^2 = 2147488281 pixels: one row past the limit.
    for (auto [nx, ny, ok] : {std::tuple{4, 3, true}, {0, 0, true}, {-1, 5, false}, {5, -1, false}, {INT_MAX, 2, false},
                              {46341, 46341, false}}) {
        BitmapPixel *bm = Create_Bitmap(nx, ny);
        EXPECT_EQ(bm != nullptr, ok) << nx << " x " << ny;
        Destroy_Bitmap(bm);
    }
    const struct { BitmapPixel got, want; } cases[] = {
        {Scale_Pixel({200, 100, 0, 255}, 1.5), {255, 150, 0, 255}}, {Scale_Pixel({200, 100, 0, 255}, -1), {0, 0, 0, 0}},
        {Scale_Pixel({3, 5, 7, 9}, 0.5), {1, 2, 3, 4}},  // truncated, not rounded
        {YUV_to_Bitmap(255, 128, 255), {255, 166, 255, 0}}, {YUV_to_Bitmap(0, 0, 0), {0, 132, 0, 0}},  // clamped
        {YUV_to_Bitmap(100, 200, 60), {6, 123, 224, 0}},
    };
    for (const auto &c : cases) EXPECT_TRUE(Same_BitmapPixel(c.got, c.want)) << +c.got.r << " " << +c.got.g;
    EXPECT_FALSE(Same_BitmapPixel({10, 20, 30, 255}, {10, 20, 30, 0}));  // alpha counts
}

TEST(Pixels, DrawingAndFlips)
{
    std::vector<BitmapPixel> bm(25, blue), e(9, blue);
    EXPECT_EQ(Draw_Pixel(bm.data(), 5, 5, 4, 2, red), 1);
    for (auto &p : {std::pair{-1, 0}, {0, -1}, {5, 0}, {0, 5}})  // outside: refused, and read as opaque black
        EXPECT_TRUE(!Draw_Pixel(bm.data(), 5, 5, p.first, p.second, red)
                    && Same_BitmapPixel(Get_Pixel(bm.data(), 5, 5, p.first, p.second), {0, 0, 0, 255}));
    EXPECT_TRUE(Same_BitmapPixel(bm[14], red) && count_red(bm) == 1);
    Draw_Line(bm.data(), 5, 5, 0, 0, 3, 4, red);  // the half-pixel walk sets seven pixels, both ends included
    for (int i : {0, 5, 6, 11, 12, 17, 23}) EXPECT_TRUE(Same_BitmapPixel(bm[(size_t)i], red)) << i;
    Draw_Line(e.data(), 3, 3, -2, 0, 5, 0, red);  // points outside are skipped
    Erase_Bitmap(bm.data(), 0, 6, red);  // an empty size erases nothing
    EXPECT_TRUE(count_red(bm) == 8 && count_red(e) == 3);
    Erase_Bitmap(e.data(), 3, 3, red);
    EXPECT_EQ(count_red(e), 9);
    std::vector<BitmapPixel> n(30);  // r = x, g = y: every pixel distinct. Odd height: the middle row stays.
    for (int i = 0; i < 30; i++) n[(size_t)i] = {(unsigned char)(i % 6), (unsigned char)(i / 6), 7, 255};
    for (int dir : {0, 1, 2}) {
        std::vector<BitmapPixel> f = n;
        Flip_Bitmap(f.data(), 6, 5, dir);
        for (int i = 0; i < 30; i++) {
            const int x = i % 6, y = i / 6, sx = dir == 1 ? 5 - x : x, sy = dir == 0 ? 4 - y : y;
            EXPECT_TRUE(Same_BitmapPixel(f[(size_t)i], n[(size_t)(sy * 6 + sx)])) << "direction " << dir << " at " << i;
        }
    }
}

using Image = std::vector<BitmapPixel>;

TEST(Resample, KernelAndConstantImages)
{
    for (auto [t, want] : {std::pair{0.0, 4.0 / 6}, {-1.0, 1.0 / 6}, {2.0, 0.0}, {0.5, 0.4791666666666667}})
        EXPECT_NEAR(BiCubicR(t), want, 1e-12) << "t = " << t;
    for (double d = 0; d < 1; d += 0.0625)  // the four taps of any footprint sum to one
        EXPECT_NEAR(BiCubicR(-1 - d) + BiCubicR(-d) + BiCubicR(1 - d) + BiCubicR(2 - d), 1.0, 1e-12) << d;
    for (auto &s : {std::vector<int>{1, 1, 3, 3}, {6, 5, 3, 2}, {7, 3, 20, 11}}) {
        Image src((size_t)(s[0] * s[1]), {200, 100, 50, 255}), dst((size_t)(s[2] * s[3]));
        BiCubicScale(src.data(), s[0], s[1], dst.data(), s[2], s[3]);
        for (auto p : dst)  // the truncated result may lose one
            EXPECT_TRUE(p.r >= 199 && p.g >= 99 && p.g <= 100 && p.b >= 49 && p.b <= 50 && p.a >= 254) << int(p.r);
    }
    Image flat(256, {100, 100, 100, 100}), dst(64);
    GaussianScale(flat.data(), 16, 16, dst.data(), 8, 8, 2.0);  // a wide Gaussian sums to one closely
    for (auto p : dst) EXPECT_NEAR(p.r, 100, 1);
    GaussianScale(flat.data(), 16, 16, dst.data(), 8, 8, -1.0);  // an empty footprint
    for (auto p : dst) EXPECT_EQ(p.r + p.g + p.b + p.a, 0);
}

TEST(Resample, CornerMappingAndEmptySizes)
{
    // A ramp r = 30 x: destination (0, 0) sits on source column 0 and averages columns 0 (clamped), 0, 1, 2
    // with weights 1/6, 4/6, 1/6, 0: 5.
    Image src(16), dst(4), untouched(4, {9, 9, 9, 9});
    for (int i = 0; i < 16; i++) src[(size_t)i] = {(unsigned char)(30 * (i % 8)), (unsigned char)(i / 8), 1, 2};
    BiCubicScale(src.data(), 8, 2, dst.data(), 4, 1);
    EXPECT_TRUE(abs(dst[0].r - 5) <= 1 && abs(dst[1].r - 60) <= 1) << +dst[0].r << " " << +dst[1].r;
    GaussianScale(src.data(), 8, 2, dst.data(), 4, 1, 0.0);  // sigma 0: nearest neighbour
    for (int i = 0; i < 4; i++) EXPECT_EQ(dst[(size_t)i].r, 30 * (2 * i)) << i;
    BiCubicScale(src.data(), 8, 2, untouched.data(), 0, 4);
    GaussianScale(src.data(), 8, 2, untouched.data(), 4, 0, 1.0);
    EXPECT_EQ(untouched[0].r, 9);
}
