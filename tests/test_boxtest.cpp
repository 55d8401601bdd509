// The box test: BlackInRect answers from the black-pixel table, and must give
// the answer of looking at every pixel for any box, region and image.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "app_fixture.h"

namespace {

// Black pixels of the box inside the region and the image, looked at one by one.
int brute(int x1, int x2, int y1, int y2)
{
    const int xa = std::max({x1, options.left, 0}), xb = std::min({x2, options.right, options.imagewidth});
    const int ya = std::max({y1, options.bottom, 0}), yb = std::min({y2, options.top, options.imageheight});
    for (int y = ya; y < yb; y++)
        for (int x = xa; x < xb; x++)
            if (bwimage[y * options.imagewidth + x] < 128) return 1;
    return 0;
}

// use_image without the no-black warnings of the blank images.
void quietly_use_image(int w, int h, const std::function<bool(int, int)> &black)
{
    ::testing::internal::CaptureStderr();
    use_image(w, h, black);
    ::testing::internal::GetCapturedStderr();
}

class BoxTest : public ::testing::Test {
protected:
    void SetUp() override { quiet_defaults(); }
    void TearDown() override { MakeBlackTable(); }  // later tests expect a current table
};

}  // namespace

TEST_F(BoxTest, TableAgreesWithThePixelsEverywhere)
{
    std::mt19937 rng(20240611);
    auto pick = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
    for (int image_no = 0; image_no < 150; image_no++) {
        const int w = pick(1, image_no % 10 == 0 ? 700 : 60), h = pick(1, image_no % 10 == 0 ? 300 : 60);
        const int density = pick(0, 4);  // 0 all white ... 4 all black
        std::vector<int> cell(w * h);
        for (int &c : cell) c = density == 4 || (density > 0 && pick(0, 999) < density * density * density);
        quietly_use_image(w, h, [&](int x, int y) { return cell[y * w + x] != 0; });

        for (int region_no = 0; region_no < 8; region_no++) {
            // Regions from well outside the image to well beyond it, some empty.
            options.left = pick(-10, w);
            options.right = pick(-10, w + 10);
            options.bottom = pick(-10, h);
            options.top = pick(-10, h + 10);
            for (int box = 0; box < 60; box++) {
                const int s = pick(0, box % 6 == 0 ? 800 : 40);  // 0: an empty box
                const int x1 = pick(-s, w + 2), y1 = pick(-s, h + 2);
                const int want = brute(x1, x1 + s, y1, y1 + s);
                ASSERT_EQ(BlackInRect(x1, x1 + s, y1, y1 + s), want)
                    << "image " << image_no << " (" << w << "x" << h << ") region " << region_no
                    << " box " << x1 << "," << y1 << " size " << s;
                ASSERT_EQ(BlackInRectScan(x1, x1 + s, y1, y1 + s), want) << "scan, image " << image_no;
            }
        }
    }
}

TEST_F(BoxTest, BlackCountsThatAreMultiplesOfTheTableWidth)
{
    // The table counts modulo 65536: an all-black rectangle of exactly 65536 or
    // 131072 pixels must still be found.
    const struct { const char *id; int w, h; } cases[] = {
        {"wrap-1.1", 512, 128}, {"wrap-1.2", 256, 256}, {"wrap-1.3", 1024, 128}, {"wrap-1.4", 65536, 1},
    };
    for (const auto &c : cases) {
        use_image(c.w, c.h, [](int, int) { return true; });
        EXPECT_EQ(BlackInRect(0, c.w, 0, c.h), 1) << c.id;
        EXPECT_EQ(BlackInRect(-5, c.w + 5, -5, c.h + 5), 1) << c.id;
    }
}

TEST_F(BoxTest, LargeBoxesAreAskedPieceByPieceWithoutGaps)
{
    // One black pixel on or beside the seams of the 256 x 255 pieces.
    quietly_use_image(700, 600, [](int, int) { return false; });
    for (int px : {0, 1, 255, 256, 257, 511, 512, 699})
        for (int py : {0, 254, 255, 256, 509, 510, 599})
            for (int origin : {-3, 0, 1}) {
                bwimage[py * 700 + px] = 0;
                MakeBlackTable();
                const int want = px >= origin && py >= origin;
                EXPECT_EQ(BlackInRect(origin, 700, origin, 600), want) << px << "," << py << " from " << origin;
                bwimage[py * 700 + px] = 255;
            }
}

TEST_F(BoxTest, WithoutAMatchingTableThePixelsAreScanned)
{
    use_image(30, 20, [](int x, int y) { return x == 12 && y == 7; });
    FreeBlackTable();
    EXPECT_EQ(BlackInRect(10, 15, 5, 10), 1);
    EXPECT_EQ(BlackInRect(13, 18, 5, 10), 0);

    // A table built for another image size is not used.
    ASSERT_EQ(MakeBlackTable(), 1);
    options.imagewidth = 20;  // the same bytes seen as 20 wide: (12, 7) is now at (2, 11)
    options.imageheight = 30;
    options.right = 20;
    options.top = 30;
    EXPECT_EQ(BlackInRect(0, 5, 8, 12), 1);
    EXPECT_EQ(BlackInRect(10, 15, 5, 10), 0);
}
