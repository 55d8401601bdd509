// imagestats - reads a TGA image, writes it as TIFF and EPS, and prints its
// colour statistics. A small program built on the two Quorl libraries:
// bitmap (TGA reader, image writer) and util (colour conversions).
//
//   imagestats image.tga [output-base]
//
// writes output-base.tiff and output-base.eps (default: the image name
// without ".tga") and prints the size, the share of black pixels (as the
// box counter sees them), the mean colour, luma, saturation and lightness.
#include <cstdio>
#include <cstring>
#include <string>
#include <strings.h>

#include "bitmap/bitmap.h"
#include "util/colour.h"

namespace {

// Writes bm to name in the writer's format code; 1 on success.
int write_file(const std::string &name, const BitmapPixel *bm, int nx, int ny, int format)
{
    FILE *f = fopen(name.c_str(), "wb");
    if (!f) return 0;
    const int ok = Write_Bitmap(f, bm, nx, ny, format);
    return fclose(f) == 0 && ok;
}

}  // namespace

int main(int argc, char **argv)
{
    if (argc < 2 || argc > 3) {
        fprintf(stderr, "Usage: %s image.tga [output-base]\n", argv[0]);
        return 2;
    }
    const char *name = argv[1];
    std::string base = argc == 3 ? argv[2] : name;
    if (argc == 2 && base.size() > 4 && strcasecmp(base.c_str() + base.size() - 4, ".tga") == 0)
        base.resize(base.size() - 4);

    FILE *f = fopen(name, "rb");
    if (!f) {
        fprintf(stderr, "%s: cannot open %s\n", argv[0], name);
        return 1;
    }
    int nx = 0, ny = 0, depth = 0;
    TGA_Info(f, &nx, &ny, &depth);
    BitmapPixel *bm = Create_Bitmap(nx, ny);
    if (!bm) {
        fprintf(stderr, "%s: no memory for %d x %d pixels of %s\n", argv[0], nx, ny, name);
        fclose(f);
        return 1;
    }
    const int status = TGA_Read(f, bm, &nx, &ny);
    fclose(f);
    if (status != TGA_OK) {
        fprintf(stderr, "%s: cannot read %s (TGA_Read code %d)\n", argv[0], name, status);
        Destroy_Bitmap(bm);
        return 1;
    }

    // The same test for black as the box counter: closer than 128 to black.
    long black = 0;
    double r = 0, g = 0, b = 0, luma = 0, saturation = 0, lightness = 0;
    const long n = (long)nx * ny;
    for (long i = 0; i < n; i++) {
        const BitmapPixel p = bm[i];
        if (p.r * p.r + p.g * p.g + p.b * p.b < 16384) black++;
        const ColourRGB c = {p.r / 255.0, p.g / 255.0, p.b / 255.0};
        r += c.r;
        g += c.g;
        b += c.b;
        luma += RGB2YCC(c).y;
        saturation += RGB2HSV(c).s;
        lightness += RGB2HSL(c).l;
    }
    const double scale = n ? 1.0 / n : 0.0;
    printf("image:      %s, %d x %d, %d bits per pixel\n", name, nx, ny, depth);
    printf("black:      %ld pixels (%.1f%%)\n", black, 100.0 * black * scale);
    printf("mean RGB:   %.3f %.3f %.3f\n", r * scale, g * scale, b * scale);
    printf("luma:       %.3f\n", luma * scale);
    printf("saturation: %.3f\n", saturation * scale);
    printf("lightness:  %.3f\n", lightness * scale);

    // TIFF and EPS store the top row first: a negative code writes the
    // bottom-up bitmap upright.
    const std::string tiff = base + ".tiff", eps = base + ".eps";
    const int ok = write_file(tiff, bm, nx, ny, -5) && write_file(eps, bm, nx, ny, -6);
    Destroy_Bitmap(bm);
    if (!ok) {
        fprintf(stderr, "%s: cannot write %s or %s\n", argv[0], tiff.c_str(), eps.c_str());
        return 1;
    }
    printf("written:    %s, %s\n", tiff.c_str(), eps.c_str());
    return 0;
}
