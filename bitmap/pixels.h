// bitmap/pixels.h - the RGBA bitmap and elementary pixel operations.
//
// A bitmap is a bare array of nx*ny BitmapPixel with no header; the width and
// height travel beside it as arguments. Pixel (x, y) is bm[y*nx + x], row 0 is
// the bottom row (the natural order of a bottom-left TGA and of glDrawPixels).
// The caller owns the array between Create_Bitmap and Destroy_Bitmap. Apart
// from Draw_Pixel, Get_Pixel and Draw_Line nothing checks coordinates, and
// nothing checks that nx, ny match the allocation.
#pragma once

struct BitmapPixel {
    unsigned char r, g, b, a;  // memory order r,g,b,a; a = 255 is opaque
};

// New array of nx*ny pixels, contents not cleared. Null when nx or ny is
// negative, when nx*ny does not fit a 32-bit signed int, or when the heap is
// exhausted. A zero-sized bitmap is a valid (non-null) allocation.
BitmapPixel *Create_Bitmap(int nx, int ny);
// Releases an array made by Create_Bitmap; null is allowed.
void Destroy_Bitmap(BitmapPixel *bm);
// Sets every pixel to colour; nothing when nx < 1 or ny < 1.
void Erase_Bitmap(BitmapPixel *bm, int nx, int ny, BitmapPixel colour);
// 1 when (x, y) was inside and written, 0 when outside.
int Draw_Pixel(BitmapPixel *bm, int nx, int ny, int x, int y, BitmapPixel colour);
// The stored pixel, or opaque black (0,0,0,255) outside.
BitmapPixel Get_Pixel(const BitmapPixel *bm, int nx, int ny, int x, int y);
// Walks from (x1,y1) towards (x2,y2) in half-pixel steps, truncating each
// point toward zero: floor(2*len)+1 points, so the end pixel is set only when
// 2*len is whole. Points outside are skipped one by one.
void Draw_Line(BitmapPixel *bm, int nx, int ny, int x1, int y1, int x2, int y2,
               BitmapPixel colour);
// 1 when all four channels (alpha included) are equal.
int Same_BitmapPixel(BitmapPixel p1, BitmapPixel p2);
// Each channel, alpha included, times factor; clamped to 0..255, truncated.
BitmapPixel Scale_Pixel(BitmapPixel p, double factor);
// direction 0: top to bottom; 1: left to right; anything else: no change.
void Flip_Bitmap(BitmapPixel *bm, int nx, int ny, int direction);
// One YUV sample (chroma centred on 128) to RGB, clamped; alpha is 0.
BitmapPixel YUV_to_Bitmap(int y, int u, int v);
