// app/images.cpp - loading, the blank image, and the working images.
#include "app/images.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "app/hugepages.h"
#include "app/options.h"
#include "bitmap/resample.h"
#include "bitmap/tga.h"

BitmapPixel *image = nullptr;
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
    if (images_screensize) {
        images_screensize(&sw, &sh);
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

// Writes dark where a pixel is black, else 255 - dark. Branch-free in 16-bit
// arithmetic so that the compiler does many pixels at a time: a black pixel
// has every channel below 128, and then the sum of squares (at most 48387)
// fits 16 bits. Returns the AND of all bytes written, whose high bit is clear
// once any is black. On x86-64 a second copy uses AVX2 where the processor
// has it, which makes this about twice as fast.
#if defined(__x86_64__) && defined(__GNUC__)
[[gnu::target_clones("avx2", "default")]]
#endif
unsigned char threshold(const BitmapPixel *__restrict px, unsigned char *__restrict out, size_t n,
                        unsigned char dark)
{
    const unsigned char light = 255 - dark;
    unsigned char all = 255;
    for (size_t i = 0; i < n; i++) {
        const uint16_t r = px[i].r, g = px[i].g, b = px[i].b;
        const uint16_t s = (uint16_t)(r * r + g * g + b * b);
        const unsigned char v = (((r | g | b) < 128) & (s < 16384)) ? dark : light;
        out[i] = v;
        all &= v;
    }
    return all;
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
    AskHugePages(image, sizeof(BitmapPixel) * (size_t)options.imagewidth * options.imageheight);
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

int ThresholdImage(void)
{
    const size_t n = (size_t)options.imagewidth * (size_t)options.imageheight;
    unsigned char *bw = (unsigned char *)realloc(bwimage, n ? n : 1);
    if (!bw) return -1;
    bwimage = bw;
    AskHugePages(bw, n);

    return threshold(image, bw, n, options.invert ? 255 : 0) < 128;
}

int UpdateImages(void)
{
    const int black = ThresholdImage();
    if (black < 0) {
        fprintf(stderr, "   Failed to create image - fatal\n");
        exit(-1);
    }
    if (!black) fprintf(stderr, "Warning, image contains no black\n");
    MakeBlackTable();  // without it the box test scans pixels: slower, same answers

    if (!options.quiet) make_screen_copy();

    if (!options.useregion) {
        options.left = 0;
        options.right = 100000;
        options.top = 100000;
        options.bottom = 0;
    }
    return BoxCount(0);
}
