// What start-up reads and builds before an analysis: the command line, the
// black/white working image, the screen copy, and pixel buffers that cannot
// be allocated.
#include <gtest/gtest.h>

#include <sys/resource.h>
#include <unistd.h>

#include <fstream>

#include "app_fixture.h"
#include "bitmap/writer.h"

using Images = AppTest;
using ImagesDeathTest = AppTest;

namespace {

void use_pixels(int w, int h, const std::vector<BitmapPixel> &px)
{
    Destroy_Bitmap(image);
    image = Create_Bitmap(w, h);
    std::copy(px.begin(), px.end(), image);
    options.imagewidth = w, options.imageheight = h;
}

// Caps the address space at what the process maps now plus extra bytes, so
// that the next large allocation fails as on a machine without the memory.
[[maybe_unused]] void limit_address_space(long long extra)
{
    std::ifstream status("/proc/self/status");
    std::string key;
    long long kb = 0;
    while (status >> key && key != "VmSize:") {
    }
    status >> kb;
    const rlimit cap = {(rlim_t)(kb * 1024 + extra), (rlim_t)(kb * 1024 + extra)};
    setrlimit(RLIMIT_AS, &cap);
}

}  // namespace

TEST_F(Images, CommandLineSeam)
{
    const struct { std::vector<const char *> words; int ret, nsamples; float factor; } cases[] = {
        {{"quorl", "-n", "5", "-h", "-n", "7"}, 0, 5, 1.2f},  // "-h" stops the scan; what came before stays
        {{"quorl", "-h", "-n", "7"}, 0, 10, 1.2f},
        {{"quorl", "-n", "7", "-x", "--h"}, 1, 7, 1.2f},      // unknown words are ignored
        {{"quorl", "-n"}, 1, 1, 1.2f},                        // a missing value reads as ""
        {{"quorl", "-bf", "nan"}, 1, 10, 1.1f},               // not a number is not above 1
    };
    for (const auto &c : cases) {
        StartupArgs args;
        SetDefaultOptions(&args);
        EXPECT_EQ(ParseArguments((int)c.words.size(), const_cast<char **>(c.words.data()), &args), c.ret) << c.words[1];
        EXPECT_TRUE(options.nsamples == c.nsamples && options.boxfactor == c.factor) << c.words.back();
    }
}

TEST_F(Images, ThresholdAtDistance128FromBlackAndInversion)
{
    const struct { const char *id; BitmapPixel p; int bw; } cases[] = {
        {"bw-1.1", {127, 0, 0, 255}, 0},  {"bw-1.2", {128, 0, 0, 255}, 255}, {"bw-1.3", {73, 73, 73, 255}, 0},
        {"bw-1.4", {74, 74, 74, 255}, 255}, {"bw-1.5", {90, 90, 10, 0}, 0},  // alpha ignored
        {"bw-1.6", {255, 128, 0, 255}, 255},  // 81409, which cut to 16 bits would be 15873
    };
    std::vector<BitmapPixel> px;
    for (const auto &c : cases) px.push_back(c.p);
    use_pixels((int)px.size(), 1, px);
    for (int invert : {0, 1}) {  // -bw inverts the working images, not the image
        options.invert = invert;
        UpdateImages();
        for (size_t i = 0; i < px.size(); i++) EXPECT_EQ(bwimage[i], invert ? 255 - cases[i].bw : cases[i].bw) << cases[i].id;
    }
    EXPECT_TRUE(image[0].r == 127 && options.invert == 1) << "quiet: no screen copy to clear the flag";

    options.quiet = 0;  // the screen copy is inverted once, has no alpha, and clears the flag
    use_pixels(2, 2, std::vector<BitmapPixel>(4, BitmapPixel{10, 20, 30, 255}));
    stderr_of(UpdateImages);
    EXPECT_TRUE(options.invert == 0 && bwimage[0] == 255);
    for (int i = 0; i < 4; i++)
        EXPECT_TRUE(abs(viewimage[i].r - 245) <= 1 && abs(viewimage[i].b - 225) <= 1 && viewimage[i].a == 0) << i;

    options.quiet = 1;  // nothing black: a warning, and the images are built all the same
    use_pixels(2, 1, {{255, 255, 255, 255}, {200, 200, 200, 255}});
    EXPECT_EQ(stderr_of(UpdateImages), "Warning, image contains no black\n");
    EXPECT_TRUE(bwimage[0] == 255 && bwimage[1] == 255 && nresults == 1);
}

TEST_F(Images, ScreenCopyFitsThreeQuartersOfTheScreen)
{
    options.quiet = 0;
    images_screensize = [](int *w, int *h) { *w = 1280, *h = 1024; };  // limits 960 x 768
    const struct { int w, h, ww, wh, scale; } cases[] = {
        {2000, 1000, 500, 250, 4},  // the width to 1000, then 500; the height then fits
        {960, 768, 960, 768, 1},    // exactly at both limits
        {961, 100, 480, 50, 2},
        {100, 2000, 25, 500, 4},    // the height alone
    };
    for (const auto &c : cases) {
        use_pixels(c.w, c.h, std::vector<BitmapPixel>((size_t)(c.w * c.h), BitmapPixel{0, 0, 0, 255}));
        char want[200];
        snprintf(want, sizeof want, "Creating screen version\n   Full screen size: 1280 x 1024\n"
                 "   Display size:     %d x %d\n   Scale factor:     %d\n", c.ww, c.wh, c.scale);
        EXPECT_EQ(stderr_of(UpdateImages), want) << c.w << "x" << c.h;
        EXPECT_TRUE(options.windowwidth == c.ww && options.windowheight == c.wh && options.scale == c.scale) << c.w;
    }
    images_screensize = nullptr;
}

// Each buffer in turn is the one that does not fit: the image itself (the load
// fails and quiet start-up ends with -1), the working image (fatal, -1), the
// screen copy (the program ends with status 0, as for the usage).
TEST_F(ImagesDeathTest, PixelBuffersThatCannotBeAllocated)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the address sanitizer needs an unlimited address space";
#else
    const int side = 8192;  // image 256 MB, working image 64 MB, screen copy 256 MB; 2 MB on disk
    std::string path = ::testing::TempDir() + "quorl-images-XXXXXX";
    FILE *f = fdopen(mkstemp(path.data()), "wb");
    BitmapPixel *white = Create_Bitmap(side, side);
    Erase_Bitmap(white, side, side, BitmapPixel{255, 255, 255, 255});
    ASSERT_EQ(Write_Bitmap(f, white, side, side, 12), 1);  // run-length
    Destroy_Bitmap(white);
    fclose(f);
    const long long mb = 1 << 20;
    const struct { int quiet; long long extra; int status; const char *message; } cases[] = {
        {1, 64 * mb, 255, "^   Failed to create image\n$"},
        {1, 288 * mb, 255, "^   Failed to create image - fatal\n$"},
        {0, 352 * mb, 0, "   Failed to create image\n$"},
    };
    for (const auto &c : cases) {
        EXPECT_EXIT(
            {
                options.quiet = c.quiet;
                limit_address_space(c.extra);
                if (!LoadTGA(path.c_str())) exit(-1);
                UpdateImages();
                exit(3);
            },
            ::testing::ExitedWithCode(c.status), c.message) << "extra " << c.extra / mb << " MB";
    }
    remove(path.c_str());
#endif
}
