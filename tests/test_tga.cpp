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

Bytes header(const Header &h)
{
    return Bytes{(unsigned char)h.idlen, (unsigned char)h.maptype, (unsigned char)h.type,
                 (unsigned char)h.maporigin, (unsigned char)(h.maporigin >> 8),
                 (unsigned char)h.maplen, (unsigned char)(h.maplen >> 8), (unsigned char)h.mapbits,
                 0, 0, 0, 0,
                 (unsigned char)h.width, (unsigned char)(h.width >> 8),
                 (unsigned char)h.height, (unsigned char)(h.height >> 8),
                 (unsigned char)h.bits, (unsigned char)h.descriptor};
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

::testing::AssertionResult is(BitmapPixel p, int r, int g, int b, int a)
{
    if (p.r == r && p.g == g && p.b == b && p.a == a) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "pixel (" << int(p.r) << "," << int(p.g) << ","
                                         << int(p.b) << "," << int(p.a) << "), wanted (" << r
                                         << "," << g << "," << b << "," << a << ")";
}

}  // namespace

TEST(TgaInfo, ReportsSizeAndSignedDepthThenRewinds)
{
    Header h;
    h.width = 300;
    h.height = 513;
    h.bits = 200;
    Bytes file = header(h);
    FILE *f = fmemopen(file.data(), file.size(), "rb");
    int w, ht, d;
    TGA_Info(f, &w, &ht, &d);
    EXPECT_EQ(w, 300);
    EXPECT_EQ(ht, 513);
    EXPECT_EQ(d, -56);
    EXPECT_EQ(ftell(f), 0);
    fclose(f);
}

TEST(TgaRead, FailureCodesInOrderOfPrecedence)
{
    auto with = [](int type, int bits, int maptype) {
        Header h;
        h.type = type;
        h.bits = bits;
        h.maptype = maptype;
        return header(h) + Bytes(4, 0);
    };
    Header tc;  // a 2 x 2 true-colour image missing its last pixel
    tc.width = tc.height = 2;
    Header cm;  // colour map of 4 entries of 24 bits, cut inside the third
    cm.type = 1;
    cm.maptype = 1;
    cm.maplen = 4;
    cm.mapbits = 24;
    cm.bits = 8;
    Header rl;
    rl.type = 10;
    rl.width = 4;
    const struct { const char *id; Bytes file; int code; } cases[] = {
        {"tga-code-1.1", with(9, 8, 0), 1},
        {"tga-code-1.2", with(32, 24, 0), 1},
        {"tga-code-1.3", with(9, 15, 2), 1},  // type is checked first
        {"tga-code-1.4", with(2, 15, 0), 2},
        {"tga-code-1.5", with(3, 15, 2), 2},  // depth before map type
        {"tga-code-1.6", with(2, 24, 2), 3},
        {"tga-code-1.7", header(tc) + Bytes(9, 0), 4},
        {"tga-code-1.8", header(cm) + Bytes(7, 0), 5},
        {"tga-code-1.9", header(rl) + Bytes{0x03, 1, 2, 3, 4, 5, 6}, 6},  // raw packet of 4, 2 values
        {"tga-code-1.10", header(rl) + Bytes{0x81, 1, 2, 3, 0x81, 1}, 4},  // next packet cut
        {"tga-code-1.11", Bytes{}, 1},                             // empty file: type 0
        {"tga-code-1.12", Bytes{0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 1, 0, 24}, 4},  // header cut short
    };
    for (const auto &c : cases) {
        Read r = read_tga(c.file);
        EXPECT_EQ(r.code, c.code) << c.id;
        EXPECT_TRUE(r.guard_intact) << c.id;
    }
}

TEST(TgaRead, TruncatedFileStillReportsSize)
{
    Header h;
    h.width = 7;
    h.height = 3;
    Read r = read_tga(header(h) + Bytes(20, 0));
    EXPECT_EQ(r.code, 4);
    EXPECT_EQ(r.width, 7);
    EXPECT_EQ(r.height, 3);
}

TEST(TgaMergeBytes, EveryValueSize)
{
    const struct { const char *id; Bytes in; int r, g, b, a; } cases[] = {
        {"merge-1.1", {77}, 77, 77, 77, 255},
        {"merge-1.2", {0xFF, 0xFF}, 248, 248, 248, 128},
        {"merge-1.3", {0x00, 0x00}, 0, 0, 0, 0},
        {"merge-1.4", {0x00, 0x7C}, 248, 0, 0, 0},     // red field alone
        {"merge-1.5", {0xE0, 0x03}, 0, 248, 0, 0},     // green straddles both bytes
        {"merge-1.6", {0x1F, 0x80}, 0, 0, 248, 128},   // blue field and the attribute bit
        {"merge-1.7", {10, 20, 30}, 30, 20, 10, 255},  // stored blue, green, red
        {"merge-1.8", {10, 20, 30, 40}, 30, 20, 10, 40},
    };
    for (const auto &c : cases) {
        BitmapPixel p{5, 5, 5, 5};
        TGA_MergeBytes(&p, c.in.data(), (int)c.in.size());
        EXPECT_TRUE(is(p, c.r, c.g, c.b, c.a)) << c.id;
    }
    BitmapPixel p{5, 6, 7, 8};
    const unsigned char five[5] = {1, 2, 3, 4, 5};
    TGA_MergeBytes(&p, five, 5);
    TGA_MergeBytes(&p, five, 0);
    EXPECT_TRUE(is(p, 5, 6, 7, 8));
}

TEST(TgaRead, UncompressedTypesAndDepths)
{
    Header g;  // grey, 3 x 1
    g.type = 3;
    g.width = 3;
    g.bits = 8;
    Read r = read_tga(header(g) + Bytes{0, 128, 255});
    ASSERT_EQ(r.code, 0);
    EXPECT_TRUE(is(r.px[1], 128, 128, 128, 255));

    Header t;  // 32-bit true colour, 2 x 1
    t.width = 2;
    t.bits = 32;
    r = read_tga(header(t) + Bytes{1, 2, 3, 4, 5, 6, 7, 8});
    ASSERT_EQ(r.code, 0);
    EXPECT_TRUE(is(r.px[1], 7, 6, 5, 8));

    t.bits = 16;
    r = read_tga(header(t) + Bytes{0x00, 0x7C, 0x1F, 0x00});
    ASSERT_EQ(r.code, 0);
    EXPECT_TRUE(is(r.px[0], 248, 0, 0, 0));
    EXPECT_TRUE(is(r.px[1], 0, 0, 248, 0));

    // A true-colour file may carry a colour map and an ID; both are skipped.
    Header m;
    m.idlen = 3;
    m.maptype = 1;
    m.maplen = 2;
    m.mapbits = 24;
    m.width = 1;
    r = read_tga(header(m) + Bytes{'a', 'b', 'c'} + Bytes(6, 99) + Bytes{10, 20, 30});
    ASSERT_EQ(r.code, 0);
    EXPECT_TRUE(is(r.px[0], 30, 20, 10, 255));
}

TEST(TgaRead, ColourMappedImages)
{
    Header h;
    h.type = 1;
    h.maptype = 1;
    h.maplen = 16;
    h.mapbits = 24;
    h.bits = 8;
    h.width = 3;
    Bytes map;
    for (int i = 0; i < 16; i++) map = map + Bytes{(unsigned char)i, 0, (unsigned char)(100 + i)};
    Read r = read_tga(header(h) + map + Bytes{2, 15, 200});
    ASSERT_EQ(r.code, 0);
    EXPECT_TRUE(is(r.px[0], 102, 0, 2, 255));
    EXPECT_TRUE(is(r.px[1], 115, 0, 15, 255));
    EXPECT_TRUE(is(r.px[2], 115, 0, 15, 255));  // index past the map: last entry

    // The map is read straight after the header, before the ID is skipped:
    // with a 1-byte ID the entries shift by one byte.
    h.idlen = 1;
    h.maplen = 2;
    h.width = 1;
    r = read_tga(header(h) + Bytes{0xEE} + Bytes{1, 2, 3, 4, 5, 6} + Bytes{0});
    ASSERT_EQ(r.code, 0);
    EXPECT_TRUE(is(r.px[0], 2, 1, 0xEE, 255));

    // 15-bit entries are read as one byte each, so as grey; the pixels
    // still start after 2 * 15 / 8 = 3 map bytes.
    Header g = h;
    g.idlen = 0;
    g.mapbits = 15;
    g.maplen = 2;
    r = read_tga(header(g) + Bytes{40, 50, 0} + Bytes{1});
    ASSERT_EQ(r.code, 0);
    EXPECT_TRUE(is(r.px[0], 50, 50, 50, 255));

    // A colour-mapped file without map entries gives zero pixels, not a
    // read outside the table.
    Header e = g;
    e.maplen = 0;
    r = read_tga(header(e) + Bytes{7});
    ASSERT_EQ(r.code, 0);
    EXPECT_TRUE(is(r.px[0], 0, 0, 0, 0));
}

TEST(TgaRead, RunLengthPackets)
{
    Header h;
    h.type = 10;
    h.width = 7;
    // A run of 4 then a raw packet of 3.
    Read r = read_tga(header(h) + Bytes{0x83, 1, 2, 3, 0x02, 10, 11, 12, 20, 21, 22, 30, 31, 32});
    ASSERT_EQ(r.code, 0);
    for (int i = 0; i < 4; i++) EXPECT_TRUE(is(r.px[(size_t)i], 3, 2, 1, 255)) << i;
    EXPECT_TRUE(is(r.px[4], 12, 11, 10, 255));
    EXPECT_TRUE(is(r.px[6], 32, 31, 30, 255));

    // Grey run-length behaves the same; a run past the image is cut there.
    Header g;
    g.type = 11;
    g.bits = 8;
    g.width = 3;
    g.height = 2;
    r = read_tga(header(g) + Bytes{0x84, 60, 0xFF, 90});
    ASSERT_EQ(r.code, 0);
    EXPECT_TRUE(r.guard_intact);
    EXPECT_TRUE(is(r.px[4], 60, 60, 60, 255));
    EXPECT_TRUE(is(r.px[5], 90, 90, 90, 255));

    // A raw packet that overruns the image stops storing at its end.
    r = read_tga(header(g) + Bytes{0x03, 1, 2, 3, 4, 0x7F} + Bytes(128, 5));
    ASSERT_EQ(r.code, 0);
    EXPECT_TRUE(r.guard_intact);
    EXPECT_TRUE(is(r.px[5], 5, 5, 5, 255));
}

TEST(TgaRead, TopDownRowsAreFlipped)
{
    Header h;
    h.type = 3;
    h.bits = 8;
    h.width = 2;
    h.height = 3;
    h.descriptor = 0x20;
    Read r = read_tga(header(h) + Bytes{0, 0, 1, 1, 2, 2});
    ASSERT_EQ(r.code, 0);
    EXPECT_EQ(r.px[0].r, 2);
    EXPECT_EQ(r.px[2].r, 1);
    EXPECT_EQ(r.px[4].r, 0);

    h.height = 1;
    h.width = 3;
    r = read_tga(header(h) + Bytes{0, 1, 2});
    EXPECT_EQ(r.px[0].r, 0);
    EXPECT_EQ(r.px[2].r, 2);

    h.descriptor = 0x10;  // right-to-left is ignored: no mirror
    r = read_tga(header(h) + Bytes{0, 1, 2});
    EXPECT_EQ(r.px[0].r, 0);
}

// Damaged headers and packets, seeded: the reader must return, and must never
// write past the pixels the header promised.
TEST(TgaRead, DamagedFilesStayInsideTheBitmap)
{
    std::mt19937 rng(20261122);
    for (int k = 0; k < 3000; k++) {
        Header h;
        const int types[] = {1, 2, 3, 10, 11};
        const int bits[] = {8, 16, 24, 32};
        h.type = types[rng() % 5];
        h.bits = bits[rng() % 4];
        h.maptype = (int)(rng() % 2);
        h.maplen = (int)(rng() % 5);
        h.mapbits = (int)(rng() % 40);
        h.idlen = (int)(rng() % 4);
        h.width = (int)(rng() % 9);
        h.height = (int)(rng() % 9);
        h.descriptor = (int)(rng() % 2) * 0x20;
        Bytes body(rng() % 200);
        for (auto &b : body) b = (unsigned char)rng();
        Read r = read_tga(header(h) + body);
        EXPECT_TRUE(r.guard_intact) << "case " << k;
        EXPECT_GE(r.code, 0);
        EXPECT_LE(r.code, 6);
    }
}
