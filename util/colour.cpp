// util/colour.cpp - colour maps and RGB/HSV/HSL/YCC conversions.
#include "util/colour.h"

#include <cmath>

namespace {

// ---- SECTION map tables -------------------------------------------------------

// One corner of a piecewise-linear map: the colour at position p (0..1).
struct Stop {
    double p, r, g, b;
};

// A piecewise-linear map: n stops, the first at 0 and the last at 1.
struct Ramp {
    int n;
    Stop s[7];
};

constexpr Stop rgb255(double p, double r, double g, double b)
{
    return {p, r / 255.0, g / 255.0, b / 255.0};
}

constexpr double third = 1.0 / 3.0, two_thirds = 2.0 / 3.0;

// Indexed by map type; types 30 and 31 are computed, not tabled (n = 0).
constexpr Ramp ramps[34] = {
    {0, {}},
    {5, {{0, 0, 0, 1}, {0.25, 0, 1, 1}, {0.5, 0, 1, 0}, {0.75, 1, 1, 0}, {1, 1, 0, 0}}},
    {2, {{0, 0, 0, 1}, {1, 1, 0, 0}}},
    {2, {{0, 0, 0, 0}, {1, 1, 1, 1}}},
    {7, {{0, 1, 0, 0}, {1.0 / 6, 1, 1, 0}, {third, 0, 1, 0}, {0.5, 0, 1, 1},
         {two_thirds, 0, 0, 1}, {5.0 / 6, 1, 0, 1}, {1, 1, 0, 0}}},
    {2, {{0, 0, 1, 0}, {1, 1, 1, 0}}},
    {2, {{0, 0, 1, 0}, {1, 1, 0, 1}}},
    {5, {{0, 0, 0, 1}, {0.25, 0, 1, 0}, {0.5, 1, 0, 0}, {0.75, 0, 1, 0}, {1, 0, 0, 1}}},
    {3, {{0, 0, 0, 0}, {0.5, 1, 1, 1}, {1, 0, 0, 0}}},
    {4, {{0, 1, 0, 0}, {third, 0, 0, 1}, {two_thirds, 0, 1, 1}, {1, 1, 0, 1}}},
    {6, {{0, 0, 0, 1}, {0.2, 0, 1, 1}, {0.4, 0, 1, 0}, {0.6, 1, 1, 0}, {0.8, 1, 0, 0},
         {1, 1, 1, 1}}},
    {2, {rgb255(0, 200, 60, 0), rgb255(1, 250, 160, 110)}},
    {3, {rgb255(0, 55, 55, 45), rgb255(0.4, 235, 90, 30), rgb255(1, 250, 160, 110)}},
    {3, {rgb255(0, 0, 255, 0), rgb255(0.3, 255, 150, 0), rgb255(1, 255, 250, 240)}},
    {2, {{0, 1, 1, 0}, {1, 1, 0, 0}}},
    {5, {{0, 0, 0, 1}, {0.25, 0, 1, 1}, {0.5, 0, 1, 0}, {0.75, 1, 1, 0}, {1, 1, 1, 1}}},
    {3, {{0, 0, 0, 1}, {0.5, 0, 1, 0}, {1, 1, 0, 0}}},
    {3, {{0, 1, 1, 0}, {0.5, 1, 0, 1}, {1, 0, 1, 1}}},
    {2, {{0, 0, 0, 1}, {1, 0, 1, 1}}},
    {2, {{0, 0, 0, 1}, {1, 1, 1, 1}}},
    {3, {rgb255(0, 0, 160, 0), rgb255(0.3, 180, 220, 0), rgb255(1, 250, 220, 170)}},
    {2, {rgb255(0, 255, 255, 200), rgb255(1, 150, 150, 255)}},
    {2, {{0, 1, 1, 0}, {1, 0, 0, 1}}},
    {3, {{0, 1, 0, 0}, {0.5, 1, 1, 1}, {1, 0, 0, 1}}},
    {3, {{0, 0, 0, 1}, {0.5, 1, 1, 0}, {1, 1, 0, 0}}},
    {4, {{0, 0, 0, 1}, {third, 0, 1, 1}, {two_thirds, 1, 0, 1}, {1, 1, 0, 0}}},
    {3, {{0, 0, 1, 0}, {0.5, 1, 1, 0}, {1, 0, 1, 0}}},
    {3, {{0, 0, 0, 0}, {0.5, 1, 0, 0}, {1, 1, 1, 1}}},
    {3, {{0, 0, 0, 0}, {0.5, 0, 1, 0}, {1, 1, 1, 1}}},
    {3, {{0, 0, 0, 0}, {0.5, 0, 0, 1}, {1, 1, 1, 1}}},
    {0, {}},
    {0, {}},
    {3, {{0, 0, 1, 1}, {0.5, 1, 1, 0}, {1, 1, 1, 1}}},
    {3, {{0, 0, 0, 0}, {0.5, 0, 0, 1}, {1, 1, 0, 0}}},
};

// ---- SECTION helpers ----------------------------------------------------------

// Exact at both ends (t = 0 gives a, t = 1 gives b), and constant when a == b.
double lerp(double a, double b, double t)
{
    return a == b ? a : (1.0 - t) * a + t * b;
}

double clamp01(double x)
{
    return x < 0.0 ? 0.0 : (x > 1.0 ? 1.0 : x);
}

ColourRGB ramp_colour(const Ramp &m, double f)
{
    int k = 0;  // a value on a breakpoint takes the segment that starts there
    while (k + 2 < m.n && f >= m.s[k + 1].p) k++;
    const Stop &a = m.s[k], &b = m.s[k + 1];
    const double t = (f - a.p) / (b.p - a.p);
    return {lerp(a.r, b.r, t), lerp(a.g, b.g, t), lerp(a.b, b.b, t)};
}

// The twelve bands of map 31: each hue sixth is split at 0.65 of its rising or
// falling channel.
ColourRGB band_colour(double f)
{
    double x = 12.0 * f;
    if (!(x >= 0.0)) x = 0.0;  // NaN as well
    if (x > 12.0) x = 12.0;
    const int k = (int)x;
    const double t = x - k;
    switch (k) {
    case 0: return {1, 0.65 * t, 0};
    case 1: return {1, 0.65 + 0.35 * t, 0};
    case 2: return {1 - 0.35 * t, 1, 0};
    case 3: return {0.65 - 0.65 * t, 1, 0};
    case 4: return {0, 1, 0.65 * t};
    case 5: return {0, 1, 0.65 + 0.35 * t};
    case 6: return {0, 1 - 0.35 * t, 1};
    case 7: return {0, 0.65 - 0.65 * t, 1};
    case 8: return {0.65 * t, 0, 1};
    case 9: return {0.65 + 0.35 * t, 0, 1};
    case 10: return {1, 0, 1 - 0.35 * t};
    case 11: return {1, 0, 0.65 - 0.65 * t};
    default: return {1, 0, 0};  // f = 1
    }
}

// The red, green and blue weights of hue h, each capped at 1. Hues outside
// 0..360 are brought in by whole turns; 360 itself stays (and gives red).
ColourRGB hue_weights(double h)
{
    // Whole turns off by fmod, which is exact and cannot stall on huge values;
    // a whole number of turns above 360 lands on 360, as turning down one at a time would.
    if (h > 360.0) {
        h = fmod(h, 360.0);
        if (h == 0.0) h = 360.0;
    } else if (h < 0.0) {
        h = fmod(h, 360.0);
        if (h < 0.0) h += 360.0;
    }
    ColourRGB w;
    if (h < 120.0) {
        w = {(120.0 - h) / 60.0, h / 60.0, 0.0};
    } else if (h < 240.0) {
        w = {0.0, (240.0 - h) / 60.0, (h - 120.0) / 60.0};
    } else {
        w = {(h - 240.0) / 60.0, 0.0, (360.0 - h) / 60.0};
    }
    if (w.r > 1.0) w.r = 1.0;
    if (w.g > 1.0) w.g = 1.0;
    if (w.b > 1.0) w.b = 1.0;
    return w;
}

// The hue in degrees shared by RGB2HSV and RGB2HSL. The equality tests decide
// ties: for r = g > b the green rule applies, for r = b > g the red one.
double rgb_hue(ColourRGB c, double max, double delta)
{
    if (delta == 0.0) return 0.0;
    double h = 0.0;
    if (max == c.r && max != c.g) h = (c.g - c.b) / delta;
    if (max == c.g && max != c.b) h += 2.0 + (c.b - c.r) / delta;
    if (max == c.b && max != c.r) h += 4.0 + (c.r - c.g) / delta;
    h *= 60.0;
    if (h < 0.0) h += 360.0;
    return h;
}

double max3(double a, double b, double c)
{
    return fmax(a, fmax(b, c));
}

double min3(double a, double b, double c)
{
    return fmin(a, fmin(b, c));
}

}  // namespace

// ---- SECTION colour maps ------------------------------------------------------

ColourRGB GetColour(double v, double vmin, double vmax, int type)
{
    double lo = vmin < vmax ? vmin : vmax, hi = vmin < vmax ? vmax : vmin;
    if (hi - lo < 1e-6) {
        lo -= 1.0;
        hi += 1.0;
    }
    if (!(v >= lo)) v = lo;  // NaN as well
    if (v > hi) v = hi;
    const double f = (v - lo) / (hi - lo);

    if (type < 1 || type > 33) return {1.0, 1.0, 1.0};
    if (type == 30) return hue_weights(360.0 * f);
    if (type == 31) return band_colour(f);
    return ramp_colour(ramps[type], f);
}

ColourRGB RampColour2(ColourRGB c1, ColourRGB c2, double t)
{
    if (t < 0.0) return c1;
    if (t > 1.0) return c2;
    return {c1.r + t * (c2.r - c1.r), c1.g + t * (c2.g - c1.g), c1.b + t * (c2.b - c1.b)};
}

// ---- SECTION conversions ------------------------------------------------------

ColourRGB HSV2RGB(ColourHSV c)
{
    const ColourRGB w = hue_weights(c.h);
    const double base = 1.0 - c.s;
    return {c.v * (base + c.s * w.r), c.v * (base + c.s * w.g), c.v * (base + c.s * w.b)};
}

ColourHSV RGB2HSV(ColourRGB c)
{
    const double max = max3(c.r, c.g, c.b), min = min3(c.r, c.g, c.b);
    const double delta = max - min;
    return {rgb_hue(c, max, delta), max > 0.0 ? delta / max : 0.0, max};
}

ColourRGB HSL2RGB(ColourHSL c)
{
    const ColourRGB w = hue_weights(c.h);
    const double wt[3] = {w.r, w.g, w.b};
    double out[3];
    for (int i = 0; i < 3; i++) {
        const double c2 = 2.0 * c.s * wt[i] + (1.0 - c.s);
        out[i] = c.l < 0.5 ? c.l * c2 : (1.0 - c.l) * c2 + 2.0 * c.l - 1.0;
    }
    return {out[0], out[1], out[2]};
}

ColourHSL RGB2HSL(ColourRGB c)
{
    const double max = max3(c.r, c.g, c.b), min = min3(c.r, c.g, c.b);
    const double delta = max - min, l = (max + min) / 2.0;
    double s = 0.0;
    if (l > 0.0 && l < 1.0) s = delta / (l < 0.5 ? 2.0 * l : 2.0 - 2.0 * l);
    return {rgb_hue(c, max, delta), s, l};
}

ColourYCC RGB2YCC(ColourRGB c)
{
    return {0.2989 * c.r + 0.5866 * c.g + 0.1145 * c.b,
            -0.1687 * c.r - 0.3312 * c.g + 0.5 * c.b,
            0.5 * c.r - 0.4183 * c.g - 0.0816 * c.b};
}

ColourRGB YCC2RGB(ColourYCC c)
{
    return {clamp01(c.y + 1.4022 * c.cr), clamp01(c.y - 0.3456 * c.cb - 0.7145 * c.cr),
            clamp01(c.y + 1.771 * c.cb)};
}

// ---- SECTION small helpers ----------------------------------------------------

int AsciiColour(double v, double vmin, double vmax)
{
    static constexpr char shades[16] = {' ', '.', ',', ':', ';', '-', '|', 'I',
                                        '*', 'o', 'O', '%', '#', '@', 'M', 0};
    if (v < vmin) v = vmin;
    if (v > vmax) v = vmax;
    const double x = (v - vmin) * 15.0 / (vmax - vmin);
    // An empty or reversed range gives NaN or a value off the table: stay inside it.
    if (!(x >= 0.0)) return shades[0];
    if (x >= 15.0) return shades[15];
    return shades[(int)x];
}

double AbsColour(ColourRGB c)
{
    return sqrt(c.r * c.r + c.g * c.g + c.b * c.b) / 1.7320508075688772;
}

int EqualColour(ColourRGB c1, ColourRGB c2)
{
    return fabs(c1.r - c2.r) <= 1e-6 && fabs(c1.g - c2.g) <= 1e-6 && fabs(c1.b - c2.b) <= 1e-6;
}

void InvertColour(ColourRGB *c)
{
    c->r = 1.0 - c->r;
    c->g = 1.0 - c->g;
    c->b = 1.0 - c->b;
}

void ClipColour(ColourRGB *c)
{
    c->r = clamp01(c->r);
    c->g = clamp01(c->g);
    c->b = clamp01(c->b);
}

void ClipRGBA(ColourRGBA *c)
{
    c->r = clamp01(c->r);
    c->g = clamp01(c->g);
    c->b = clamp01(c->b);
    c->a = clamp01(c->a);
}
