// Bicubic and Gaussian resampling: known weights and properties rather than reference pictures.
#include <gtest/gtest.h>

#include <vector>

#include "bitmap/resample.h"

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
