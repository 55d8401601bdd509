#!/usr/bin/python3
"""Reference colour conversions by Python's colorsys, for test_colour. One line
per case, hues in degrees: "F r g b h s v" (RGB to HSV), "L r g b h s l" (RGB to
HSL), "V h s v r g b" (HSV to RGB), "S h s l r g b" (HSL to RGB)."""
import colorsys

LEVELS = [0.0, 0.1, 0.25, 0.4, 0.5, 0.6, 0.75, 0.9, 1.0]
HUES = [0.0, 17.0, 30.0, 60.0, 90.0, 119.5, 120.0, 150.0, 180.0, 210.0, 240.0, 270.0, 300.0, 330.0, 359.5]


def row(tag, *values):
    print(tag, " ".join(repr(float(x)) for x in values))


for a in LEVELS:
    for b in LEVELS:
        for c in LEVELS:
            h, s, v = colorsys.rgb_to_hsv(a, b, c)
            row("F", a, b, c, h * 360.0, s, v)
            h, l, s = colorsys.rgb_to_hls(a, b, c)
            row("L", a, b, c, h * 360.0, s, l)
for h in HUES:
    for s in LEVELS:
        for v in LEVELS:
            row("V", h, s, v, *colorsys.hsv_to_rgb(h / 360.0, s, v))
            row("S", h, s, v, *colorsys.hls_to_rgb(h / 360.0, v, s))
