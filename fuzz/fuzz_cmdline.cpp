// fuzz/fuzz_cmdline.cpp - the command line, and the quiet analysis it sets up.
//
// The input is a list of words separated by NUL bytes. They are parsed as the
// program would parse them; the settings must come out clamped. Then a fixed
// small image is analysed with those settings for a bounded number of steps
// (an automatic start size on a region under 5 pixels never finishes, as
// intended, so the bound stands in for the user's patience), the estimate is
// computed and the results table written, so that every switch value also
// reaches the engine and the writers.
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "app/boxcount.h"
#include "app/estimate.h"
#include "app/images.h"
#include "app/options.h"
#include "app/results.h"

namespace {

const int max_words = 64;
const long max_steps = 5000;
const int image_width = 37, image_height = 23;

FILE *devnull()
{
    static FILE *f = fopen("/dev/null", "w");
    return f;
}

time_t fixed_clock()
{
    return 1000000000;
}

// A 37 x 23 image with a diagonal, a filled corner and a lone pixel.
void use_test_image()
{
    const int w = image_width, h = image_height;
    Destroy_Bitmap(image);
    image = Create_Bitmap(w, h);
    options.imagewidth = w;
    options.imageheight = h;
    for (int y = 0; y < h; y++)
        for (int x = 0; x < w; x++) {
            const bool black = x == y || (x < 5 && y < 5) || (x == 30 && y == 20);
            const unsigned char v = black ? 0 : 255;
            image[y * w + x] = BitmapPixel{v, v, v, 255};
        }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    std::vector<std::string> words{"quorl"};
    std::string word;
    for (size_t i = 0; i < size && (int)words.size() < max_words; i++) {
        if (data[i] == 0) {
            words.push_back(word);
            word.clear();
        } else {
            word += (char)data[i];
        }
    }
    if ((int)words.size() < max_words && !word.empty()) words.push_back(word);
    std::vector<char *> argv;
    argv.reserve(words.size() + 1);
    for (auto &w : words) argv.push_back(w.data());
    argv.push_back(nullptr);

    StartupArgs args;
    SetDefaultOptions(&args);
    if (!ParseArguments((int)words.size(), argv.data(), &args)) {
        WriteUsage(devnull(), argv[0]);
        return 0;
    }
    if (!(options.boxstart == -1 || options.boxstart >= 2) || options.boxend < 1 ||
        !(options.boxfactor > 1.0f) || options.nsamples < 1)
        __builtin_trap();

    // Never the window system, never a file named by the input.
    options.quiet = 1;
    boxcount_clock = fixed_clock;
    use_test_image();
    UpdateImages();
    BoxCount(0);
    options.processing = 1;
    for (long step = 0; step < max_steps && !BoxCount(1); step++) {
    }
    volatile double slope = CalcSlope();
    (void)slope;
    WriteResults(devnull());
    return 0;
}
