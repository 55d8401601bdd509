// The image writer: every format through decoders nobody here wrote, the bytes no outside reader checks,
// refused codes and write errors. A 6x5 'F' in red on blue shows flips and swaps.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "bitmap/writer.h"
#include "capture.h"

namespace {

using Image = std::vector<BitmapPixel>;

template <class T> std::vector<T> operator+(std::vector<T> a, const std::vector<T> &b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

constexpr BitmapPixel k_red = {255, 0, 0, 255}, k_blue = {0, 0, 255, 255};

Image make_f(int nx, BitmapPixel bg = k_blue)  // wider images are padded with background
{
    const char *const art[5] = {"RRRRR.", "R.....", "RRRR..", "R.....", "R....."};  // top row first
    Image im((size_t)nx * 5);
    for (int i = 0; i < nx * 5; i++) im[(size_t)i] = i % nx < 6 && art[4 - i / nx][i % nx] == 'R' ? k_red : bg;
    return im;
}

Bytes write_image(const Image &im, int nx, int ny, int code, int *result = nullptr)
{
    return capture([&](FILE *f) { return Write_Bitmap(f, im.data(), nx, ny, code); }, result);
}

// r g b (a) of the rows of im, the first row first or the last row first.
Bytes rows_rgb(const Image &im, int nx, int ny, bool last_first, bool alpha)
{
    Bytes out;
    for (int i = 0; i < nx * ny; i++) {
        const BitmapPixel &p = im[(size_t)((last_first ? ny - 1 - i / nx : i / nx) * nx + i % nx)];
        out.insert(out.end(), {p.r, p.g, p.b, p.a});
        out.resize(out.size() - !alpha);
    }
    return out;
}

Image row_of(const std::string &letters, int n = 1)  // pixels by letter, n times over; 'a' is 'A' but for alpha
{
    static const BitmapPixel px[5] = {{10, 20, 30, 255}, {10, 20, 30, 0}, {40, 50, 60, 255}, {7, 8, 9, 200}, {}};
    Image row;
    for (int k = 0; k < n * (int)letters.size(); k++)
        row.push_back(px[std::string("AaBCX").find(letters[k % letters.size()])]);
    return row;
}

// A stream that accepts `room` bytes and then refuses.
ssize_t limited_write(void *room, const char *, size_t n)
{
    const size_t take = std::min(n, *(size_t *)room);
    return *(size_t *)room -= take, (ssize_t)take;
}

}  // namespace

TEST(writer_bytes, WithoutAnOutsideReader)
{
    // The 48-byte header: magic 474, verbatim, 1 byte per channel, 3 dimensions, 6 x 5 x 3, 0..255, the name.
    const Image f = make_f(6);
    EXPECT_EQ(write_image(f, 6, 5, 3), hx("01da 00 01 0003 0006 0005 0003 00000000 000000ff 00000000 "
                                          "5772697465426974 6d61702c206b6578 0000000000000000")
                                           + rows_rgb(f, 6, 5, false, false));
    EXPECT_EQ(write_image(f, 6, 5, -8), rows_rgb(f, 6, 5, true, false));
    EXPECT_EQ(write_image({{10, 20, 40, 0}, {255, 255, 255, 0}, {1, 1, 0, 0}}, 3, 1, 4), hx("17 ff 00"));  // (r+g+b)/3
    int ok = -1;
    for (int code : {0, 10, -10, 14, INT_MIN})  // no such format: nothing written
        EXPECT_TRUE(write_image(f, 6, 5, code, &ok).empty() && ok == 0) << code;
    EXPECT_TRUE(write_image(f, -6, 5, 1, &ok).empty() && ok == 0);
    for (const auto &[text, want, ret] : {std::tuple{"4Dabc", "4d ab 0c", 1}, {"00ff0g", "", 0}}) {  // odd end; not hex
        const char *hex = text;
        EXPECT_TRUE(capture([&](FILE *s) { return BM_WriteHexString(s, hex); }, &ok) == hx(want) && ok == ret) << text;
    }
    unsigned char buf[4] = {9, 9, 9, 9};
    EXPECT_EQ(capture([&](FILE *s) { return BM_WriteLongInt(s, buf, 0xFFFFFFFEu); }), hx("fffffffe"));
    EXPECT_EQ(Bytes(buf, buf + 4), hx("fffffffe"));

    // Run-length packets: 0x80 | (n-1) for a run, n-1 for raw values (b g r [a]).
    auto pk = [](int head, const Image &px, int bytes) {
        Bytes out = {(unsigned char)head};
        for (const BitmapPixel &p : px) out.insert(out.end(), {p.b, p.g, p.r, p.a}), out.resize(out.size() - 4 + bytes);
        return out;
    };
    const Image A = row_of("A"), B = row_of("B");
    const struct { const char *id; Image row; int bytes; Bytes want; } cases[] = {
        {"300 equal", row_of("A", 300), 3, pk(0xFF, A, 3) + pk(0xFF, A, 3) + pk(0xAB, A, 3)},
        {"lone last", row_of("AAB"), 4, pk(0x81, A, 4) + pk(0x80, B, 4)},
        {"alpha counts", row_of("Aa"), 3, pk(0x01, row_of("Aa"), 3)},
        {"carried pixel", row_of("AB", 64) + row_of("XBB"), 3, pk(0x7F, row_of("AB", 64), 3) + pk(0x82, B, 3)},
        {"128 then 2", row_of("ABC", 43) + row_of("AB"), 3,
         pk(0x7F, row_of("ABC", 42) + row_of("AB"), 3) + pk(0x02, row_of("CAB"), 3)},
    };
    for (const auto &c : cases) {
        auto fn = [&](FILE *s) { return WriteTGACompressedRow(s, c.row.data(), (int)c.row.size(), c.bytes), 1; };
        EXPECT_EQ(capture(fn), c.want) << c.id;
    }
}

TEST(writer_errors, StreamRefusesBytes)
{
    const Image f = make_f(6);
    for (int code : {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12, 13})
        for (size_t room = 0, size = write_image(f, 6, 5, code).size(); room <= size; room++) {
            size_t left = room;
            FILE *s = fopencookie(&left, "w", {nullptr, limited_write, nullptr, nullptr});
            EXPECT_EQ(Write_Bitmap(s, f.data(), 6, 5, code), room == size) << "code " << code << " room " << room;
            fclose(s);
        }
}

TEST(writer_readers, ImageMagickLibtiffGhostscriptNetpbm)
{
    // Each decoder prints the samples top row first: ImageMagick after -auto-orient; Ghostscript one point per
    // pixel at 72 dpi; pnmtoplainpnm "P3", the sizes and maxval, then the samples.
    const std::string im = "/usr/bin/convert %s -auto-orient -depth 8 rgb:-", pnm = "/usr/bin/pnmtoplainpnm %s",
        gs = "/usr/bin/gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=bitrgb -dGrayValues=256 -r72 -dEPSCrop "
             "-sOutputFile=- %s";
    // top: the format shows its first written row on top (PPM, TIFF, EPS).
    const struct { const char *name; int code, nx; std::string decoder; bool top; } cases[] = {
        {"a.tga", 1, 6, im, false}, {"b.tga", -1, 6, im, false}, {"d.tga", 12, 6, im, false},
        {"e.tga", 11, 6, "/usr/bin/convert %s -auto-orient -depth 8 rgba:-", false},
        {"f.tga", -13, 6, "/usr/bin/convert %s -auto-orient -depth 8 rgba:-", false}, {"b.ppm", 2, 6, pnm, true},
        {"c.ppm", -2, 6, pnm, true}, {"b.bmp", -9, 4, im, false}, {"a.tif", -5, 6, im, true},
        {"b.eps", 6, 6, gs, true}, {"d.eps", -7, 100, gs, true},
    };
    for (const auto &c : cases) {
        const bool alpha = c.code == -13 || c.code == 11, grey = c.code == -7;
        Image px = make_f(c.nx, grey ? BitmapPixel{0, 0, 0, 255} : k_blue);  // grey EPS: red (85) on black
        if (alpha) px[1].a = 128;
        const std::string path = testing::TempDir() + "quorl-writer-" + c.name;
        const Bytes file = write_image(px, c.nx, 5, c.code);
        FILE *f = fopen(path.c_str(), "wb");
        ASSERT_TRUE(f && fwrite(file.data(), 1, file.size(), f) == file.size()) << path;
        fclose(f);
        char cmd[512];
        snprintf(cmd, sizeof cmd, c.decoder.c_str(), path.c_str());
        int status = -1;
        const std::string text = run(cmd, &status);
        EXPECT_EQ(status, 0) << cmd << " (scripts/setup.sh installs it)";
        Bytes out(text.begin(), c.decoder == pnm ? text.begin() : text.end());
        std::istringstream in(text.size() > 2 ? text.substr(2) : "");  // "P3", then the sizes and maxval
        for (int v, skip = 3; c.decoder == pnm && in >> v;)
            if (skip-- <= 0) out.push_back((unsigned char)v);
        for (auto &p : px)
            if (grey) p.r = p.g = p.b = (unsigned char)((p.r + p.g + p.b) / 3);
        EXPECT_EQ(out, rows_rgb(px, c.nx, 5, c.top == (c.code < 0), alpha)) << cmd;
        if (c.code == -5) {  // the fields ImageMagick does not need, as libtiff reads them
            const std::string info = run("/usr/bin/tiffinfo " + path + " 2>&1", &status);
            for (const char *field : {"Bits/Sample: 8", "Sample Format: unsigned integer", "Min Sample Value: 0",
                                      "Max Sample Value: 255", "Samples/Pixel: 3", "Rows/Strip: 5"})
                EXPECT_TRUE(status == 0 && info.find(field) != std::string::npos && info.find("arning") > info.size())
                    << field << " in\n" << info;
        }
        remove(path.c_str());
    }
}
