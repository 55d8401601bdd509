// Colour maps at their ends and breakpoints (and linear between them), the
// range rules of GetColour, hue conversions against Python's colorsys, the two
// YCC coefficient sets, and the small helpers.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

#include "util/colour.h"

namespace {

void expect_rgb(ColourRGB got, double r, double g, double b, const std::string &id, double tol = 1e-12)
{
    EXPECT_NEAR(got.r, r, tol) << id;
    EXPECT_NEAR(got.g, g, tol) << id;
    EXPECT_NEAR(got.b, b, tol) << id;
}

constexpr double K(double x) { return x / 255.0; }
constexpr double T = 1.0 / 3, TT = 2.0 / 3, S = 1.0 / 6;

// A handful of tabulated maps (the grey map 3 and map 8 also serve the range
// rules; map 12 has an uneven breakpoint; 33 is the last) and the two computed
// ones, 30 and 31, at f = 0, their breakpoints and 1, in order.
const struct { int type; double f, r, g, b; } k_stops[] = {
    {1, 0, 0, 0, 1}, {1, .25, 0, 1, 1}, {1, .5, 0, 1, 0}, {1, .75, 1, 1, 0}, {1, 1, 1, 0, 0},
    {3, 0, 0, 0, 0}, {3, 1, 1, 1, 1}, {8, 0, 0, 0, 0}, {8, .5, 1, 1, 1}, {8, 1, 0, 0, 0},
    {12, 0, K(55), K(55), K(45)}, {12, .4, K(235), K(90), K(30)}, {12, 1, K(250), K(160), K(110)},
    {30, 0, 1, 0, 0}, {30, S, 1, 1, 0}, {30, T, 0, 1, 0}, {30, .5, 0, 1, 1}, {30, TT, 0, 0, 1}, {30, 5 * S, 1, 0, 1},
    {30, 1, 1, 0, 0},
    {31, 0, 1, 0, 0}, {31, 1. / 12, 1, .65, 0}, {31, 2. / 12, 1, 1, 0}, {31, 3. / 12, .65, 1, 0}, {31, 4. / 12, 0, 1, 0},
    {31, 5. / 12, 0, 1, .65}, {31, 6. / 12, 0, 1, 1}, {31, 7. / 12, 0, .65, 1}, {31, 8. / 12, 0, 0, 1}, {31, 9. / 12, .65, 0, 1},
    {31, 10. / 12, 1, 0, 1}, {31, 11. / 12, 1, 0, .65}, {31, 1, 1, 0, 0},
    {33, 0, 0, 0, 0}, {33, .5, 0, 0, 1}, {33, 1, 1, 0, 0},
};

}  // namespace

TEST(colour_maps, StopsAndLinearBetween)
{
    const int n = (int)(sizeof k_stops / sizeof k_stops[0]);
    for (int i = 0; i < n; i++) {
        const auto &c = k_stops[i];
        const std::string id = "map-" + std::to_string(c.type) + " f=" + std::to_string(c.f);
        expect_rgb(GetColour(c.f, 0, 1, c.type), c.r, c.g, c.b, id);
        // Halfway to the next stop the colour is the mean of the two.
        if (i + 1 < n && k_stops[i + 1].type == c.type) {
            const auto &d = k_stops[i + 1];
            expect_rgb(GetColour((c.f + d.f) / 2, 0, 1, c.type), (c.r + d.r) / 2, (c.g + d.g) / 2,
                       (c.b + d.b) / 2, id + " mid", 1e-9);
        }
    }
}

TEST(colour_maps, RangeRules)
{
    expect_rgb(GetColour(5, 5, 5, 3), 0.5, 0.5, 0.5, "range-1.1 empty range widened to 4..6");
    expect_rgb(GetColour(0.3, 1, 0, 1), 0, 1, 0.8, "range-1.2 reversed range");
    expect_rgb(GetColour(-7, 0, 1, 3), 0, 0, 0, "range-1.3 below clamps to 0");
    expect_rgb(GetColour(99, 10, 20, 3), 1, 1, 1, "range-1.4 above clamps to the top");
    expect_rgb(GetColour(15, 10, 20, 8), 1, 1, 1, "range-1.5 offset range");
    expect_rgb(GetColour(NAN, 0, 1, 3), 0, 0, 0, "range-1.6 NaN takes the low end");
    for (int t : {0, 34, -1}) expect_rgb(GetColour(0.3, 0, 1, t), 1, 1, 1, "range-2 type " + std::to_string(t));
}

// ---- SECTION conversions ------------------------------------------------------

TEST(colour_convert, AgainstPythonColorsys)
{
    if (access("/usr/bin/python3", X_OK) != 0) GTEST_SKIP() << "/usr/bin/python3 is not installed";
    FILE *p = popen("/usr/bin/python3 " QUORL_COLORSYS_GRID, "r");
    ASSERT_TRUE(p);
    char tag;
    double a, b, c, w[3];
    int rows = 0;
    while (fscanf(p, " %c %lf %lf %lf %lf %lf %lf", &tag, &a, &b, &c, &w[0], &w[1], &w[2]) == 7) {
        double got[3];
        if (tag == 'F') {
            const ColourHSV h = RGB2HSV({a, b, c});
            got[0] = h.h, got[1] = h.s, got[2] = h.v;
        } else if (tag == 'L') {
            const ColourHSL h = RGB2HSL({a, b, c});
            got[0] = h.h, got[1] = h.s, got[2] = h.l;
        } else {
            const ColourRGB q = tag == 'V' ? HSV2RGB({a, b, c}) : HSL2RGB({a, b, c});
            got[0] = q.r, got[1] = q.g, got[2] = q.b;
        }
        for (int k = 0; k < 3; k++) {
            double d = fabs(got[k] - w[k]);
            if (k == 0 && (tag == 'F' || tag == 'L')) d = fmin(d, fabs(d - 360));  // 0 and 360 are one hue
            EXPECT_LT(d, 1e-9) << tag << " " << a << " " << b << " " << c << " channel " << k;
        }
        rows++;
    }
    EXPECT_EQ(pclose(p), 0);
    EXPECT_GT(rows, 3000);
}

TEST(colour_convert, HueTurns)
{
    expect_rgb(HSV2RGB({-120, 1, 1}), 0, 0, 1, "hue-1.1 negative turns");
    expect_rgb(HSV2RGB({480, 1, 1}), 0, 1, 0, "hue-1.3 one turn too many");
    expect_rgb(HSL2RGB({-300, 1, 0.5}), 1, 1, 0, "hue-1.4");
    expect_rgb(HSV2RGB({1e300, 0, 0.5}), 0.5, 0.5, 0.5, "hue-1.5 a huge hue returns");
    // Channel ties (r = g > b takes the green rule) are among the colorsys grid's rows.
    EXPECT_EQ(RGB2HSV({1, 1, 0}).h, 60.0);
    EXPECT_EQ(RGB2HSL({0.4, 0.4, 0.4}).s, 0.0);
}

TEST(colour_convert, YCCCoefficientSets)
{
    // Primaries give the columns of the forward set; white shows it is not exactly neutral.
    const ColourYCC y[4] = {RGB2YCC({1, 0, 0}), RGB2YCC({0, 1, 0}), RGB2YCC({0, 0, 1}), RGB2YCC({1, 1, 1})};
    const double want[4][3] = {
        {0.2989, -0.1687, 0.5}, {0.5866, -0.3312, -0.4183}, {0.1145, 0.5, -0.0816}, {1, 0.0001, 0.0001}};
    for (int i = 0; i < 4; i++) expect_rgb({y[i].y, y[i].cb, y[i].cr}, want[i][0], want[i][1], want[i][2], "ycc-1");
    // Chroma steps give the inverse set; results outside 0..1 clamp.
    expect_rgb(YCC2RGB({0.5, 0, 0.1}), 0.64022, 0.42855, 0.5, "ycc-2.1");
    expect_rgb(YCC2RGB({0.5, 0.1, 0}), 0.5, 0.46544, 0.6771, "ycc-2.2");
    expect_rgb(YCC2RGB({1, 0.5, 0.5}), 1, 0.46995, 1, "ycc-2.3 clamped");
    expect_rgb(YCC2RGB({-0.2, 0, 0}), 0, 0, 0, "ycc-2.4 clamped");
}

// ---- SECTION helpers ----------------------------------------------------------

TEST(colour_helpers, AsciiRampMeasureClip)
{
    const char shades[] = " .,:;-|I*oO%#@M";
    for (int k = 0; k < 15; k++) EXPECT_EQ(AsciiColour((k + 0.5) / 15, 0, 1), shades[k]) << k;
    EXPECT_EQ(AsciiColour(-5, 0, 1), ' ');
    EXPECT_EQ(AsciiColour(1, 0, 1), 0);  // vmax has no character
    EXPECT_EQ(AsciiColour(3, 3, 3), ' ');  // empty range
    EXPECT_NE(strchr(shades, AsciiColour(0.5, 1, 0)), nullptr);  // reversed range stays in the table

    const ColourRGB a = {0.2, 0.4, 0.6}, b = {1, 0, 0.5};
    expect_rgb(RampColour2(a, b, 1.5), 1, 0, 0.5, "ramp-1.1");
    expect_rgb(RampColour2(a, b, -0.1), 0.2, 0.4, 0.6, "ramp-1.2");
    expect_rgb(RampColour2(a, b, 0.5), 0.6, 0.2, 0.55, "ramp-1.3");
    EXPECT_DOUBLE_EQ(AbsColour({1, 1, 1}), 1.0);
    EXPECT_NEAR(AbsColour({1, 0, 0}), 1 / sqrt(3.0), 1e-15);
    EXPECT_EQ(EqualColour(a, {0.2 + 0.9e-6, 0.4, 0.6 - 0.9e-6}), 1);
    EXPECT_EQ(EqualColour(a, {0.2, 0.4 + 1.1e-6, 0.6}), 0);

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
