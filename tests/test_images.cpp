// Loading, the black/white working image and the screen copy.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "app_fixture.h"

namespace {

class Images : public ::testing::Test {
protected:
    void SetUp() override { quiet_defaults(); }
};

void use_pixels(int w, int h, const std::vector<BitmapPixel> &px)
{
    Destroy_Bitmap(image);
    image = Create_Bitmap(w, h);
    for (size_t i = 0; i < px.size(); i++) image[i] = px[i];
    options.imagewidth = w;
    options.imageheight = h;
}

}  // namespace

TEST_F(Images, ThresholdAtDistance128FromBlack)
{
    const struct { const char *id; BitmapPixel p; int bw; } cases[] = {
        {"bw-1.1", {127, 0, 0, 255}, 0},   {"bw-1.2", {128, 0, 0, 255}, 255},
        {"bw-1.3", {73, 73, 73, 255}, 0},  {"bw-1.4", {74, 74, 74, 255}, 255},
        {"bw-1.5", {0, 0, 127, 0}, 0},     // alpha ignored
        {"bw-1.6", {90, 90, 10, 255}, 0},  {"bw-1.7", {255, 255, 255, 0}, 255},
    };
    std::vector<BitmapPixel> px;
    for (const auto &c : cases) px.push_back(c.p);
    use_pixels((int)px.size(), 1, px);
    UpdateImages();
    for (size_t i = 0; i < px.size(); i++) EXPECT_EQ(bwimage[i], cases[i].bw) << cases[i].id;

    options.invert = 1;  // -bw complements the working image, not the image
    UpdateImages();
    for (size_t i = 0; i < px.size(); i++) EXPECT_EQ(bwimage[i], 255 - cases[i].bw) << cases[i].id;
    EXPECT_EQ(image[0].r, 127);
    EXPECT_EQ(options.invert, 1);  // cleared only with the screen copy
}

TEST_F(Images, WarnsWhenNothingIsBlack)
{
    use_pixels(2, 1, {{255, 255, 255, 255}, {200, 200, 200, 255}});
    ::testing::internal::CaptureStderr();
    UpdateImages();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Warning, image contains no black\n");

    use_pixels(2, 1, {{255, 255, 255, 255}, {0, 0, 0, 255}});
    ::testing::internal::CaptureStderr();
    UpdateImages();
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST_F(Images, ScreenCopyFitsThreeQuartersOfTheScreen)
{
    options.quiet = 0;
    images_screensize = [](int *w, int *h) {
        *w = 1280;
        *h = 1024;
    };
    const struct { const char *id; int w, h, ww, wh, scale; } cases[] = {
        {"screen-1.1", 2000, 1000, 500, 250, 4},  // width to 1000 then 500; height then fits
        {"screen-1.2", 400, 300, 400, 300, 1},
        {"screen-1.3", 960, 768, 960, 768, 1},    // exactly at both limits
        {"screen-1.4", 961, 100, 480, 50, 2},
        {"screen-1.5", 100, 2000, 25, 500, 4},    // height alone
    };
    for (const auto &c : cases) {
        use_pixels(c.w, c.h, std::vector<BitmapPixel>((size_t)(c.w * c.h), BitmapPixel{0, 0, 0, 255}));
        ::testing::internal::CaptureStderr();
        UpdateImages();
        const std::string err = ::testing::internal::GetCapturedStderr();
        EXPECT_EQ(options.windowwidth, c.ww) << c.id;
        EXPECT_EQ(options.windowheight, c.wh) << c.id;
        EXPECT_EQ(options.scale, c.scale) << c.id;
        char want[200];
        snprintf(want, sizeof want,
                 "Creating screen version\n   Full screen size: 1280 x 1024\n"
                 "   Display size:     %d x %d\n   Scale factor:     %d\n",
                 c.ww, c.wh, c.scale);
        EXPECT_EQ(err, want) << c.id;
    }
    images_screensize = nullptr;
}

TEST_F(Images, ScreenCopyInvertsOnceAndHasNoAlpha)
{
    options.quiet = 0;
    use_pixels(2, 2, std::vector<BitmapPixel>(4, BitmapPixel{10, 20, 30, 255}));
    options.invert = 1;
    ::testing::internal::CaptureStderr();
    UpdateImages();
    ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(options.invert, 0);
    for (int i = 0; i < 4; i++) {
        EXPECT_NEAR(viewimage[i].r, 245, 1);
        EXPECT_NEAR(viewimage[i].b, 225, 1);
        EXPECT_EQ(viewimage[i].a, 0);
    }
    EXPECT_EQ(bwimage[0], 255);  // dark pixels, inverted
}

TEST_F(Images, BlankImageIsWhite400By300)
{
    MakeTestImage();
    EXPECT_EQ(options.imagewidth, 400);
    EXPECT_EQ(options.imageheight, 300);
    EXPECT_STREQ(options.filename, "No Image");
    for (int i = 0; i < 400 * 300; i += 997) {
        EXPECT_EQ(image[i].r & image[i].g & image[i].b & image[i].a, 255);
    }
}

TEST_F(Images, LoadMessages)
{
    const std::string carpet = std::string(QUORL_EXAMPLES) + "/carpet.tga";
    options.quiet = 0;
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(LoadTGA(carpet.c_str()), 1);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "Reading file \"" + carpet + "\"\n   Image dimensions: 729 x 729 x 8\n");
    EXPECT_EQ(std::string(options.filename), carpet);

    options.quiet = 1;
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(LoadTGA("/nonexistent/x.tga"), 0);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Failed to open file \"/nonexistent/x.tga\"\n");
    EXPECT_EQ(std::string(options.filename), carpet);  // unchanged on failure

    const std::string longname(300, 'x');
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(LoadTGA(longname.c_str()), 0);
    EXPECT_NE(::testing::internal::GetCapturedStderr().find("File name too long"), std::string::npos);
}
