// fuzz/fuzz_tga.cpp - the TGA reader as the program drives it: TGA_Info on an
// open file, a bitmap of exactly the reported size, then TGA_Read on the same
// stream. The input is a real file (in memory), so readers that look at the
// descriptor or its size see what they would see for a file on disk.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>

#include "bitmap/pixels.h"
#include "bitmap/tga.h"

namespace {

// Large enough for every seed and most mutations; larger headers are only
// allocation tests, which the unit tests cover.
const long long max_pixels = 1LL << 22;

FILE *open_bytes(const uint8_t *data, size_t size)
{
    const int fd = memfd_create("fuzz.tga", 0);
    if (fd < 0) return nullptr;
    if (size > 0 && write(fd, data, size) != (ssize_t)size) {
        close(fd);
        return nullptr;
    }
    lseek(fd, 0, SEEK_SET);
    FILE *f = fdopen(fd, "rb");
    if (!f) close(fd);
    return f;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FILE *f = open_bytes(data, size);
    if (!f) return 0;
    int width = -1, height = -1, depth = 0;
    TGA_Info(f, &width, &height, &depth);
    if (width < 0 || height < 0 || width > 65535 || height > 65535) __builtin_trap();
    if ((long long)width * height <= max_pixels) {
        BitmapPixel *image = Create_Bitmap(width, height);
        if (image) {
            int w = -1, h = -1;
            const int code = TGA_Read(f, image, &w, &h);
            // The sizes are stored before any check, and agree with TGA_Info.
            if (w != width || h != height || code < 0 || code > 6) __builtin_trap();
            Destroy_Bitmap(image);
        }
    }
    fclose(f);
    return 0;
}
