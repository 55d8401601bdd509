// fuzz/fuzz_cmdline.cpp - the command line, and the quiet analysis it sets up.
//
// The input is a list of words separated by NUL bytes. They are parsed as the
// program would parse them; the settings must come out clamped. Then a fixed
// small image is analysed with those settings for a bounded number of steps
// (an automatic start size on a region under 5 pixels never finishes, as
// intended, so the bound stands in for the user's patience), the estimate is
// computed and the results table written, so that every switch value also
// reaches the engine and the writers.
#include <algorithm>
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
const int sane_limit = 1 << 28;
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

    // Two known faults of the engine's int arithmetic are kept out of the
    // analysis (the settings are still parsed above) so that the fuzzer keeps
    // looking for others: region edges or box sizes near the int limits
    // overflow the grid corners, and an inverted region (left beyond right
    // or bottom above top, after clamping to the image) with the automatic
    // start size gives a negative box size whose scan ends only when a
    // corner overflows.
    const int edges[] = {options.left, options.right, options.top, options.bottom, options.boxstart};
    for (int v : edges)
        if (v > sane_limit || v < -sane_limit) return 0;
    const int l = std::max(options.left, 0), r = std::min(options.right, image_width);
    const int b = std::max(options.bottom, 0), t = std::min(options.top, image_height);
    if (options.boxstart < 0 && (r < l || t < b)) return 0;

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
