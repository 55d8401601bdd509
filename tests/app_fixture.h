// Shared set-up of the application tests: settings at their defaults, quiet,
// a fixed seed, and small images drawn from a predicate.
#pragma once

#include <functional>

#include "app/boxcount.h"
#include "app/images.h"
#include "app/options.h"

inline time_t fixed_clock()
{
    return 1000000000;
}

// Installs a w x h image whose pixel (x, y) is black where black(x, y) holds,
// builds the working images quietly and resets the engine.
inline void use_image(int w, int h, const std::function<bool(int, int)> &black)
{
    Destroy_Bitmap(image);
    image = Create_Bitmap(w, h);
    options.imagewidth = w;
    options.imageheight = h;
    for (int y = 0; y < h; y++)
        for (int x = 0; x < w; x++)
            image[y * w + x] = black(x, y) ? BitmapPixel{0, 0, 0, 255} : BitmapPixel{255, 255, 255, 255};
    UpdateImages();
}

inline void quiet_defaults()
{
    StartupArgs args;
    SetDefaultOptions(&args);
    options.quiet = 1;
    boxcount_clock = fixed_clock;
    CurrentAnalysis()->hooks = {};
}

// Steps the engine to the end; returns the number of steps (bounded).
inline long run_to_end(long limit = 10000000)
{
    long steps = 0;
    while (steps < limit) {
        steps++;
        if (BoxCount(1)) break;
    }
    return steps;
}
