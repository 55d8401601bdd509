// Colour maps at their stops (and linear between them), the range rules of
// GetColour, hue conversions against Python's colorsys, the YCC coefficient
// sets, and the small helpers.
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

TEST(colour_maps, StopsLinearBetweenAndRangeRules)
{
    // Map 1 (blue to red), map 12 (an uneven stop, in 255ths), map 30 (computed hues); f in order.
    constexpr double K = 1 / 255.0;
    const struct { int type; double f, r, g, b; } stops[] = {
        {1, 0, 0, 0, 1}, {1, .25, 0, 1, 1}, {1, .5, 0, 1, 0}, {1, .75, 1, 1, 0}, {1, 1, 1, 0, 0},
        {12, 0, 55 * K, 55 * K, 45 * K}, {12, .4, 235 * K, 90 * K, 30 * K}, {12, 1, 250 * K, 160 * K, 110 * K},
        {30, 0, 1, 0, 0}, {30, 1. / 6, 1, 1, 0}, {30, 1. / 3, 0, 1, 0}, {30, .5, 0, 1, 1}, {30, 2. / 3, 0, 0, 1},
            {30, 5. / 6, 1, 0, 1}, {30, 1, 1, 0, 0},
    };
    for (size_t i = 0; i < std::size(stops); i++) {
        const auto &c = stops[i], &d = stops[i + 1 < std::size(stops) ? i + 1 : i];
        const std::string id = "map " + std::to_string(c.type) + " f=" + std::to_string(c.f);
        expect_rgb(GetColour(c.f, 0, 1, c.type), c.r, c.g, c.b, id);
        if (d.type == c.type)  // halfway to the next stop, the mean of the two
            expect_rgb(GetColour((c.f + d.f) / 2, 0, 1, c.type), (c.r + d.r) / 2, (c.g + d.g) / 2, (c.b + d.b) / 2, id
                + " mid");
    }
    expect_rgb(GetColour(5, 5, 5, 3), 0.5, 0.5, 0.5, "empty range widened to 4..6");
    expect_rgb(GetColour(0.3, 1, 0, 1), 0, 1, 0.8, "reversed range");
    expect_rgb(GetColour(-7, 0, 1, 3), 0, 0, 0, "below clamps to 0");
    expect_rgb(GetColour(99, 10, 20, 3), 1, 1, 1, "above clamps to the top");
    expect_rgb(GetColour(NAN, 0, 1, 3), 0, 0, 0, "NaN takes the low end");
    for (int t : {0, 34, -1}) expect_rgb(GetColour(0.3, 0, 1, t), 1, 1, 1, "no map " + std::to_string(t));
}

TEST(colour_convert, AgainstPythonColorsys)
{
    FILE *p = popen("/usr/bin/python3 " QUORL_COLORSYS_GRID, "r");
    ASSERT_TRUE(p);
    char tag;
    double a, b, c, w[3];
    int rows = 0;
    while (fscanf(p, " %c %lf %lf %lf %lf %lf %lf", &tag, &a, &b, &c, &w[0], &w[1], &w[2]) == 7) {
        ColourRGB got;
        if (tag == 'F' || tag == 'L') {
            const ColourHSV h = tag == 'F' ? RGB2HSV({a, b, c})
                : ColourHSV{RGB2HSL({a, b, c}).h, RGB2HSL({a, b, c}).s, RGB2HSL({a, b, c}).l};
            got = {fmod(h.h - w[0] + 540, 360) - 180 + w[0], h.s, h.v};  // 0 and 360 are one hue
        } else {
            got = tag == 'V' ? HSV2RGB({a, b, c}) : HSL2RGB({a, b, c});
        }
        expect_rgb(got, w[0], w[1], w[2], std::string(1, tag) + " " + std::to_string(a) + " " + std::to_string(b) + " "
            + std::to_string(c));
        rows++;
    }
    EXPECT_EQ(pclose(p), 0) << "python3 (scripts/setup.sh installs it)";
    EXPECT_GT(rows, 3000);
    expect_rgb(HSV2RGB({-120, 1, 1}), 0, 0, 1, "negative turns");
    expect_rgb(HSL2RGB({480, 1, 0.5}), 0, 1, 0, "one turn too many");
    expect_rgb(HSV2RGB({1e300, 0, 0.5}), 0.5, 0.5, 0.5, "a huge hue returns");
}

TEST(colour_convert, YccAndHelpers)
{
    // Primaries give the columns of the forward set; white is not exactly neutral.
    expect_rgb(ColourRGB{RGB2YCC({1, 0, 0}).y, RGB2YCC({1, 0, 0}).cb, RGB2YCC({1, 0, 0}).cr}, 0.2989, -0.1687, 0.5,
        "ycc red");
    expect_rgb(ColourRGB{RGB2YCC({1, 1, 1}).y, RGB2YCC({1, 1, 1}).cb, RGB2YCC({1, 1, 1}).cr}, 1, 0.0001, 0.0001,
        "ycc white");
    expect_rgb(YCC2RGB({0.5, 0, 0.1}), 0.64022, 0.42855, 0.5, "ycc inverse");
    expect_rgb(YCC2RGB({1, 0.5, 0.5}), 1, 0.46995, 1, "ycc clamped");

    const char shades[] = " .,:;-|I*oO%#@M";
    for (int k = 0; k < 15; k++) EXPECT_EQ(AsciiColour((k + 0.5) / 15, 0, 1), shades[k]) << k;
    EXPECT_TRUE(AsciiColour(-5, 0, 1) == ' ' && AsciiColour(1, 0, 1) == 0 && AsciiColour(3, 3, 3) == ' ');
    const ColourRGB a = {0.2, 0.4, 0.6}, b = {1, 0, 0.5};
    expect_rgb(RampColour2(a, b, 1.5), 1, 0, 0.5, "ramp clamped");
    expect_rgb(RampColour2(a, b, 0.5), 0.6, 0.2, 0.55, "ramp");
    EXPECT_NEAR(AbsColour({1, 0, 0}), 1 / sqrt(3.0), 1e-15);
    EXPECT_TRUE(EqualColour(a, {0.2 + 0.9e-6, 0.4, 0.6}) && !EqualColour(a, {0.2, 0.4 + 1.1e-6, 0.6}));
    ColourRGB c = a;
    InvertColour(&c);
    expect_rgb(c, 0.8, 0.6, 0.4, "invert");
    c = {-0.5, 0.3, 1.5};
    ClipColour(&c);
    expect_rgb(c, 0, 0.3, 1, "clip");
    ColourRGBA q = {2, -1, 0.5, 7};
    ClipRGBA(&q);
    expect_rgb({q.r, q.g, q.b}, 1, 0, 0.5, "clip rgba");
    EXPECT_EQ(q.a, 1.0);
}
