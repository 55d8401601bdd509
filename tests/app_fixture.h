// tests/app_fixture.h - shared set-up of the application tests: settings at
// their defaults, quiet, a fixed seed, and images built in memory.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "app/boxcount.h"
#include "app/images.h"
#include "app/options.h"

using Shape = std::function<bool(int, int)>;     // black(x, y)
using Table = std::vector<std::pair<int, int>>;  // (size, count) of each results entry

inline time_t fixed_clock() { return 1000000000; }

// Every application test starts from the defaults, quiet, seeded by the fixed clock, with no hooks.
struct AppTest : ::testing::Test {
    void SetUp() override
    {
        StartupArgs args;
        SetDefaultOptions(&args);
        options.quiet = 1;
        boxcount_clock = fixed_clock;
        CurrentAnalysis()->hooks = {};
    }
};

// Installs a w x h image whose pixel i, at (i % w, i / w), is pixel(i).
inline void set_image(int w, int h, const std::function<BitmapPixel(int)> &pixel)
{
    Destroy_Bitmap(image);
    image = Create_Bitmap(w, h);
    options.imagewidth = w, options.imageheight = h;
    for (int i = 0; i < w * h; i++) image[i] = pixel(i);
}

// An image black where black(x, y) holds, its working images built: the program's analysis is reset.
inline void use_image(int w, int h, const Shape &black)
{
    set_image(w, h, [&](int i) { return black(i % w, i / w) ? BitmapPixel{0, 0, 0, 255} : BitmapPixel{255, 255, 255, 255}; });
    UpdateImages();
}

// A further analysis of the same picture, with the given settings and the fixed clock.
inline Analysis *analysis_of(int w, int h, const Shape &black, const Options &settings)
{
    Analysis *a = CreateAnalysis(&settings);
    a->clock = fixed_clock;
    unsigned char *bw = (unsigned char *)malloc((size_t)w * h);
    for (int i = 0; i < w * h; i++) bw[i] = black(i % w, i / w) ? 0 : 255;
    SetAnalysisImage(a, bw, w, h);
    return a;
}

// Steps the program's own analysis until it finishes or limit steps are taken.
inline void run_to_end(long limit = 10000000)
{
    while (limit-- > 0 && !BoxCount(1)) {
    }
}

inline Table table_of(const BoxResult *r, int n)
{
    Table t;
    for (int i = 0; i < n; i++) t.push_back({r[i].size, r[i].count});
    return t;
}

template <class F> std::string stderr_of(F fn)
{
    ::testing::internal::CaptureStderr();
    fn();
    return ::testing::internal::GetCapturedStderr();
}
