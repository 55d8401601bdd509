// The TGA reader on hand-made files: every image type and depth, run-length
// packets, colour maps, the row flip, and every failure code in its order.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <random>
#include <vector>

#include "bitmap/tga.h"

namespace {

using Bytes = std::vector<unsigned char>;

struct Header {
    int idlen = 0, maptype = 0, type = 2, maporigin = 0, maplen = 0, mapbits = 0;
    int width = 1, height = 1, bits = 24, descriptor = 0;
};

// The one hand-made header of the suite: the reader's point is files that
// other programs wrote, in types and depths our writer never produces.
Bytes header(const Header &h)
{
    Bytes b(18, 0);
    const int at[] = {0, 1, 2, 3, 5, 7, 12, 14, 16, 17};
    const int v[] = {h.idlen, h.maptype, h.type, h.maporigin, h.maplen, h.mapbits, h.width, h.height, h.bits, h.descriptor};
    for (int k = 0; k < 10; k++) {
        b[at[k]] = (unsigned char)v[k];
        if (k == 3 || k == 4 || k == 6 || k == 7) b[at[k] + 1] = (unsigned char)(v[k] >> 8);
    }
    return b;
}

Bytes operator+(Bytes a, const Bytes &b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

// Result of reading a file held in memory. The bitmap has one guard pixel
// past width*height so that a write beyond the image shows.
struct Read {
    int code, width, height;
    std::vector<BitmapPixel> px;
    bool guard_intact;
};

const BitmapPixel guard = {1, 2, 3, 4};

Read read_tga(Bytes file)
{
    if (file.empty()) file.push_back(0);  // fmemopen needs a buffer; size 0 below
    FILE *f = fmemopen(file.data(), file.size(), "rb");
    Read r{};
    int depth;
    TGA_Info(f, &r.width, &r.height, &depth);
    r.px.assign((size_t)r.width * r.height + 1, BitmapPixel{9, 9, 9, 9});
    r.px.back() = guard;
    int w = -1, h = -1;
    r.code = TGA_Read(f, r.px.data(), &w, &h);
    EXPECT_EQ(w, r.width);
    EXPECT_EQ(h, r.height);
    const BitmapPixel g = r.px.back();
    r.guard_intact = g.r == 1 && g.g == 2 && g.b == 3 && g.a == 4;
    r.px.pop_back();
    fclose(f);
    return r;
}

bool is(BitmapPixel p, int r, int g, int b, int a)
{
    return p.r == r && p.g == g && p.b == b && p.a == a;
}

}  // namespace

TEST(TgaRead, FailureCodesInOrderOfPrecedence)
{
    const Header tc{.width = 2, .height = 2};  // true colour, missing its last pixel
    const Header cm{.maptype = 1, .type = 1, .maplen = 4, .mapbits = 24, .bits = 8};  // map cut in entry 3
    const Header rl{.type = 10, .width = 4};
    const struct { const char *id; Bytes file; int code; } cases[] = {
        {"tga-code-1.1", header({.type = 9, .bits = 8}) + Bytes(4, 0), 1},
        {"tga-code-1.3", header({.maptype = 2, .type = 9, .bits = 15}) + Bytes(4, 0), 1},  // type first
        {"tga-code-1.4", header({.bits = 15}) + Bytes(4, 0), 2},
        {"tga-code-1.5", header({.maptype = 2, .type = 3, .bits = 15}) + Bytes(4, 0), 2},  // depth before map
        {"tga-code-1.6", header({.maptype = 2}) + Bytes(4, 0), 3},
        {"tga-code-1.7", header(tc) + Bytes(9, 0), 4},
        {"tga-code-1.8", header(cm) + Bytes(7, 0), 5},
        {"tga-code-1.9", header(rl) + Bytes{0x03, 1, 2, 3, 4, 5, 6}, 6},  // raw packet of 4, 2 values
        {"tga-code-1.10", header(rl) + Bytes{0x81, 1, 2, 3, 0x81, 1}, 4},  // next packet cut
        {"tga-code-1.11", Bytes{}, 1},                                     // empty file: type 0
        {"tga-code-1.12", Bytes{0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 1, 0, 24}, 4},  // header cut short
    };
    for (const auto &c : cases) {
        Read r = read_tga(c.file);
        EXPECT_EQ(r.code, c.code) << c.id;
        EXPECT_TRUE(r.guard_intact) << c.id;
    }
    // A truncated file still reports its size.
    Read r = read_tga(header({.width = 7, .height = 3}) + Bytes(20, 0));
    EXPECT_TRUE(r.code == 4 && r.width == 7 && r.height == 3);

    // TGA_Info: size and the depth byte as signed, then back to the start.
    Bytes file = header({.width = 300, .height = 513, .bits = 200});
    FILE *f = fmemopen(file.data(), file.size(), "rb");
    int w, h, depth;
    TGA_Info(f, &w, &h, &depth);
    EXPECT_TRUE(w == 300 && h == 513 && depth == -56 && ftell(f) == 0);
    fclose(f);
}

TEST(TgaMergeBytes, EveryValueSize)
{
    const struct { const char *id; Bytes in; int r, g, b, a; } cases[] = {
        {"merge-1.1", {77}, 77, 77, 77, 255}, {"merge-1.2", {0xFF, 0xFF}, 248, 248, 248, 128},
        {"merge-1.5", {0xE0, 0x03}, 0, 248, 0, 0},     // green straddles both bytes
        {"merge-1.6", {0x1F, 0x80}, 0, 0, 248, 128},   // blue field and the attribute bit
        {"merge-1.7", {10, 20, 30}, 30, 20, 10, 255},  // stored blue, green, red
        {"merge-1.8", {10, 20, 30, 40}, 30, 20, 10, 40},
    };
    for (const auto &c : cases) {
        BitmapPixel p{5, 5, 5, 5};
        TGA_MergeBytes(&p, c.in.data(), (int)c.in.size());
        EXPECT_TRUE(is(p, c.r, c.g, c.b, c.a)) << c.id << ": " << int(p.r) << " " << int(p.g) << " " << int(p.b);
    }
    BitmapPixel p{5, 6, 7, 8};
    const unsigned char five[5] = {1, 2, 3, 4, 5};
    TGA_MergeBytes(&p, five, 5);  // no such value size: untouched
    TGA_MergeBytes(&p, five, 0);
    EXPECT_TRUE(is(p, 5, 6, 7, 8));
}

TEST(TgaRead, DecodesEveryKind)
{
    Bytes map16;  // 16 entries of 24 bits: entry i is blue i, red 100 + i
    for (int i = 0; i < 16; i++) map16 = map16 + Bytes{(unsigned char)i, 0, (unsigned char)(100 + i)};
    const Header cmap{.maptype = 1, .type = 1, .maplen = 16, .mapbits = 24, .width = 3, .bits = 8};
    const Header grey_rle{.type = 11, .width = 3, .height = 2, .bits = 8};
    const Header flip{.type = 3, .width = 2, .height = 3, .bits = 8, .descriptor = 0x20};
    // Each file is checked at one pixel; px: index into the bitmap.
    const struct { const char *id; Bytes file; int px, r, g, b, a; } cases[] = {
        {"grey", header({.type = 3, .width = 3, .bits = 8}) + Bytes{0, 128, 255}, 1, 128, 128, 128, 255},
        {"32-bit", header({.width = 2, .bits = 32}) + Bytes{1, 2, 3, 4, 5, 6, 7, 8}, 1, 7, 6, 5, 8},
        {"16-bit red", header({.width = 2, .bits = 16}) + Bytes{0x00, 0x7C, 0x1F, 0x00}, 0, 248, 0, 0, 0},
        // A true-colour file may carry a colour map and an ID; both are skipped.
        {"map and id skipped",
         header({.idlen = 3, .maptype = 1, .maplen = 2, .mapbits = 24}) + Bytes{'a', 'b', 'c'} + Bytes(6, 99) +
             Bytes{10, 20, 30}, 0, 30, 20, 10, 255},
        {"mapped", header(cmap) + map16 + Bytes{2, 15, 200}, 0, 102, 0, 2, 255},
        {"index past the map: last entry", header(cmap) + map16 + Bytes{2, 15, 200}, 2, 115, 0, 15, 255},
        // The map is read straight after the header, before the ID is
        // skipped: with a 1-byte ID the entries shift by one byte.
        {"map before id", header({.idlen = 1, .maptype = 1, .type = 1, .maplen = 2, .mapbits = 24, .bits = 8}) +
             Bytes{0xEE, 1, 2, 3, 4, 5, 6, 0}, 0, 2, 1, 0xEE, 255},
        // 15-bit entries are read as one byte each, so as grey; the pixels
        // still start after 2 * 15 / 8 = 3 map bytes.
        {"15-bit map", header({.maptype = 1, .type = 1, .maplen = 2, .mapbits = 15, .bits = 8}) + Bytes{40, 50, 0, 1},
         0, 50, 50, 50, 255},
        // No map entries: zero pixels, not a read outside the table.
        {"empty map", header({.maptype = 1, .type = 1, .mapbits = 15, .bits = 8}) + Bytes{7}, 0, 0, 0, 0, 0},
        // A run of 4 then a raw packet of 3.
        {"rle run", header({.type = 10, .width = 7}) + Bytes{0x83, 1, 2, 3, 0x02, 10, 11, 12, 20, 21, 22, 30, 31, 32},
         3, 3, 2, 1, 255},
        // A run or raw packet past the image is cut there.
        {"grey rle run cut", header(grey_rle) + Bytes{0x84, 60, 0xFF, 90}, 5, 90, 90, 90, 255},
        {"raw cut", header(grey_rle) + Bytes{0x03, 1, 2, 3, 4, 0x7F} + Bytes(128, 5), 5, 5, 5, 5, 255},
        // Top-down rows are flipped; right-to-left is ignored (no mirror).
        {"top-down first", header(flip) + Bytes{0, 0, 1, 1, 2, 2}, 0, 2, 2, 2, 255},
        {"right-to-left", header({.type = 3, .width = 3, .bits = 8, .descriptor = 0x10}) + Bytes{0, 1, 2}, 0, 0, 0,
         0, 255},
    };
    for (const auto &c : cases) {
        Read r = read_tga(c.file);
        ASSERT_EQ(r.code, 0) << c.id;
        EXPECT_TRUE(r.guard_intact) << c.id;
        const BitmapPixel p = r.px[(size_t)c.px];
        EXPECT_TRUE(is(p, c.r, c.g, c.b, c.a)) << c.id << ": " << int(p.r) << " " << int(p.g) << " " << int(p.b);
    }
}

// Damaged headers and packets, seeded: the reader must return, and must never
// write past the pixels the header promised.
TEST(TgaRead, DamagedFilesStayInsideTheBitmap)
{
    std::mt19937 rng(20261122);
    for (int k = 0; k < 2000; k++) {
        const int types[] = {1, 2, 3, 10, 11}, bits[] = {8, 16, 24, 32};
        Header h;  // fields drawn one by one: the order of draws is fixed
        h.type = types[rng() % 5], h.bits = bits[rng() % 4], h.maptype = (int)(rng() % 2);
        h.maplen = (int)(rng() % 5), h.mapbits = (int)(rng() % 40), h.idlen = (int)(rng() % 4);
        h.width = (int)(rng() % 9), h.height = (int)(rng() % 9), h.descriptor = (int)(rng() % 2) * 0x20;
        Bytes body(rng() % 200);
        for (auto &b : body) b = (unsigned char)rng();
        Read r = read_tga(header(h) + body);
        EXPECT_TRUE(r.guard_intact) << "case " << k;
        EXPECT_TRUE(r.code >= 0 && r.code <= 6) << "case " << k;
    }
}
