// The TGA reader on hand-made files: 16-bit values, colour maps, packets cut by the image end and the failure
// codes in their order, each read into a bitmap with a guard pixel that must stay intact; and the row-by-row
// read against the whole-bitmap read. (Damaged files at large are the fuzzing target's: fuzz/fuzz_tga.cpp.)
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

#include "bitmap/tga.h"

namespace {

using Bytes = std::vector<unsigned char>;

struct Header {
    int idlen = 0, maptype = 0, type = 2, maporigin = 0, maplen = 0, mapbits = 0;
    int width = 1, height = 1, bits = 24, descriptor = 0;
};

Bytes header(const Header &h, const Bytes &body)  // headers our writer never produces
{
    Bytes b = {(unsigned char)h.idlen, (unsigned char)h.maptype, (unsigned char)h.type, 0, 0, (unsigned char)h.maplen,
               0, (unsigned char)h.mapbits, 0, 0, 0, 0, (unsigned char)h.width, (unsigned char)(h.width >> 8),
               (unsigned char)h.height, (unsigned char)(h.height >> 8), (unsigned char)h.bits,
               (unsigned char)h.descriptor};
    b.reserve(18 + body.size());  // growing by the insert instead makes GCC 12 see a bogus overflow
    b.insert(b.end(), body.begin(), body.end());
    return b;
}

// Reads a file in memory into a bitmap of the size TGA_Info reports plus a guard pixel that must stay intact.
int read_tga(Bytes file, std::vector<BitmapPixel> *px)
{
    file.push_back(0);  // fmemopen needs a buffer; the size below leaves it out
    FILE *f = fmemopen(file.data(), file.size() > 1 ? file.size() - 1 : 1, "rb");
    int nx, ny, depth, w = -1, h = -1;
    TGA_Info(f, &nx, &ny, &depth);
    px->assign((size_t)nx * ny + 1, BitmapPixel{1, 2, 3, 4});
    const int code = TGA_Read(f, px->data(), &w, &h);
    fclose(f);
    EXPECT_TRUE(w == nx && h == ny && Same_BitmapPixel(px->back(), {1, 2, 3, 4})) << "guard or size";
    return code;
}

}  // namespace

TEST(TgaRead, FailureCodesInOrderOfPrecedence)
{
    const Header cm{.maptype = 1, .type = 1, .maplen = 4, .mapbits = 24, .bits = 8}, rl{.type = 10, .width = 4};
    const struct { const char *id; Bytes file; int code; } cases[] = {
        {"1.1", header({.type = 9, .bits = 8}, Bytes(4, 0)), 1},
        {"1.3", header({.maptype = 2, .type = 9, .bits = 15}, Bytes(4, 0)), 1},  // type first
        {"1.4", header({.bits = 15}, Bytes(4, 0)), 2},
        {"1.5", header({.maptype = 2, .type = 3, .bits = 15}, Bytes(4, 0)), 2},  // depth before map
        {"1.6", header({.maptype = 2}, Bytes(4, 0)), 3}, {"1.7", header({.width = 2, .height = 2}, Bytes(9, 0)), 4},
        {"1.8", header(cm, Bytes(7, 0)), 5},                                     // map cut in entry 3
        {"1.9", header(rl, {0x03, 1, 2, 3, 4, 5, 6}), 6},                        // a raw packet of 4 with 2 values
        {"1.10", header(rl, {0x81, 1, 2, 3, 0x81, 1}), 4},                       // next packet cut
        {"1.11", {}, 1}, {"1.12", {0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 1, 0, 24}, 4},  // empty; header cut
    };
    std::vector<BitmapPixel> px;
    for (const auto &c : cases) EXPECT_EQ(read_tga(c.file, &px), c.code) << c.id;
    int w, h, depth;
    Bytes file = header({.width = 300, .height = 513, .bits = 200}, {});  // the depth byte is signed
    FILE *f = fmemopen(file.data(), file.size(), "rb");
    TGA_Info(f, &w, &h, &depth);
    EXPECT_TRUE(w == 300 && h == 513 && depth == -56 && ftell(f) == 0);  // and the stream is rewound
    fclose(f);
}

TEST(TgaRead, ValuesMapsAndPackets)
{
    Bytes map16;  // 16 entries of 24 bits: entry i is blue i, red 100 + i
    for (int i = 0; i < 16; i++) map16.insert(map16.end(), {(unsigned char)i, 0, (unsigned char)(100 + i)});
    map16.insert(map16.end(), {2, 15, 200});
    const Header grey_rle{.type = 11, .width = 3, .height = 2, .bits = 8};
    Bytes raw_cut = {0x03, 1, 2, 3, 4, 0x7F};  // a raw packet of 128 where 2 pixels are left
    raw_cut.resize(134, 5);
    const struct { const char *id; Bytes file; int px; BitmapPixel want; } cases[] = {
        {"16-bit green, white", header({.width = 2, .bits = 16}, {0xE0, 0x03, 0xFF, 0xFF}), 0, {0, 248, 0, 0}},
        {"16-bit attribute", header({.width = 2, .bits = 16}, {0xE0, 0x03, 0xFF, 0xFF}), 1, {248, 248, 248, 128}},
        {"past the map: last one", header({.maptype = 1, .type = 1, .maplen = 16, .mapbits = 24, .width = 3, .bits = 8},
                                          map16), 2, {115, 0, 15, 255}},
        {"map and id skipped", header({.idlen = 3, .maptype = 1, .maplen = 2, .mapbits = 24},
                                      {'a', 'b', 'c', 9, 9, 9, 9, 9, 9, 10, 20, 30}), 0, {30, 20, 10, 255}},
        // The map is read straight after the header, before the ID: a 1-byte ID shifts it.
        {"map before id", header({.idlen = 1, .maptype = 1, .type = 1, .maplen = 2, .mapbits = 24, .bits = 8},
                                 {0xEE, 1, 2, 3, 4, 5, 6, 0}), 0, {2, 1, 0xEE, 255}},
        // 15-bit entries are read as one byte each (grey); pixels start after 2 * 15 / 8 = 3 map bytes.
        {"15-bit map", header({.maptype = 1, .type = 1, .maplen = 2, .mapbits = 15, .bits = 8}, {40, 50, 0, 1}), 0,
         {50, 50, 50, 255}},
        {"run cut at the end", header(grey_rle, {0x84, 60, 0xFF, 90}), 5, {90, 90, 90, 255}},
        {"raw cut at the end", header(grey_rle, raw_cut), 5, {5, 5, 5, 255}},
    };
    std::vector<BitmapPixel> px;
    for (const auto &c : cases) {
        ASSERT_EQ(read_tga(c.file, &px), 0) << c.id;
        const BitmapPixel p = px[(size_t)c.px];
        EXPECT_TRUE(Same_BitmapPixel(p, c.want)) << c.id << ": " << +p.r << " " << +p.g << " " << +p.b << " " << +p.a;
    }
    BitmapPixel p{5, 6, 7, 8}, q{};  // the conversion colour maps use; no such value size: untouched
    const unsigned char five[5] = {0xE0, 0x03, 3, 4, 5};
    TGA_MergeBytes(&p, five, 5), TGA_MergeBytes(&p, five, 0), TGA_MergeBytes(&q, five, 2);
    EXPECT_TRUE(Same_BitmapPixel(p, {5, 6, 7, 8}) && Same_BitmapPixel(q, {0, 248, 0, 0}));
}

// 300 columns: the row reader's buffer holds 218 rows, so 500 rows cross it twice, and run-length packets of 128
// pixels cross rows and buffers. The codes, sizes and (on success) pixels must be those of the whole-bitmap read.
TEST(TgaRead, RowsMatchWholeRead)
{
    constexpr int w = 300, h = 500;
    static std::vector<BitmapPixel> rows;  // what TGA_ReadRows hands on
    Bytes plain, grey, runs, mapped;
    for (int e = 0; e < 16 * 3; e++) mapped.push_back((unsigned char)(e * 5));  // 16 entries of 24 bits, then indices
    for (int i = 0; i < w * h; i++) {
        for (int c = 0; c < 3; c++) plain.push_back((unsigned char)(i * 7 + c * 31));
        grey.push_back((unsigned char)(i / 3)), mapped.push_back((unsigned char)(i % 200));
    }
    for (int i = 0; i < w * h; i += 128 + 3)  // 128 of one pixel, then 3 raw
        runs.insert(runs.end(), {0xFF, (unsigned char)i, 1, 2, 0x02, 9, 9, 9, 8, 8, 8, 7, 7, (unsigned char)i});
    const struct { const char *id; Bytes file; } cases[] = {
        {"true colour", header({.width = w, .height = h}, plain)},
        {"true colour top-down", header({.width = w, .height = h, .descriptor = 0x20}, plain)},
        {"grey top-down", header({.type = 3, .width = w, .height = h, .bits = 8, .descriptor = 0x20}, grey)},
        {"run-length", header({.type = 10, .width = w, .height = h}, runs)},
        {"run-length top-down", header({.type = 10, .width = w, .height = h, .descriptor = 0x20}, runs)},
        {"colour-mapped top-down", header({.maptype = 1, .type = 1, .maplen = 16, .mapbits = 24, .width = w,
                                           .height = h, .bits = 8, .descriptor = 0x20}, mapped)},
    };
    for (const auto &c : cases)
        for (size_t cut : {0, 50}) {  // whole, then truncated: the same failure code
            Bytes data(c.file.begin(), c.file.end() - (long)cut);
            FILE *a = fmemopen(data.data(), data.size(), "rb"), *b = fmemopen(data.data(), data.size(), "rb");
            std::vector<BitmapPixel> whole((size_t)w * h);
            rows.assign((size_t)w * h, BitmapPixel{});
            int w1, h1, w2, h2;
            const int c1 = TGA_Read(a, whole.data(), &w1, &h1), c2 = TGA_ReadRows(b, &w2, &h2, [](void *, int y,
                const BitmapPixel *row) { std::copy_n(row, w, &rows[(size_t)y * w]); }, nullptr);
            fclose(a), fclose(b);
            EXPECT_TRUE(c1 == c2 && w1 == w2 && h1 == h2
                        && (c1 != TGA_OK || !memcmp(whole.data(), rows.data(), sizeof(BitmapPixel) * w * h)))
                << c.id << ", " << cut << " bytes cut: codes " << c1 << " " << c2;
        }
}
