// tga2ppm - decodes a TGA file with the project's reader and writes binary PPM (top row first) to standard
// output, to compare other programs' decoders with ours. Exit status: 0, the reader's code, or 10 when the file
// cannot be opened or the bitmap allocated.
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
    if (code == 0) printf("P6\n%d %d\n255\n", w, h);
    for (int i = 0; code == 0 && i < w * h; i++) {
        const BitmapPixel &p = bm[(h - 1 - i / w) * w + i % w];
        printf("%c%c%c", p.r, p.g, p.b);
    }
    Destroy_Bitmap(bm);
    return code;
}
