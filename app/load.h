// app/load.h - an image file of any readable format (TGA through the
// project's reader, the others through app/decode.h) into the black/white
// image an analysis counts, or into an RGBA bitmap for the window.
//
// The name "-" is standard input; it, and a pipe or FIFO given by name, are
// read into memory first. These functions touch no globals, never print and
// never exit, so batch runs may call them from several threads. Images are
// bottom-up (row 0 at the bottom), as everywhere in the program.
#pragma once

#include <string>

#include "app/longopts.h"
#include "app/options.h"
#include "bitmap/pixels.h"

enum LoadStatus {
    LOAD_OK = 1,
    LOAD_NO_FILE = 0,    // the file cannot be opened
    LOAD_NO_MEMORY = 2,  // the image is larger than the memory to hold it
    LOAD_FAILED = 3      // the file is damaged, truncated or of no readable format
};

// What a load learnt besides the pixels. width, height and depth (bits per
// pixel) are set once the file's header has been read (has_size), also when
// the load then fails.
struct LoadInfo {
    int width = 0, height = 0, depth = 0;
    int has_size = 0;
    int otsu_level = -1;  // the level Otsu's method chose (black at or below it), else -1
    int has_black = 0;    // the black/white image holds a black pixel
};

// Where the rows of the black/white image can go instead of being kept,
// when only one pass over them is wanted.
struct BwRowTaker {
    // Once the size is known, when the rows will come in order (ascending:
    // upward from row 0, else downward from the top) and are thresholded as
    // they come (not Otsu): 1 to take them, 0 to have the image kept as
    // usual. An image turned a quarter by its orientation tag comes by
    // columns instead (columns set; ascending: from column 0).
    int (*begin)(void *ctx, int width, int height, bool ascending, bool columns);
    // Each row y (width bytes, 0 black, 255 white), or each column (height
    // bytes, bottom up), once, in that order.
    void (*row)(void *ctx, int line, const unsigned char *bw);
    void *ctx;
    // Where the next row is to be thresholded into, so that row gets it in
    // place rather than a copy; null (or no room) for a buffer of the
    // loader's own.
    unsigned char *(*room)(void *ctx) = nullptr;
};

// Reads name into a malloc'd w x h black/white image *bw (0 black, 255
// white), black by x->threshold (the fixed rule, Y < N, or Otsu's level) and
// swapped when o->invert is set. Only the black/white image and a few rows
// are held (plus the whole file when it comes through a pipe). On failure
// *bw is null, and *why says what is wrong for a file of another format than
// TGA or of none (empty for a TGA file, whose failures need no more words).
// With a taker that takes the rows, *bw stays null and only a few rows
// are held.
LoadStatus LoadBlackWhite(const char *name, const Options *o, const ExtraOptions *x, unsigned char **bw, int *w,
                          int *h, std::string *why, LoadInfo *info = nullptr, const BwRowTaker *taker = nullptr);

// The same from the size bytes at data (an upload held in memory), which
// stay the caller's.
LoadStatus LoadBlackWhiteData(const void *data, size_t size, const Options *o, const ExtraOptions *x,
                              unsigned char **bw, int *w, int *h, std::string *why, LoadInfo *info = nullptr);
// The one-line reason a quiet run gives for a file it could not read.
std::string LoadErrorText(LoadStatus status, const std::string &file, const std::string &why);

// Reads name into a new bitmap (Create_Bitmap) at *image, destroying the one
// there first; TGA files exactly as TGA_Read reads them, other formats as
// app/decode.h describes. On failure *image is null or partly filled, and
// *why as for LoadBlackWhite.
LoadStatus LoadRGBA(const char *name, BitmapPixel **image, std::string *why, LoadInfo *info);

// The black/white image of an RGBA image by the same rules (x->threshold,
// o->invert) into out (w * h bytes). Returns what LoadInfo's has_black and
// otsu_level would say: has_black, and *otsu_level (-1 unless Otsu).
int ThresholdByRule(const BitmapPixel *image, size_t n, const Options *o, const ExtraOptions *x,
                    unsigned char *out, int *otsu_level);
