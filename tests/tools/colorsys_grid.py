#!/usr/bin/python3
"""Colour conversions by Python's colorsys, hues in degrees, one case a line: "F r g b h s v" (RGB to HSV),
"L r g b h s l" (RGB to HSL), "V h s v r g b" (HSV to RGB), "S h s l r g b" (HSL to RGB)."""
import colorsys
import itertools

LEVELS = [0.0, 0.1, 0.25, 0.4, 0.5, 0.6, 0.75, 0.9, 1.0]
HUES = [0.0, 17.0, 30.0, 60.0, 90.0, 119.5, 120.0, 150.0, 180.0, 210.0, 240.0, 270.0, 300.0, 330.0, 359.5]
for a, b, c in itertools.product(LEVELS, repeat=3):
    h, s, v = colorsys.rgb_to_hsv(a, b, c)
    h2, l, s2 = colorsys.rgb_to_hls(a, b, c)
    print("F", a, b, c, h * 360.0, s, v, "\nL", a, b, c, h2 * 360.0, s2, l)
for h, s, v in itertools.product(HUES, LEVELS, LEVELS):
    print("V", h, s, v, *colorsys.hsv_to_rgb(h / 360.0, s, v), "\nS", h, s, v, *colorsys.hls_to_rgb(h / 360.0, v, s))
