// app/decode.cpp - PNG, TIFF, JPEG, BMP, PNM, GIF and WebP through libvips.
//
// Files are opened for sequential access, so a loader streams rows and holds
// only a few of them (a whole image only for a rotated or transposed
// orientation). Every loader is told to fail on errors and truncation,
// rather than fill in what is missing.
#include "app/decode.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <mutex>
#include <vector>

#include <vips/vips.h>

namespace {

struct Signature {
    const char *name;
    size_t at;
    const char *bytes;
    size_t n;
};

const Signature signatures[] = {
    {"PNG", 0, "\x89PNG\r\n\x1a\n", 8},
    {"JPEG", 0, "\xff\xd8\xff", 3},
    {"GIF", 0, "GIF87a", 6},
    {"GIF", 0, "GIF89a", 6},
    {"TIFF", 0, "II*\0", 4},
    {"TIFF", 0, "MM\0*", 4},
    {"TIFF", 0, "II+\0", 4},  // BigTIFF
    {"TIFF", 0, "MM\0+", 4},
    {"BMP", 0, "BM", 2},
    {"WebP", 8, "WEBP", 4},
};

// PBM, PGM, PPM, plain or raw: "P1" to "P6" and then white space.
bool pnm(const unsigned char *h, size_t n)
{
    return n >= 3 && h[0] == 'P' && h[1] >= '1' && h[1] <= '6' && strchr(" \t\r\n#", h[2]) && h[2];
}

void quiet_log(const char *, GLogLevelFlags, const char *, void *) {}

void start_library(void)
{
    static std::once_flag once;
    std::call_once(once, [] {
        vips_init("quorl");
        vips_cache_set_max(0);  // keep no decoded images beyond their use
        // The library's warnings would go to standard error; every problem
        // that matters comes back as an error instead.
        g_log_set_handler("VIPS", (GLogLevelFlags)(G_LOG_LEVEL_WARNING | G_LOG_LEVEL_MESSAGE | G_LOG_LEVEL_INFO),
                          quiet_log, nullptr);
    });
}

struct Unref {
    void operator()(void *p) const { if (p) g_object_unref(p); }
};

// The library's error text, made into one short reason for the user.
std::string reason(const char *format)
{
    std::string text = vips_error_buffer();
    vips_error_clear();
    std::string lower = text;
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return (char)tolower(c); });
    const std::string kind = std::string("this ") + format + " file";
    for (const char *w : {"truncat", "premature end", "unexpected end", "end of file", "out of data", "short read",
                          "not enough data"})
        if (lower.find(w) != std::string::npos) return kind + " is truncated: it ends before its image data does";
    if (lower.find("unsupported") != std::string::npos || lower.find("not supported") != std::string::npos ||
        lower.find("unknown") != std::string::npos)
        return "unsupported kind of " + std::string(format) + " file (" + text.substr(0, text.find('\n')) + ")";
    const std::string first = text.substr(0, text.find('\n'));
    return kind + " is damaged and cannot be decoded" + (first.empty() ? "" : " (" + first + ")");
}

// Converts one row of the library's pixels (1 to 4 bands of 8 or 16 bits)
// into RGBA, alpha flattened onto white.
void to_rgba(const unsigned char *src, int width, int bands, bool wide, BitmapPixel *out)
{
    for (int x = 0; x < width; x++) {
        int v[4];
        for (int b = 0; b < bands; b++) {
            // 16-bit samples in the host's order: keep the high byte
            v[b] = wide ? ((const unsigned short *)src)[(size_t)x * bands + b] >> 8 : src[(size_t)x * bands + b];
        }
        int r, g, bl, a = 255;
        if (bands <= 2) {
            r = g = bl = v[0];
            if (bands == 2) a = v[1];
        } else {
            r = v[0];
            g = v[1];
            bl = v[2];
            if (bands == 4) a = v[3];
        }
        if (a != 255) {  // what a viewer shows: the pixel over white
            r = (r * a + 255 * (255 - a) + 127) / 255;
            g = (g * a + 255 * (255 - a) + 127) / 255;
            bl = (bl * a + 255 * (255 - a) + 127) / 255;
        }
        out[x] = BitmapPixel{(unsigned char)r, (unsigned char)g, (unsigned char)bl, 255};
    }
}

VipsImage *open_image(const char *name, const void *data, size_t size, VipsAccess access)
{
    VipsSource *src = name ? vips_source_new_from_file(name) : vips_source_new_from_memory(data, size);
    if (!src) return nullptr;
    VipsImage *im = vips_image_new_from_source(src, "", "access", access, "fail_on", VIPS_FAIL_ON_ERROR, nullptr);
    g_object_unref(src);
    return im;
}

}  // namespace

const char *DecodeFormatName(const unsigned char *head, size_t n)
{
    for (const Signature &s : signatures)
        if (n >= s.at + s.n && !memcmp(head + s.at, s.bytes, s.n) &&
            (strcmp(s.name, "WebP") || !memcmp(head, "RIFF", 4)))
            return s.name;
    return pnm(head, n) ? "PNM" : nullptr;
}

int DecodeImage(const char *name, const void *data, size_t size, const DecodeSink *sink, std::string *why)
{
    start_library();
    unsigned char head[16] = {0};
    size_t got = 0;
    if (name) {
        if (FILE *f = fopen(name, "rb")) {
            got = fread(head, 1, sizeof head, f);
            fclose(f);
        }
    } else {
        got = std::min(size, sizeof head);
        memcpy(head, data, got);
    }
    const char *format = DecodeFormatName(head, got);
    if (!format) format = "image";

    std::unique_ptr<VipsImage, Unref> im(open_image(name, data, size, VIPS_ACCESS_SEQUENTIAL));
    if (!im) return *why = reason(format), DECODE_FAILED;

    // Orientations 5 to 8 swap the axes: only the whole image can be turned.
    // 2 to 4 are mirror images, done here row by row.
    int orientation = vips_image_get_orientation(im.get());
    if (orientation >= 5 && orientation <= 8) {
        im.reset(open_image(name, data, size, VIPS_ACCESS_RANDOM));
        VipsImage *turned = nullptr;
        if (!im || vips_autorot(im.get(), &turned, nullptr)) return *why = reason(format), DECODE_FAILED;
        im.reset(turned);
        orientation = 1;
    }
    const bool mirror = orientation == 2 || orientation == 3, upright = orientation == 3 || orientation == 4;

    const VipsInterpretation in = vips_image_get_interpretation(im.get());
    if (in == VIPS_INTERPRETATION_CMYK || in == VIPS_INTERPRETATION_LAB || in == VIPS_INTERPRETATION_LABS ||
        in == VIPS_INTERPRETATION_XYZ) {
        VipsImage *rgb = nullptr;
        if (vips_colourspace(im.get(), &rgb, VIPS_INTERPRETATION_sRGB, nullptr))
            return *why = reason(format), DECODE_FAILED;
        im.reset(rgb);
    }
    const VipsBandFormat bf = vips_image_get_format(im.get());
    const int bands = vips_image_get_bands(im.get());
    if ((bf != VIPS_FORMAT_UCHAR && bf != VIPS_FORMAT_USHORT) || bands < 1 || bands > 4) {
        *why = "unsupported kind of " + std::string(format) + " file: " + std::to_string(bands) + " channel(s) of " +
               vips_enum_nick(VIPS_TYPE_BAND_FORMAT, bf) + " samples (expected 1 to 4 channels of 8 or 16 bits)";
        return DECODE_FAILED;
    }
    const bool wide = bf == VIPS_FORMAT_USHORT;
    const int w = vips_image_get_width(im.get()), h = vips_image_get_height(im.get());
    if (!sink->begin(sink->ctx, w, h, bands * (wide ? 16 : 8))) return DECODE_NOMEMORY;

    std::unique_ptr<VipsRegion, Unref> region(vips_region_new(im.get()));
    std::vector<BitmapPixel> row((size_t)w);
    const int strip = std::max(1, std::min(64, (1 << 20) / std::max(1, w)));
    for (int top = 0; top < h; top += strip) {
        VipsRect r = {0, top, w, std::min(strip, h - top)};
        if (vips_region_prepare(region.get(), &r)) return *why = reason(format), DECODE_FAILED;
        for (int j = top; j < r.top + r.height; j++) {
            to_rgba((const unsigned char *)VIPS_REGION_ADDR(region.get(), 0, j), w, bands, wide, row.data());
            if (mirror) std::reverse(row.begin(), row.end());
            sink->row(sink->ctx, upright ? j : h - 1 - j, row.data());
        }
    }
    return DECODE_OK;
}
