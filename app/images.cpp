// app/images.cpp - loading, the blank image, and the working images.
#include "app/images.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "app/boxcount.h"
#include "app/options.h"
#include "bitmap/resample.h"
#include "bitmap/tga.h"

BitmapPixel *image = nullptr;
unsigned char *bwimage = nullptr;
BitmapPixel *viewimage = nullptr;

void (*images_screensize)(int *width, int *height) = nullptr;

namespace {

struct FileCloser {
    void operator()(FILE *f) const { fclose(f); }
};
using File = std::unique_ptr<FILE, FileCloser>;

const BitmapPixel white = {255, 255, 255, 255};

void make_screen_copy(void)
{
    fprintf(stderr, "Creating screen version\n");
    options.windowwidth = options.imagewidth;
    options.windowheight = options.imageheight;
    options.scale = 1;

    int sw = 0, sh = 0;
    if (images_screensize) images_screensize(&sw, &sh);
    if (images_screensize) {
        // Width first, then height; both limits in integer arithmetic.
        while (options.windowwidth > (3 * sw) / 4) {
            options.windowwidth /= 2;
            options.windowheight /= 2;
            options.scale *= 2;
        }
        while (options.windowheight > (3 * sh) / 4) {
            options.windowwidth /= 2;
            options.windowheight /= 2;
            options.scale *= 2;
        }
    }
    fprintf(stderr, "   Full screen size: %d x %d\n", sw, sh);
    fprintf(stderr, "   Display size:     %d x %d\n", options.windowwidth, options.windowheight);
    fprintf(stderr, "   Scale factor:     %d\n", options.scale);

    Destroy_Bitmap(viewimage);
    viewimage = Create_Bitmap(options.windowwidth, options.windowheight);
    if (!viewimage) {
        fprintf(stderr, "   Failed to create image\n");
        CleanExit();
    }
    BiCubicScale(image, options.imagewidth, options.imageheight, viewimage,
                 options.windowwidth, options.windowheight);
    const long n = (long)options.windowwidth * options.windowheight;
    for (long i = 0; i < n; i++) {
        BitmapPixel &p = viewimage[i];
        if (options.invert) {
            p.r = 255 - p.r;
            p.g = 255 - p.g;
            p.b = 255 - p.b;
        }
        p.a = 0;
    }
    options.invert = 0;
}

}  // namespace

int LoadTGA(const char *name)
{
    if (strlen(name) >= sizeof options.filename) {
        fprintf(stderr, "File name too long (%zu characters, at most %zu): \"%.40s...\"\n",
                strlen(name), sizeof options.filename - 1, name);
        return 0;
    }
    if (!options.quiet) fprintf(stderr, "Reading file \"%s\"\n", name);

    File f(fopen(name, "rb"));
    if (!f) {
        fprintf(stderr, "Failed to open file \"%s\"\n", name);
        return 0;
    }
    TGA_Info(f.get(), &options.imagewidth, &options.imageheight, &options.imagedepth);
    if (!options.quiet)
        fprintf(stderr, "   Image dimensions: %d x %d x %d\n", options.imagewidth,
                options.imageheight, options.imagedepth);

    Destroy_Bitmap(image);
    image = Create_Bitmap(options.imagewidth, options.imageheight);
    if (!image) {
        fprintf(stderr, "   Failed to create image\n");
        return 0;
    }
    if (TGA_Read(f.get(), image, &options.imagewidth, &options.imageheight) != TGA_OK) {
        fprintf(stderr, "   Image read failed\n");
        return 0;
    }
    if (name != options.filename) snprintf(options.filename, sizeof options.filename, "%s", name);
    return 1;
}

void MakeTestImage(void)
{
    Destroy_Bitmap(image);
    options.imagewidth = 400;
    options.imageheight = 300;
    image = Create_Bitmap(400, 300);
    if (!image) {
        fprintf(stderr, "   Failed to create image - fatal\n");
        exit(-1);
    }
    Erase_Bitmap(image, 400, 300, white);
    snprintf(options.filename, sizeof options.filename, "%s", "No Image");
}

int UpdateImages(void)
{
    const size_t n = (size_t)options.imagewidth * (size_t)options.imageheight;
    unsigned char *bw = (unsigned char *)realloc(bwimage, n ? n : 1);
    if (!bw) {
        fprintf(stderr, "   Failed to create image - fatal\n");
        exit(-1);
    }
    bwimage = bw;

    bool anyblack = false;
    for (size_t i = 0; i < n; i++) {
        const BitmapPixel p = image[i];
        const int s = p.r * p.r + p.g * p.g + p.b * p.b;
        unsigned char v = s < 16384 ? 0 : 255;
        if (options.invert) v = 255 - v;
        bwimage[i] = v;
        if (v < 128) anyblack = true;
    }
    if (!anyblack) fprintf(stderr, "Warning, image contains no black\n");

    if (!options.quiet) make_screen_copy();

    if (!options.useregion) {
        options.left = 0;
        options.right = 100000;
        options.top = 100000;
        options.bottom = 0;
    }
    return BoxCount(0);
}
