// util/colour.h - colour maps and RGB/HSV/HSL/YCC conversions.
//
// All colours are real-valued records passed by value; every channel runs
// nominally from 0 to 1, hues are in degrees (0 to 360). Pure functions: no
// allocation, no output.
#pragma once

struct ColourRGB {
    double r, g, b;  // 0..1
};

struct ColourRGBA {
    double r, g, b, a;  // 0..1
};

struct ColourHSV {
    double h, s, v;  // hue in degrees 0..360, saturation and value 0..1
};

struct ColourHSL {
    double h, s, l;  // hue in degrees 0..360, saturation and lightness 0..1
};

struct ColourYCC {
    double y, cb, cr;  // luma, blue difference, red difference
};

// The colour of v on map type 1..33 over the range vmin..vmax. The range may be
// given either way round; one narrower than 1e-6 is widened by 1 on each side;
// v is clamped into it. A value exactly on a breakpoint of a piecewise-linear
// map takes the later segment. A type outside 1..33 gives white.
//    1 blue-cyan-green-yellow-red       2 blue-red            3 grey
//    4 hue circle in sixths             5 green-yellow        6 green-magenta
//    7 blue-green-red-green-blue        8 grey up and down    9 red-blue-cyan-magenta
//   10 as 1, then on to white          11 two browns         12 dark-orange-peach
//   13 green-orange-cream              14 yellow-red         15 as 1 but ending in white
//   16 blue-green-red                  17 yellow-magenta-cyan 18 blue-cyan
//   19 blue-white                      20 green-lime-sand    21 pale yellow-lilac
//   22 yellow-blue                     23 red-white-blue     24 blue-yellow-red
//   25 blue-cyan-magenta-red           26 green-yellow-green 27 black-red-white
//   28 black-green-white               29 black-blue-white   30 hue (HSV, s = v = 1)
//   31 hue in twelve bands             32 cyan-yellow-white  33 black-blue-red
ColourRGB GetColour(double v, double vmin, double vmax, int type);
// c1 when t < 0, c2 when t > 1, otherwise c1 + t (c2 - c1) per channel.
ColourRGB RampColour2(ColourRGB c1, ColourRGB c2, double t);

// Hue-based conversions. A hue outside 0..360 is brought into it by whole turns.
ColourRGB HSV2RGB(ColourHSV c);
ColourHSV RGB2HSV(ColourRGB c);  // hue 0 for greys; s = 0 when v = 0
ColourRGB HSL2RGB(ColourHSL c);
ColourHSL RGB2HSL(ColourRGB c);  // hue 0 for greys; s = 0 when l is 0 or 1

// Luma/chroma. The two directions use their own rounded coefficient sets and
// are inverse only to about 1e-3; RGB2YCC does not clamp, YCC2RGB clamps every
// channel to 0..1.
ColourYCC RGB2YCC(ColourRGB c);
ColourRGB YCC2RGB(ColourYCC c);

// A shading character for text plots, light to dark: one of " .,:;-|I*oO%#@M"
// by where v (clamped to vmin..vmax) falls in the range; v at vmax gives 0 (no
// character). The range is not reordered; an empty range gives ' '.
int AsciiColour(double v, double vmin, double vmax);

// sqrt(r^2 + g^2 + b^2) / sqrt(3): 0 for black, 1 for white.
double AbsColour(ColourRGB c);
// 1 when every channel differs by at most 1e-6, else 0.
int EqualColour(ColourRGB c1, ColourRGB c2);
// Each channel becomes 1 - channel.
void InvertColour(ColourRGB *c);
// Each channel clamped to 0..1.
void ClipColour(ColourRGB *c);
void ClipRGBA(ColourRGBA *c);
