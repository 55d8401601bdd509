// tests/test_formats.cpp - the row-by-row TGA read against the whole-bitmap
// read, and the grey-level rules. (Otsu's level is checked against
// scikit-image in tests/e2e/formats.py.)
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <vector>

#include "app/longopts.h"
#include "app/threshold.h"
#include "bitmap/tga.h"

namespace {

// A TGA file in memory: header, then body bytes as given.
std::vector<unsigned char> tga(int type, int bits, int w, int h, bool topdown, const std::vector<unsigned char> &body)
{
    const unsigned char head[18] = {0, 0, (unsigned char)type, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                                    (unsigned char)w, (unsigned char)(w >> 8), (unsigned char)h,
                                    (unsigned char)(h >> 8), (unsigned char)bits, (unsigned char)(topdown ? 0x20 : 0)};
    std::vector<unsigned char> f(18 + body.size());
    memcpy(f.data(), head, 18);
    if (!body.empty()) memcpy(f.data() + 18, body.data(), body.size());
    return f;
}

// 300 columns: the row reader's buffer holds 218 rows, so a 500-row image
// crosses it twice, and run-length packets of 128 pixels cross rows and
// buffers.
constexpr int w = 300, h = 500;
std::vector<BitmapPixel> rows;  // what TGA_ReadRows hands on

void collect(void *, int y, const BitmapPixel *row)
{
    memcpy(&rows[(size_t)y * w], row, sizeof(BitmapPixel) * w);
}

// Reads data both ways; the codes and (on success) the pixels must agree.
void same_both_ways(const char *id, std::vector<unsigned char> data)
{
    FILE *a = fmemopen(data.data(), data.size(), "rb"), *b = fmemopen(data.data(), data.size(), "rb");
    std::vector<BitmapPixel> whole((size_t)w * h);
    rows.assign((size_t)w * h, BitmapPixel{});
    int w1, h1, w2, h2;
    const int c1 = TGA_Read(a, whole.data(), &w1, &h1), c2 = TGA_ReadRows(b, &w2, &h2, collect, nullptr);
    fclose(a);
    fclose(b);
    EXPECT_EQ(c1, c2) << id;
    EXPECT_EQ(w1 * 65536 + h1, w2 * 65536 + h2) << id;
    EXPECT_TRUE(c1 != TGA_OK || !memcmp(whole.data(), rows.data(), sizeof(BitmapPixel) * w * h)) << id;
}

}  // namespace

TEST(Formats, RowsMatchWholeRead)
{
    std::vector<unsigned char> plain, grey, runs, mapped;
    for (int i = 0; i < w * h; i++) {
        for (int c = 0; c < 3; c++) plain.push_back((unsigned char)(i * 7 + c * 31));
        grey.push_back((unsigned char)(i / 3));
        mapped.push_back((unsigned char)(i % 200));
    }
    for (int i = 0; i < w * h; i += 128 + 3) {
        runs.insert(runs.end(), {0xFF, (unsigned char)i, 1, 2});        // 128 of one pixel
        runs.insert(runs.end(), {0x02, 9, 9, 9, 8, 8, 8, 7, 7, (unsigned char)i});  // 3 raw
    }
    std::vector<unsigned char> map_file = tga(1, 8, w, h, true, {});
    map_file[1] = 1;         // a colour map of 16 entries of 24 bits
    map_file[5] = 16;
    map_file[7] = 24;
    for (int e = 0; e < 16 * 3; e++) map_file.push_back((unsigned char)(e * 5));
    map_file.insert(map_file.end(), mapped.begin(), mapped.end());

    static const struct { const char *id; int type, bits; bool topdown; } kinds[] = {{"rows-1.1 true colour", 2, 24, false}, {"rows-1.2 true colour top-down", 2, 24, true},
                 {"rows-1.3 grey", 3, 8, true}, {"rows-1.4 run-length", 10, 24, false},
                 {"rows-1.5 run-length top-down", 10, 24, true}};
    for (const auto &k : kinds) {
        const std::vector<unsigned char> &body = k.type == 3 ? grey : k.type == 10 ? runs : plain;
        std::vector<unsigned char> f = tga(k.type, k.bits, w, h, k.topdown, body);
        same_both_ways(k.id, f);
        f.resize(f.size() - 50);  // truncated: the same failure code
        same_both_ways((std::string(k.id) + " truncated").c_str(), f);
    }
    same_both_ways("rows-1.6 colour-mapped", map_file);
}

TEST(Formats, GreyLevelRules)
{
    static const struct {
        const char *id;
        BitmapPixel p;
        int cut, invert;
        unsigned char want;
    } cases[] = {
        {"grey-1.1 red is Y 76: below 77", {255, 0, 0, 255}, 77, 0, 0},
        {"grey-1.2 red is Y 76: not below 76", {255, 0, 0, 255}, 76, 0, 255},
        {"grey-1.3 Y rounds half up: 128.5 is 129", {128, 129, 128, 0}, 129, 0, 255},
        {"grey-1.5 cut 256: everything black", {255, 255, 255, 255}, 256, 0, 0},
        {"grey-1.6 inverted", {0, 0, 0, 255}, 10, 1, 255},
    };
    for (const auto &c : cases) {
        unsigned char out;
        EXPECT_TRUE(ThresholdPixels(&c.p, &out, 1, ThresholdRule{c.cut, c.invert}) == c.want && out == c.want) << c.id;
    }
}
