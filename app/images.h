// app/images.h - the loaded image and the two images derived from it.
//
// image:     the loaded bitmap, imagewidth x imageheight, row 0 at the bottom.
// bwimage:   one byte per pixel, same indexing: 0 black, 255 white. A pixel is
//            black when r*r + g*g + b*b < 16384, or by the grey level that
//            --threshold gives (app/threshold.h).
// viewimage: the screen copy, windowwidth x windowheight, image reduced by the
//            power of two `scale` to fit three quarters of the screen; alpha
//            0. Made only when not quiet.
#pragma once

#include "app/boxcount.h"  // bwimage: the image the current analysis counts
#include "bitmap/pixels.h"

extern BitmapPixel *image;
extern BitmapPixel *viewimage;

// Asks the window system for the screen size; set by the interactive shell
// (tests may set their own). While null the screen counts as unlimited.
extern void (*images_screensize)(int *width, int *height);

// Reads an image file (TGA or any format of app/load.h; "-" is standard
// input) into image (and its size into options). 1 on success, when filename
// becomes name; 0 after writing why to standard error.
int LoadTGA(const char *name);
// The quiet run's load: the file straight into bwimage, thresholded as it is
// decoded (no RGBA image is made), then what UpdateImages does after its
// threshold: the Otsu level and the no-black warning on standard error, the
// region reset unless one was given, BoxCount(0). When the analysis can be
// counted by rows (CountByRows), the rows are counted as they are decoded
// instead, and the image is never held: the analysis is then finished and
// bwimage null. Returns 1, 2 when it has counted, or 0 after writing why to
// standard error.
int LoadBlackWhiteImage(const char *name);
// Replaces image by the blank white 400 x 300 "No Image"; exit -1 when it
// cannot be allocated.
void MakeTestImage(void);
// Resizes bwimage to image's size and fills it: 0 where a pixel is black by
// the rule of extras.threshold, else 255, swapped when options.invert is set. Returns 1 when a byte
// is black, 0 when none is (or the image is empty), -1 when bwimage cannot
// be allocated (it is then left as it was).
int ThresholdImage(void);
// Rebuilds bwimage and (not quiet) viewimage, window size and scale; resets
// the region unless one was given; builds the box test's black-pixel table;
// resets the analysis. Returns BoxCount(0).
int UpdateImages(void);
