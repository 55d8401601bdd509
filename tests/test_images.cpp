// What start-up reads and builds before an analysis: the command line, the
// black/white working image and the grey-level rules, the screen copy, and
// buffers that cannot be had. (Otsu's level is checked against scikit-image
// in tests/e2e/formats.py.)
#include <gtest/gtest.h>

#include <sys/resource.h>

#include <fstream>

#include "app/threshold.h"
#include "app_fixture.h"

using Images = AppTest;
using ImagesDeathTest = AppTest;

TEST_F(Images, CommandLineSeam)
{
    const struct { std::vector<const char *> words; int ret, nsamples; float factor; } cases[] = {
        {{"quorl", "-x", "-n"}, 1, 1, 1.2f},     // unknown words are ignored; a missing value reads as ""
        {{"quorl", "-bf", "nan"}, 1, 10, 1.1f},  // not a number is not above 1
        {{"quorl", "-n", "7", "--h"}, -1, 7, 1.2f},  // an unknown long option is refused
    };
    for (const auto &c : cases) {
        StartupArgs args;
        SetDefaultOptions(&args);
        EXPECT_EQ(ParseArguments((int)c.words.size(), const_cast<char **>(c.words.data()), &args), c.ret) << c.words[1];
        EXPECT_TRUE(options.nsamples == c.nsamples && options.boxfactor == c.factor) << c.words.back();
    }
}

TEST_F(Images, ThresholdAtDistance128FromBlack)
{
    static const struct { BitmapPixel p; int bw; } cases[] = {
        {{127, 0, 0, 255}, 0}, {{128, 0, 0, 255}, 255}, {{73, 73, 73, 255}, 0}, {{74, 74, 74, 255}, 255},
        {{90, 90, 10, 0}, 0},       // alpha is ignored
        {{255, 128, 0, 255}, 255},  // 81409, which cut to 16 bits would be 15873
    };
    set_image(6, 1, [](int i) { return cases[i].p; });
    for (int invert : {1, 0}) {  // -bw inverts the working images, not the image; quiet, nothing clears the flag
        options.invert = invert;
        UpdateImages();
        for (int i = 0; i < 6; i++) EXPECT_EQ(bwimage[i], invert ? 255 - cases[i].bw : cases[i].bw) << i;
        EXPECT_TRUE(image[0].r == 127 && options.invert == invert);
    }
    set_image(2, 1, [](int i) { return BitmapPixel{255, 255, (unsigned char)(255 - i), 255}; });
    EXPECT_EQ(stderr_of(UpdateImages), "Warning, image contains no black\n");
    EXPECT_TRUE(bwimage[0] == 255 && bwimage[1] == 255 && nresults == 1) << "built all the same";
}

TEST_F(Images, GreyLevelRules)
{
    static const struct { const char *id; BitmapPixel p; int cut, invert; unsigned char want; } cases[] = {
        {"grey-1.1 red is Y 76: below 77", {255, 0, 0, 255}, 77, 0, 0},
        {"grey-1.2 red is Y 76: not below 76", {255, 0, 0, 255}, 76, 0, 255},
        {"grey-1.3 Y rounds half up: 128.5 is 129", {128, 129, 128, 0}, 129, 0, 255},
        {"grey-1.5 cut 256: everything black", {255, 255, 255, 255}, 256, 0, 0},
        {"grey-1.6 inverted", {0, 0, 0, 255}, 10, 1, 255},
    };
    for (const auto &c : cases) {
        unsigned char out;
        EXPECT_TRUE(ThresholdPixels(&c.p, &out, 1, ThresholdRule{c.cut, c.invert}) == c.want && out == c.want) << c.id;
    }
}

TEST_F(Images, ScreenCopyFitsThreeQuartersOfTheScreen)
{
    options.quiet = 0;
    images_screensize = [](int *w, int *h) { *w = 1280, *h = 1024; };  // limits 960 x 768
    const struct { int w, h, ww, wh, scale; } cases[] = {
        {2000, 1000, 500, 250, 4},  // the width to 1000, then 500; the height then fits
        {960, 768, 960, 768, 1},    // exactly at both limits
        {100, 2000, 25, 500, 4},    // the height alone
    };
    for (const auto &c : cases) {
        set_image(c.w, c.h, [](int) { return BitmapPixel{255, 255, 255, 255}; });
        options.invert = 1;  // -bw: the screen copy is inverted, once
        stderr_of(UpdateImages);  // its lines are checked by the end-to-end runs
        EXPECT_TRUE(options.windowwidth == c.ww && options.windowheight == c.wh && options.scale == c.scale) << c.w;
        EXPECT_TRUE(viewimage[0].r == 0 && viewimage[0].a == 0 && bwimage[0] == 0 && !options.invert) << c.w;
    }
    images_screensize = nullptr;
}

// Each buffer built from an 8192 x 8192 image in turn does not fit: the working image (64 MB; fatal, -1), then
// the screen copy (256 MB; status 0, as for the usage). The black-pixel table (128 MB) may fail quietly.
TEST_F(ImagesDeathTest, BuffersThatCannotBeAllocated)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the address sanitizer needs an unlimited address space";
#else
    const long long mb = 1 << 20;
    const struct { int quiet; long long extra; int status; const char *message; } cases[] = {
        {1, 32 * mb, 255, "^   Failed to create image - fatal\n$"},
        {0, 96 * mb, 0, "   Failed to create image\n$"},
    };
    auto short_of = [](int quiet, long long extra) {
        options.quiet = quiet;
        set_image(8192, 8192, [](int) { return BitmapPixel{0, 0, 0, 255}; });
        std::ifstream status("/proc/self/status");  // the address space: what is mapped now, and extra
        std::string key;
        long long kb = 0;
        while (status >> key && key != "VmSize:") {
        }
        status >> kb;
        const rlimit limit = {(rlim_t)(kb * 1024 + extra), (rlim_t)(kb * 1024 + extra)};
        setrlimit(RLIMIT_AS, &limit);
        UpdateImages();
        exit(3);
    };
    for (const auto &c : cases)
        EXPECT_EXIT(short_of(c.quiet, c.extra), ::testing::ExitedWithCode(c.status), c.message) << c.extra / mb << " MB";
#endif
}
