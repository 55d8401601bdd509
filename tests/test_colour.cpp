// Colour maps at their stops and between them, GetColour's range rules, hue conversions against Python's
// colorsys, the YCC coefficient sets, and the small helpers.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>

#include "util/colour.h"

static void expect_rgb(ColourRGB got, double r, double g, double b, const std::string &id, double tol = 1e-9)
{
    EXPECT_TRUE(fabs(got.r - r) <= tol && fabs(got.g - g) <= tol && fabs(got.b - b) <= tol)
        << id << ": " << got.r << " " << got.g << " " << got.b;
}

TEST(colour_maps, StopsBetweenAndRangeRules)
{
    // Map 1 (blue to red), map 12 (an uneven stop, in 255ths), map 30 (computed hues); halfway is the mean.
    constexpr double K = 1 / 255.0;
    const struct { const char *id; ColourRGB got; double r, g, b; } cases[] = {
        {"1 low", GetColour(0, 0, 1, 1), 0, 0, 1}, {"1 stop", GetColour(.25, 0, 1, 1), 0, 1, 1},
        {"1 between", GetColour(.625, 0, 1, 1), .5, 1, 0}, {"1 top", GetColour(1, 0, 1, 1), 1, 0, 0},
        {"12 stop", GetColour(.4, 0, 1, 12), 235 * K, 90 * K, 30 * K},
        {"12 top", GetColour(1, 0, 1, 12), 250 * K, 160 * K, 110 * K},
        {"30 stop", GetColour(2. / 3, 0, 1, 30), 0, 0, 1}, {"30 between", GetColour(.75, 0, 1, 30), .5, 0, 1},
        {"empty range widened to 4..6", GetColour(5, 5, 5, 3), 0.5, 0.5, 0.5},
        {"reversed range", GetColour(0.3, 1, 0, 1), 0, 1, 0.8}, {"below clamps", GetColour(-7, 0, 1, 3), 0, 0, 0},
        {"above clamps", GetColour(99, 10, 20, 3), 1, 1, 1}, {"NaN is low", GetColour(NAN, 0, 1, 3), 0, 0, 0},
        {"no map 0", GetColour(0.3, 0, 1, 0), 1, 1, 1}, {"no map 34", GetColour(0.3, 0, 1, 34), 1, 1, 1},
    };
    for (const auto &c : cases) expect_rgb(c.got, c.r, c.g, c.b, c.id);
}

TEST(colour_convert, AgainstPythonColorsys)
{
    FILE *p = popen("/usr/bin/python3 " QUORL_COLORSYS_GRID, "r");
    ASSERT_TRUE(p);
    char tag;
    double a, b, c, w[3];
    int rows = 0;
    for (; fscanf(p, " %c %lf %lf %lf %lf %lf %lf", &tag, &a, &b, &c, &w[0], &w[1], &w[2]) == 7; rows++) {
        ColourRGB got;
        if (tag == 'F' || tag == 'L') {
            const ColourHSV h = tag == 'F' ? RGB2HSV({a, b, c}) : ColourHSV{RGB2HSL({a, b, c}).h, RGB2HSL({a, b, c}).s,
                                                                           RGB2HSL({a, b, c}).l};
            got = {fmod(h.h - w[0] + 540, 360) - 180 + w[0], h.s, h.v};  // 0 and 360 are one hue
        } else {
            got = tag == 'V' ? HSV2RGB({a, b, c}) : HSL2RGB({a, b, c});
        }
        expect_rgb(got, w[0], w[1], w[2], std::string(1, tag) + " " + std::to_string(a) + " " + std::to_string(b) + " "
                                              + std::to_string(c));
    }
    EXPECT_EQ(pclose(p), 0) << "python3 (scripts/setup.sh installs it)";
    EXPECT_GT(rows, 3000);
    expect_rgb(HSV2RGB({-120, 1, 1}), 0, 0, 1, "negative turns");
    expect_rgb(HSL2RGB({480, 1, 0.5}), 0, 1, 0, "one turn too many");
    expect_rgb(HSV2RGB({1e300, 0, 0.5}), 0.5, 0.5, 0.5, "a huge hue returns");
}

TEST(colour_convert, YccAndHelpers)
{
    const ColourYCC red = RGB2YCC({1, 0, 0}), white = RGB2YCC({1, 1, 1});  // white is not exactly neutral
    ColourRGB c = {-0.5, 0.3, 1.5}, a = {0.2, 0.4, 0.6}, inv = a;
    ColourRGBA q = {2, -1, 0.5, 7};
    ClipColour(&c), InvertColour(&inv), ClipRGBA(&q);
    const struct { const char *id; ColourRGB got; double r, g, b; } cases[] = {
        {"ycc red", {red.y, red.cb, red.cr}, 0.2989, -0.1687, 0.5},
        {"ycc white", {white.y, white.cb, white.cr}, 1, 1e-4, 1e-4},
        {"ycc inverse", YCC2RGB({0.5, 0, 0.1}), 0.64022, 0.42855, 0.5},
        {"ycc clamped", YCC2RGB({1, 0.5, 0.5}), 1, 0.46995, 1},
        {"ramp clamped", RampColour2(a, {1, 0, 0.5}, 1.5), 1, 0, 0.5},
        {"ramp", RampColour2(a, {1, 0, 0.5}, 0.5), 0.6, 0.2, 0.55},
        {"invert", inv, 0.8, 0.6, 0.4}, {"clip", c, 0, 0.3, 1}, {"clip rgba", {q.r, q.g, q.b}, 1, 0, 0.5},
    };
    for (const auto &k : cases) expect_rgb(k.got, k.r, k.g, k.b, k.id);
    const char shades[] = " .,:;-|I*oO%#@M";
    for (int k = 0; k < 15; k++) EXPECT_EQ(AsciiColour((k + 0.5) / 15, 0, 1), shades[k]) << k;
    EXPECT_TRUE(AsciiColour(-5, 0, 1) == ' ' && AsciiColour(1, 0, 1) == 0 && AsciiColour(3, 3, 3) == ' ' && q.a == 1.0);
    EXPECT_NEAR(AbsColour({1, 0, 0}), 1 / sqrt(3.0), 1e-15);
    EXPECT_TRUE(EqualColour(a, {0.2 + 0.9e-6, 0.4, 0.6}) && !EqualColour(a, {0.2, 0.4 + 1.1e-6, 0.6}));
}
