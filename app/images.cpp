// app/images.cpp - loading, the blank image, and the working images.
#include "app/images.h"

#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <thread>

#include "app/boxcount.h"
#include "app/hugepages.h"
#include "app/load.h"
#include "app/options.h"
#include "app/prepare.h"
#include "bitmap/resample.h"

BitmapPixel *image = nullptr;
BitmapPixel *viewimage = nullptr;

void (*images_screensize)(int *width, int *height) = nullptr;

namespace {

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

}  // namespace

namespace {

// The lines that follow a failed load: "Image read failed" and, for a file
// that is not TGA, why.
void say_failed(LoadStatus status, const std::string &why)
{
    if (status == LOAD_NO_MEMORY) {
        fprintf(stderr, "   Failed to create image\n");
        return;
    }
    fprintf(stderr, "   Image read failed\n");
    if (!why.empty()) fprintf(stderr, "   %c%s\n", toupper((unsigned char)why[0]), why.c_str() + 1);
}

bool name_fits(const char *name)
{
    if (strlen(name) < sizeof options.filename) return true;
    fprintf(stderr, "File name too long (%zu characters, at most %zu): \"%.40s...\"\n", strlen(name),
            sizeof options.filename - 1, name);
    return false;
}

void say_otsu(int level)
{
    if (level >= 0) fprintf(stderr, "Threshold by Otsu's method: grey level %d (black at or below)\n", level);
}

}  // namespace

int LoadTGA(const char *name)
{
    if (!name_fits(name)) return 0;
    if (!options.quiet) fprintf(stderr, "Reading file \"%s\"\n", name);

    std::string why;
    LoadInfo info;
    const LoadStatus status = LoadRGBA(name, &image, &why, &info);
    if (status == LOAD_NO_FILE) {
        fprintf(stderr, "Failed to open file \"%s\"\n", name);
        return 0;
    }
    options.imagewidth = info.width;
    options.imageheight = info.height;
    options.imagedepth = info.depth;
    if (!options.quiet && info.has_size)
        fprintf(stderr, "   Image dimensions: %d x %d x %d\n", options.imagewidth, options.imageheight,
                options.imagedepth);
    if (status != LOAD_OK) {
        say_failed(status, why);
        return 0;
    }
    AskHugePages(image, sizeof(BitmapPixel) * (size_t)options.imagewidth * options.imageheight);
    if (name != options.filename) snprintf(options.filename, sizeof options.filename, "%s", name);
    return 1;
}

namespace {

void whole_image_region(void)
{
    if (options.useregion) return;
    options.left = 0;
    options.right = 100000;
    options.top = 100000;
    options.bottom = 0;
}

// A quiet run that can count by rows counts them as the decoder hands them
// on, so that the image is never held: once the size is known, the analysis
// is reset as it would be after the load (twice: the load's reset and the
// run's own). With a second core the rows are counted on a thread of their
// own while the next ones are decoded.
Analysis *ready_to_count(void *, int w, int h)
{
    if (extras.crop) return nullptr;  // cropping looks at the whole image first
    Analysis *a = CurrentAnalysis();
    SetAnalysisImage(a, nullptr, w, h);
    whole_image_region();
    BoxCount(0);
    BoxCount(0);
    return a;
}

}  // namespace

int LoadBlackWhiteImage(const char *name)
{
    if (!name_fits(name)) return 0;
    if (!options.quiet) fprintf(stderr, "Reading file \"%s\"\n", name);

    unsigned char *bw;
    int w, h;
    std::string why;
    LoadInfo info;
    CountAsRead counting{ready_to_count, nullptr, std::thread::hardware_concurrency() > 1};
    const BwRowTaker taker = CountAsReadTaker(&counting);
    const LoadStatus status =
        LoadBlackWhite(name, &options, &extras, &bw, &w, &h, &why, &info, options.quiet ? &taker : nullptr);
    const int counted = CountAsReadDone(&counting, status);
    if (status == LOAD_NO_FILE) {
        fprintf(stderr, "Failed to open file \"%s\"\n", name);
        return 0;
    }
    options.imagedepth = info.depth;
    if (!options.quiet && info.has_size)
        fprintf(stderr, "   Image dimensions: %d x %d x %d\n", info.width, info.height, info.depth);
    if (status != LOAD_OK) {
        say_failed(status, why);
        return 0;
    }
    if (name != options.filename) snprintf(options.filename, sizeof options.filename, "%s", name);
    if (!counted) SetAnalysisImage(CurrentAnalysis(), bw, w, h);
    say_otsu(info.otsu_level);
    if (!info.has_black) fprintf(stderr, "Warning, image contains no black\n");
    if (counted) return 2;
    whole_image_region();
    BoxCount(0);
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

    int level;
    const int black = ThresholdByRule(image, n, &options, &extras, bw, &level);
    say_otsu(level);
    return black;
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
