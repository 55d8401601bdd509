// bench/bench_decode.cpp - helper of scripts/bench_quiet.sh: the least time
// any quiet run of FILE needs, decoding alone.
//
//   bench_decode FILE
//
// TGA files: the project's reader handing on every row to a sink that does
// nothing (TGA_ReadRows). GIF files: the program's giflib reader, each line
// looked up in the colour table and handed to a sink that does nothing
// (giflib has no way to read a line without a table look-up). Other formats: libvips alone, as the program opens
// them (sequential access, failing on errors), every row of the image asked
// for in strips of 64 rows and nothing done with it: no conversion to RGBA,
// no threshold, no table, no analysis.
#include <cstdio>
#include <cstring>

#include <vips/vips.h>

#include "app/gif.h"
#include "bitmap/tga.h"

namespace {

void ignore(void *, int, const BitmapPixel *) {}
int accept(void *, int, int, int, RowOrder) { return 1; }

}  // namespace

int main(int argc, char **argv)
{
    if (argc != 2) {
        fprintf(stderr, "usage: %s FILE\n", argv[0]);
        return 2;
    }
    const size_t n = strlen(argv[1]);
    if (n > 4 && !strcmp(argv[1] + n - 4, ".tga")) {
        FILE *f = fopen(argv[1], "rb");
        int w, h;
        const int code = f ? TGA_ReadRows(f, &w, &h, ignore, nullptr) : -1;
        return code == TGA_OK ? 0 : 1;
    }
    if (n > 4 && !strcmp(argv[1] + n - 4, ".gif")) {
        const DecodeSink sink = {accept, ignore, ignore, nullptr};
        std::string why;
        return DecodeGif(argv[1], nullptr, 0, &sink, &why) == DECODE_OK ? 0 : 1;
    }
    if (VIPS_INIT(argv[0])) return 1;
    vips_cache_set_max(0);
    VipsImage *im = vips_image_new_from_file(argv[1], "access", VIPS_ACCESS_SEQUENTIAL, "fail_on",
                                             VIPS_FAIL_ON_ERROR, nullptr);
    if (!im) return 1;
    VipsRegion *region = vips_region_new(im);
    for (int top = 0; top < im->Ysize; top += 64) {
        VipsRect r = {0, top, im->Xsize, im->Ysize - top < 64 ? im->Ysize - top : 64};
        if (vips_region_prepare(region, &r)) return 1;
    }
    g_object_unref(region);
    g_object_unref(im);
    return 0;
}
