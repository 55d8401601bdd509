// The statistics behind a report: the t quantile, the double-precision fit
// and the minimum over every grid offset. (The fit range's estimate is
// checked end to end in tests/e2e/report.py.)
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "app/alloffsets.h"
#include "app/fit.h"

TEST(Stats, StudentQuantileKnownValues)
{
    const struct { int df; double want; } cases[] = {
        {1, 12.706204736174707}, {2, 4.302652729749464}, {10, 2.2281388519862744}, {30, 2.0422724563012373}};
    for (auto c : cases) EXPECT_NEAR(StudentT975(c.df), c.want, 1e-12) << "df " << c.df;
}

TEST(Stats, LineFitCases)
{
    const double x[] = {-4, -3, -2, -1}, line[] = {8, 6.5, 5, 3.5}, flat[] = {2, 2, 2, 2}, same[] = {1, 1, 1, 1};
    LineFit f;
    ASSERT_TRUE(FitLine(x, line, 4, &f));  // exact: no scatter, no interval width
    EXPECT_DOUBLE_EQ(f.slope, -1.5);
    EXPECT_DOUBLE_EQ(f.intercept, 2);
    EXPECT_DOUBLE_EQ(f.r2, 1);
    EXPECT_TRUE(f.has_interval && f.stderr_slope < 1e-12 && f.ci_low == f.ci_high);
    ASSERT_TRUE(FitLine(x, flat, 4, &f));
    EXPECT_EQ(f.r2, 1);
    ASSERT_TRUE(FitLine(x, line, 2, &f));  // boundary: two points fit, but give no interval
    EXPECT_FALSE(f.has_interval);
    EXPECT_FALSE(FitLine(same, line, 4, &f));
}

// The table and the pixel scan agree with each other and with counts known by
// hand; both are checked against a brute force over every offset end to end.
TEST(Stats, MinBoxCountTableAndPixels)
{
    const int w = 37, h = 29;
    std::vector<unsigned char> bw(w * h, 255);
    srand(16);
    for (auto &p : bw) p = rand() % 9 ? 255 : 0;
    BlackTable t;
    ASSERT_TRUE(BuildBlackTable(&t, bw.data(), w, h));
    const int regions[][4] = {{0, w, 0, h}, {3, 30, 5, 21}, {10, 12, 0, h}};
    for (auto &r : regions)
        for (int s : {1, 2, 3, 5, 8, 13, 40}) {
            int ox, oy, px, py;
            EXPECT_EQ(MinBoxCount(&t, bw.data(), w, r[0], r[1], r[2], r[3], s, &ox, &oy),
                      MinBoxCount(nullptr, bw.data(), w, r[0], r[1], r[2], r[3], s, &px, &py))
                << "size " << s << " region " << r[0] << "," << r[2];
            EXPECT_TRUE(ox == px && oy == py && ox < s && oy < s);
        }
    std::fill(bw.begin(), bw.end(), 255);
    for (int x = 5; x < 15; x++) bw[7 * w + x] = 0;  // a line of 10 pixels
    ASSERT_TRUE(BuildBlackTable(&t, bw.data(), w, h));
    int ox, oy;
    EXPECT_EQ(MinBoxCount(&t, bw.data(), w, 0, w, 0, h, 4, &ox, &oy), 3);
    EXPECT_EQ(MinBoxCount(&t, bw.data(), w, 0, w, 0, h, 5, &ox, &oy), 2);
    EXPECT_EQ((ox - 5 + 50) % 5, 0);  // the grid lines up with the line's start
    EXPECT_EQ(MinBoxCount(&t, bw.data(), w, 20, 20, 0, h, 5, &ox, &oy), 0);
    FreeBlackTableOf(&t);
}
