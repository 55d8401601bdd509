// tga2ppm - decodes a TGA file with the project's reader and writes binary
// PPM (top row first) to standard output, so that other programs' decoders
// can be compared with ours. Exit status: 0, or the reader's code, or 10 when
// the file cannot be opened or the bitmap allocated.
#include <cstdio>

#include "bitmap/bitmap.h"

int main(int argc, char **argv)
{
    FILE *f = argc == 2 ? fopen(argv[1], "rb") : nullptr;
    if (!f) return fprintf(stderr, "usage: tga2ppm file.tga > file.ppm\n"), 10;
    int w, h, d;
    TGA_Info(f, &w, &h, &d);
    BitmapPixel *bm = Create_Bitmap(w, h);
    const int code = bm ? TGA_Read(f, bm, &w, &h) : 10;
    fclose(f);
    if (code == 0) {
        printf("P6\n%d %d\n255\n", w, h);
        for (int y = h - 1; y >= 0; y--)
            for (int x = 0; x < w; x++) printf("%c%c%c", bm[y * w + x].r, bm[y * w + x].g, bm[y * w + x].b);
    }
    Destroy_Bitmap(bm);
    return code;
}
