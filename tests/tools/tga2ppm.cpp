// tga2ppm - decodes a TGA file with the project's reader and writes binary
// PPM (top row first) to standard output, so that other programs' decoders
// can be compared with ours. Exit status: 0, or the reader's code, or 10 when
// the file cannot be opened or the bitmap allocated.
#include <cstdio>

#include "bitmap/bitmap.h"

int main(int argc, char **argv)
{
    if (argc != 2) {
        fprintf(stderr, "usage: %s file.tga > file.ppm\n", argv[0]);
        return 10;
    }
    FILE *f = fopen(argv[1], "rb");
    if (!f) return 10;
    int w, h, d;
    TGA_Info(f, &w, &h, &d);
    BitmapPixel *bm = Create_Bitmap(w, h);
    if (!bm) {
        fclose(f);
        return 10;
    }
    int code = TGA_Read(f, bm, &w, &h);
    fclose(f);
    if (code) {
        Destroy_Bitmap(bm);
        return code;
    }
    printf("P6\n%d %d\n255\n", w, h);
    for (int y = h - 1; y >= 0; y--)
        for (int x = 0; x < w; x++) {
            const BitmapPixel p = bm[y * w + x];
            putchar(p.r);
            putchar(p.g);
            putchar(p.b);
        }
    Destroy_Bitmap(bm);
    return 0;
}
