// app/decode.cpp - PNG, TIFF, JPEG, BMP, PNM and WebP through libvips; GIF
// through app/gif.h.
//
// Files are opened for sequential access, so a loader streams rows and holds
// only a few of them; an image that its orientation tag turns a quarter is
// handed on column by column, each stored row becoming a column. Every loader is told to fail on errors and truncation,
// rather than fill in what is missing.
//
// The library is loaded with dlopen the first time a file needs it: linked
// in, it and the hundred libraries it brings would cost every run, TGA
// files and the window included, some 15 MB of memory and start-up time.
#include "app/decode.h"

#include "app/gif.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <mutex>
#include <vector>

#include <dlfcn.h>
#ifdef __x86_64__
#include <immintrin.h>
#endif
#include <vips/vips.h>

namespace {

// The library's functions this file calls, found by name after dlopen.
struct Vips {
    decltype(&::vips_init) init;
    decltype(&::vips_cache_set_max) cache_set_max;
    decltype(&::g_log_set_handler) log_set_handler;
    decltype(&::g_object_unref) unref;
    decltype(&::vips_error_buffer) error_buffer;
    decltype(&::vips_error_clear) error_clear;
    decltype(&::vips_source_new_from_file) source_from_file;
    decltype(&::vips_source_new_from_memory) source_from_memory;
    decltype(&::vips_image_new_from_source) image_from_source;
    decltype(&::vips_image_get_orientation) orientation;
    decltype(&::vips_colourspace) colourspace;
    decltype(&::vips_region_new) region_new;
    decltype(&::vips_region_prepare) region_prepare;
};
Vips vips;
std::string load_error;  // why the library could not be loaded, else empty

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

template <class F> bool find(void *lib, const char *name, F *f)
{
    *f = (F)dlsym(lib, name);
    return *f != nullptr;
}

// Loads and starts the library once. False (load_error says why) when it
// is not installed.
bool start_library(void)
{
    static std::once_flag once;
    std::call_once(once, [] {
        void *lib = dlopen(QUORL_VIPS_SONAME, RTLD_NOW | RTLD_LOCAL);
        if (!lib || !find(lib, "vips_init", &vips.init) || !find(lib, "vips_cache_set_max", &vips.cache_set_max) ||
            !find(lib, "g_log_set_handler", &vips.log_set_handler) || !find(lib, "g_object_unref", &vips.unref) ||
            !find(lib, "vips_error_buffer", &vips.error_buffer) || !find(lib, "vips_error_clear", &vips.error_clear) ||
            !find(lib, "vips_source_new_from_file", &vips.source_from_file) ||
            !find(lib, "vips_source_new_from_memory", &vips.source_from_memory) ||
            !find(lib, "vips_image_new_from_source", &vips.image_from_source) ||
            !find(lib, "vips_image_get_orientation", &vips.orientation) ||
            !find(lib, "vips_colourspace", &vips.colourspace) || !find(lib, "vips_region_new", &vips.region_new) ||
            !find(lib, "vips_region_prepare", &vips.region_prepare) || vips.init("quorl")) {
            const char *e = dlerror();
            load_error = std::string("the image decoding library ") + QUORL_VIPS_SONAME +
                         " cannot be loaded (" + (e ? e : "it failed to start") +
                         "); install libvips (Debian: libvips42)";
            return;
        }
        vips.cache_set_max(0);  // keep no decoded images beyond their use
        // The library's warnings would go to standard error; every problem
        // that matters comes back as an error instead.
        vips.log_set_handler("VIPS", (GLogLevelFlags)(G_LOG_LEVEL_WARNING | G_LOG_LEVEL_MESSAGE | G_LOG_LEVEL_INFO),
                             quiet_log, nullptr);
    });
    return load_error.empty();
}

struct Unref {
    void operator()(void *p) const { if (p) vips.unref(p); }
};

const char *sample_kind(VipsBandFormat f)
{
    switch (f) {
    case VIPS_FORMAT_CHAR: return "signed 8-bit";
    case VIPS_FORMAT_SHORT: return "signed 16-bit";
    case VIPS_FORMAT_UINT: return "32-bit";
    case VIPS_FORMAT_INT: return "signed 32-bit";
    case VIPS_FORMAT_FLOAT: case VIPS_FORMAT_DOUBLE: return "floating-point";
    case VIPS_FORMAT_COMPLEX: case VIPS_FORMAT_DPCOMPLEX: return "complex";
    default: return "unknown";
    }
}

// The library's error text, made into one short reason for the user.
std::string reason(const char *format)
{
    std::string text = vips.error_buffer();
    vips.error_clear();
    std::string lower = text;
    std::transform(lower.begin(), lower.end(), lower.begin(), [](unsigned char c) { return (char)tolower(c); });
    const std::string kind = std::string("this ") + format + " file";
    for (const char *w : {"truncat", "premature end", "unexpected end", "end of file", "out of data", "short read",
                          "not enough data"})
        if (lower.find(w) != std::string::npos) return kind + " is truncated: it ends before its image data does";
    // Formats read through ImageMagick (BMP) meet the limits of its system
    // policy: say so rather than blame the file.
    if (lower.find("exceeds limit") != std::string::npos || lower.find("resources exhausted") != std::string::npos)
        return kind + " is larger than ImageMagick, which reads it, may hold under its resource limits "
                      "(width, height, area or memory in its policy.xml); convert it to PNG or TIFF";
    if (lower.find("unsupported") != std::string::npos || lower.find("not supported") != std::string::npos ||
        lower.find("unknown") != std::string::npos)
        return "unsupported kind of " + std::string(format) + " file (" + text.substr(0, text.find('\n')) + ")";
    const std::string first = text.substr(0, text.find('\n'));
    return kind + " is damaged and cannot be decoded" + (first.empty() ? "" : " (" + first + ")");
}

// Converts one row of the library's pixels (B bands of 8 or, WIDE, 16 bits)
// into RGBA, alpha flattened onto white. One copy per layout, so that the
// common ones (8-bit grey and RGB) run without per-pixel branches.
template <int B, bool WIDE> void convert(const unsigned char *src, int width, BitmapPixel *out)
{
    for (int x = 0; x < width; x++) {
        int v[B] = {};
        for (int b = 0; b < B; b++) {
            // 16-bit samples in the host's order: keep the high byte
            v[b] = WIDE ? ((const unsigned short *)src)[(size_t)x * B + b] >> 8 : src[(size_t)x * B + b];
        }
        int r = v[0], g = v[0], bl = v[0];
        if constexpr (B >= 3) {
            g = v[1];
            bl = v[2];
        }
        if constexpr (B == 2 || B == 4) {
            const int a = v[B - 1];  // what a viewer shows: the pixel over white
            r = (r * a + 255 * (255 - a) + 127) / 255;
            g = (g * a + 255 * (255 - a) + 127) / 255;
            bl = (bl * a + 255 * (255 - a) + 127) / 255;
        }
        out[x] = BitmapPixel{(unsigned char)r, (unsigned char)g, (unsigned char)bl, 255};
    }
}

using Converter = void (*)(const unsigned char *, int, BitmapPixel *);

#ifdef __x86_64__
// Grey and RGB of 8 or 16 bits, the most common rows by far, sixteen bytes
// at a time with byte shuffles: on a fast decoder this copy was a fifth of a
// quiet run. Each round takes a few pixels, four per shuffle (the high byte
// of a 16-bit sample is its second); the pixels left over go to convert.
template <int B, bool WIDE>
[[gnu::target("ssse3")]] void convert_ssse3(const unsigned char *src, int width, BitmapPixel *out)
{
    static_assert(B == 1 || B == 3, "grey or RGB");
    constexpr int bytes = B * (WIDE ? 2 : 1);  // per pixel
    constexpr int step = B == 1 && !WIDE ? 16 : 4;  // pixels per round
    constexpr int loads = (step * bytes + 15) / 16;
    // Output byte j of group q is channel j % 4 of the round's pixel
    // 4 * q + j / 4; alpha (channel 3) comes from the OR.
    alignas(16) signed char pick[step / 4][loads][16];
    for (int q = 0; q < step / 4; q++)
        for (int l = 0; l < loads; l++)
            for (int j = 0; j < 16; j++) {
                const int p = 4 * q + j / 4, c = j % 4;
                const int at = p * bytes + (B == 3 ? c : 0) * (WIDE ? 2 : 1) + (WIDE ? 1 : 0);
                pick[q][l][j] = (signed char)(c == 3 || at / 16 != l ? -1 : at % 16);
            }
    const __m128i alpha = _mm_set1_epi32((int)0xff000000u);
    int x = 0;
    // The round's loads read 16 * loads bytes, which may reach past its
    // pixels but not past the row.
    for (; (size_t)x * bytes + (size_t)16 * loads <= (size_t)width * bytes; x += step) {
        __m128i in[loads];
        for (int l = 0; l < loads; l++) in[l] = _mm_loadu_si128((const __m128i *)(src + (size_t)x * bytes + (size_t)16 * l));
        for (int q = 0; q < step / 4; q++) {
            __m128i v = alpha;
            for (int l = 0; l < loads; l++)
                v = _mm_or_si128(v, _mm_shuffle_epi8(in[l], _mm_load_si128((const __m128i *)pick[q][l])));
            _mm_storeu_si128((__m128i *)(out + x + (size_t)4 * q), v);
        }
    }
    convert<B, WIDE>(src + (size_t)x * bytes, width - x, out + x);
}
#endif

// The converter for B bands of 8 or (WIDE) 16 bits.
Converter converter(bool wide, int bands)
{
#ifdef __x86_64__
    if (__builtin_cpu_supports("ssse3") && (bands == 1 || bands == 3)) {
        if (bands == 1) return wide ? convert_ssse3<1, true> : convert_ssse3<1, false>;
        return wide ? convert_ssse3<3, true> : convert_ssse3<3, false>;
    }
#endif
    static const Converter plain[2][4] = {{convert<1, false>, convert<2, false>, convert<3, false>, convert<4, false>},
                                          {convert<1, true>, convert<2, true>, convert<3, true>, convert<4, true>}};
    return plain[wide][bands - 1];
}

VipsImage *open_image(const char *name, const void *data, size_t size, VipsAccess access)
{
    VipsSource *src = name ? vips.source_from_file(name) : vips.source_from_memory(data, size);
    if (!src) return nullptr;
    VipsImage *im = vips.image_from_source(src, "", "access", access, "fail_on", VIPS_FAIL_ON_ERROR, nullptr);
    vips.unref(src);
    return im;
}

}  // namespace

const char *DecodeFormatName(const unsigned char *head, size_t n)
{
    for (const Signature &s : signatures)
        if (n >= s.at + s.n && !memcmp(head + s.at, s.bytes, s.n) &&
            (strcmp(s.name, "WebP") != 0 || !memcmp(head, "RIFF", 4)))
            return s.name;
    return pnm(head, n) ? "PNM" : nullptr;
}

int DecodeImage(const char *name, const void *data, size_t size, const DecodeSink *sink, std::string *why)
{
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
    if (!strcmp(format, "GIF")) return DecodeGif(name, data, size, sink, why);
    if (!start_library()) return *why = load_error, DECODE_FAILED;

    std::unique_ptr<VipsImage, Unref> im(open_image(name, data, size, VIPS_ACCESS_SEQUENTIAL));
    if (!im) return *why = reason(format), DECODE_FAILED;

    // The orientation tag: how the stored rows (top first) are to be shown.
    // 2 to 4 mirror them; 5 to 8 swap the axes, so that stored row j is
    // shown as column j (5, 8) or as column height - 1 - j (6, 7), its first
    // pixel at the top (5, 6) or at the bottom (7, 8).
    const int orientation = vips.orientation(im.get());
    const bool turned = orientation >= 5 && orientation <= 8;
    const bool mirror = orientation == 2 || orientation == 3 || orientation == 5 || orientation == 6;
    const bool upright = orientation == 3 || orientation == 4 || orientation == 5 || orientation == 8;

    const VipsInterpretation in = im->Type;
    if (in == VIPS_INTERPRETATION_CMYK || in == VIPS_INTERPRETATION_LAB || in == VIPS_INTERPRETATION_LABS ||
        in == VIPS_INTERPRETATION_XYZ) {
        VipsImage *rgb = nullptr;
        if (vips.colourspace(im.get(), &rgb, VIPS_INTERPRETATION_sRGB, nullptr))
            return *why = reason(format), DECODE_FAILED;
        im.reset(rgb);
    }
    const VipsBandFormat bf = im->BandFmt;
    const int bands = im->Bands;
    if ((bf != VIPS_FORMAT_UCHAR && bf != VIPS_FORMAT_USHORT) || bands < 1 || bands > 4) {
        *why = "unsupported kind of " + std::string(format) + " file: " + std::to_string(bands) + " channel(s) of " +
               sample_kind(bf) + " samples (expected 1 to 4 channels of 8 or 16 bits)";
        return DECODE_FAILED;
    }
    const bool wide = bf == VIPS_FORMAT_USHORT;
    const int w = im->Xsize, h = im->Ysize;
    const RowOrder order = turned ? (upright ? COLUMNS_RIGHTWARD : COLUMNS_LEFTWARD)
                                  : (upright ? ROWS_UPWARD : ROWS_DOWNWARD);
    if (!sink->begin(sink->ctx, turned ? h : w, turned ? w : h, bands * (wide ? 16 : 8), order))
        return DECODE_NOMEMORY;

    const Converter to_rgba = converter(wide, bands);
    std::unique_ptr<VipsRegion, Unref> region(vips.region_new(im.get()));
    std::vector<BitmapPixel> row((size_t)w);
    const int strip = std::max(1, std::min(64, (1 << 20) / std::max(1, w)));
    for (int top = 0; top < h; top += strip) {
        VipsRect r = {0, top, w, std::min(strip, h - top)};
        if (vips.region_prepare(region.get(), &r)) return *why = reason(format), DECODE_FAILED;
        for (int j = top; j < r.top + r.height; j++) {
            const VipsRegion *g = region.get();
            to_rgba(g->data + (size_t)(j - g->valid.top) * VIPS_REGION_LSKIP(g), w, row.data());
            if (mirror) std::reverse(row.begin(), row.end());
            if (turned)
                sink->column(sink->ctx, upright ? j : h - 1 - j, row.data());
            else
                sink->row(sink->ctx, upright ? j : h - 1 - j, row.data());
        }
    }
    return DECODE_OK;
}
