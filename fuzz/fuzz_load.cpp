// fuzz/fuzz_load.cpp - the quiet run's loading path on any bytes: the format
// chosen by content, libvips for PNG, TIFF, JPEG, BMP, PNM, GIF and WebP, the
// TGA row reader otherwise, thresholded by Otsu's level (the longest path),
// then once more with its rows taken as they come.
// The input is a real file (in memory) named through /proc/self/fd, as a
// file on disk would be.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "app/decode.h"
#include "app/load.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // Headers that claim more than 2^24 pixels are allocation tests, which
    // the end-to-end tests cover; skip them rather than let them reach the
    // allocator limit. TGA files (all that have no signature) first.
    if (size >= 16 && !DecodeFormatName(data, size) &&
        (size_t)(data[12] | data[13] << 8) * (data[14] | data[15] << 8) > (1u << 24))
        return 0;
    const int fd = memfd_create("fuzz.img", 0);
    if (fd < 0) return 0;
    if (size > 0 && write(fd, data, size) != (ssize_t)size) {
        close(fd);
        return 0;
    }
    const std::string name = "/proc/self/fd/" + std::to_string(fd);
    // Other formats: their size first, from a decode that stops at the header.
    int wh[2] = {0, 0}, w = 0, h = 0;
    std::string why;
    const DecodeSink probe = {[](void *ctx, int width, int height, int, RowOrder) {
                                  ((int *)ctx)[0] = width, ((int *)ctx)[1] = height;
                                  return 0;
                              }, nullptr, nullptr, wh};
    if (DecodeFormatName(data, size) && DecodeImage(name.c_str(), nullptr, 0, &probe, &why) == DECODE_NOMEMORY &&
        (long long)wh[0] * wh[1] > (1 << 24)) {
        close(fd);
        return 0;
    }
    Options o{};
    ExtraOptions x;
    x.threshold = kThresholdOtsu;
    unsigned char *bw = nullptr;
    if (LoadBlackWhite(name.c_str(), &o, &x, &bw, &w, &h, &why) == LOAD_OK) free(bw);
    // And as a quiet run that counts rows as they come takes them.
    x.threshold = 128;
    const BwRowTaker taker = {[](void *, int, int, bool, bool) { return 1; },
                              [](void *, int, const unsigned char *) {}, nullptr};
    if (LoadBlackWhite(name.c_str(), &o, &x, &bw, &w, &h, &why, nullptr, &taker) == LOAD_OK) free(bw);
    close(fd);
    return 0;
}
