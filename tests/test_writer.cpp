// tests/test_writer.cpp - the image writer.
//
// Focus: every format decoded by a program nobody here wrote (ImageMagick,
// libtiff, Ghostscript, netpbm), round trips through our TGA reader, the bytes
// no outside reader checks (run-length packets, the 48-byte header, raw grey),
// codes that name no format, and write errors. The test image is a 6x5 'F' (no
// symmetry) in red on blue, so that row flips and R<->B swaps show.
#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <filesystem>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "bitmap/tga.h"
#include "bitmap/writer.h"
#include "capture.h"

namespace {

using Image = std::vector<BitmapPixel>;

constexpr BitmapPixel k_red = {255, 0, 0, 255}, k_blue = {0, 0, 255, 255};

// The 'F', top row first; wider images are padded with background.
Image make_f(int nx, BitmapPixel fg = k_red, BitmapPixel bg = k_blue)
{
    const char *const art[5] = {"RRRRR.", "R.....", "RRRR..", "R.....", "R....."};
    Image im((size_t)nx * 5);
    for (int y = 0; y < 5; y++)
        for (int x = 0; x < nx; x++) im[(size_t)y * nx + x] = x < 6 && art[4 - y][x] == 'R' ? fg : bg;
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

BitmapPixel letter(char c)  // 'a' differs from 'A' in alpha only
{
    static const BitmapPixel px[5] = {{10, 20, 30, 255}, {10, 20, 30, 0}, {40, 50, 60, 255}, {70, 80, 90, 200}, {1, 2, 3, 4}};
    return px[std::string("AaBCX").find(c)];
}

Image row_of(const std::string &s)
{
    Image row;
    for (char ch : s) row.push_back(letter(ch));
    return row;
}

std::string rep(const std::string &s, int n) { return n > 0 ? s + rep(s, n - 1) : ""; }

}  // namespace

TEST(writer_bytes, WithoutAnOutsideReader)
{
    // The 48-byte header: magic 474, verbatim, 1 byte per channel, 3 dimensions,
    // 6 x 5 x 3, min 0, max 255, reserved, the name, 8 zero bytes.
    const Image f = make_f(6);
    const Bytes sgi = write_image(f, 6, 5, 3);
    EXPECT_EQ(Bytes(sgi.begin(), sgi.begin() + 48),
              hx("01da 00 01 0003 0006 0005 0003 00000000 000000ff 00000000 "
                 "5772697465426974 6d61702c206b6578 0000000000000000"));
    EXPECT_EQ(Bytes(sgi.begin() + 48, sgi.end()), write_image(f, 6, 5, 8));  // then raw r g b
    EXPECT_EQ(write_image(f, 6, 5, 8), rows_rgb(f, 6, 5, false, false));
    EXPECT_EQ(write_image({{10, 20, 40, 0}, {255, 255, 255, 0}, {1, 1, 0, 0}}, 3, 1, 4), hx("17 ff 00"));  // (r+g+b)/3

    int ok = -1;
    for (int code : {0, 10, -10, 14, -14, 99, INT_MIN})  // no such format: nothing written
        EXPECT_TRUE(write_image(f, 6, 5, code, &ok).empty() && ok == 0) << code;
    EXPECT_TRUE(write_image(f, -6, 5, 1, &ok).empty() && ok == 0);

    static const struct { const char *text, *want; int ok; } hex[] = {
        {"4d4D002a", "4d 4d 00 2a", 1}, {"abc", "ab 0c", 1}, {"00ff0g", "", 0}};  // odd last digit; a non-digit
    for (const auto &c : hex)
        EXPECT_TRUE(capture([&](FILE *s) { return BM_WriteHexString(s, c.text); }, &ok) == hx(c.want) && ok == c.ok) << c.text;
    unsigned char buf[4] = {9, 9, 9, 9};
    EXPECT_EQ(capture([&](FILE *s) { return BM_WriteLongInt(s, buf, 0xFFFFFFFEu); }), hx("fffffffe"));
    EXPECT_EQ(Bytes(buf, buf + 4), hx("fffffffe"));
}

TEST(writer_rle, Packets)
{
    auto packets = [](const std::string &text, int bytes) {  // "#81 B": a header byte, then pixels by letter
        Bytes out;
        std::istringstream in(text);
        for (std::string w; in >> w;) {
            if (w[0] == '#') out.push_back((unsigned char)std::stoi(w.substr(1), nullptr, 16));
            for (char ch : w[0] == '#' ? std::string() : w) {
                const BitmapPixel p = letter(ch);
                out.insert(out.end(), {p.b, p.g, p.r, p.a});
                out.resize(out.size() - (bytes == 3));
            }
        }
        return out;
    };
    const std::string ab64 = rep("AB", 64);  // 128 pixels, no two neighbours equal
    const struct { std::string id, row; int bytes; std::string want; } cases[] = {
        {"rle-1.1", rep("A", 300), 3, "#FF A #FF A #AB A"}, {"rle-1.2", "ABC", 3, "#02 ABC"},
        {"rle-1.3", "ABB", 3, "#00 A #81 B"}, {"rle-1.5", "A", 3, "#80 A"}, {"rle-1.6", "AAB", 4, "#81 A #80 B"},
        {"rle-1.8", "Aa", 3, "#01 Aa"},  // alpha tells them apart though it is not written
        {"rle-1.9", "AAaa", 4, "#81 A #81 a"},
        // 128 raw, then X V V with V the 128th value: the run carries V over X.
        {"rle-2.1", ab64 + "XBB", 3, "#7F " + ab64 + " #82 B"},
        {"rle-2.2", ab64 + "X", 3, "#7F " + ab64 + " #80 X"},  // a lone last pixel is itself
        {"rle-2.3", rep("ABC", 43) + "AB", 3, "#7F " + rep("ABC", 42) + "AB #02 CAB"},
    };
    for (const auto &c : cases) {
        const Image row = row_of(c.row);
        const Bytes got = capture([&](FILE *f) { return WriteTGACompressedRow(f, row.data(), (int)row.size(), c.bytes), 0; });
        EXPECT_EQ(got, packets(c.want, c.bytes)) << c.id;
    }
}

// A stream that accepts `room` bytes and then refuses.
static ssize_t limited_write(void *cookie, const char *, size_t n)
{
    size_t *room = (size_t *)cookie;
    const size_t take = n < *room ? n : *room;
    *room -= take;
    return (ssize_t)take;
}

TEST(writer_errors, StreamRefusesBytes)
{
    const Image f = make_f(6);
    for (int code : {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12, 13}) {
        const size_t size = write_image(f, 6, 5, code).size();
        for (size_t room = 0; room <= size; room++) {
            size_t left = room;
            FILE *s = fopencookie(&left, "w", {nullptr, limited_write, nullptr, nullptr});
            ASSERT_NE(s, nullptr);
            const int ok = Write_Bitmap(s, f.data(), 6, 5, code);
            fclose(s);
            EXPECT_EQ(ok, room == size ? 1 : 0) << "code " << code << " room " << room;
        }
    }
}

TEST(writer_roundtrip, OwnTgaReader)
{
    std::mt19937 rng(20240501u);  // runs of 1 to 4 from a small palette
    Image runs(300 * 4);
    const BitmapPixel pal[3] = {k_red, k_blue, {7, 8, 9, 100}};
    for (size_t i = 0; i < runs.size();)
        for (unsigned n = 1 + rng() % 4, p = rng() % 3; n-- > 0 && i < runs.size();) runs[i++] = pal[p];
    Image quirk = row_of(rep("AB", 64) + "XBB");  // the carried pixel: X comes back as B
    const struct { const char *id; int nx, ny; Image im; bool quirk; } images[] = {
        {"rt-1", 6, 5, make_f(6), false}, {"rt-2", 300, 4, runs, false}, {"rt-3", 1, 1, make_f(1), false},
        {"rt-4", 131, 1, quirk, true},
    };
    for (const auto &c : images)
        for (int code : {1, -1, 11, -11, 12, -12, 13, -13}) {
            Bytes file = write_image(c.im, c.nx, c.ny, code);
            Image back((size_t)c.nx * c.ny);
            FILE *f = fmemopen(file.data(), file.size(), "rb");
            int w = 0, h = 0;
            EXPECT_EQ(TGA_Read(f, back.data(), &w, &h), 0) << c.id << " code " << code;
            fclose(f);
            EXPECT_TRUE(w == c.nx && h == c.ny) << c.id;
            const bool alpha = code % 2 != 0 && code != 1 && code != -1;
            Image want = c.im;
            if (c.quirk && abs(code) >= 12) want = row_of(rep("AB", 64) + "BBB");
            EXPECT_EQ(rows_rgb(back, c.nx, c.ny, false, alpha), rows_rgb(want, c.nx, c.ny, code < 0, alpha))
                << c.id << " code " << code;
        }
}

TEST(writer_readers, ImageMagickLibtiffGhostscriptNetpbm)
{
    const std::string dir = testing::TempDir();
    // How each decoder is called (the path goes in for %s); it prints the
    // samples top row first. ImageMagick keeps a TGA's bottom-left origin as a
    // tag until -auto-orient; Ghostscript renders one point per pixel at 72 dpi.
    static const char *const decoders[] = {
        "/usr/bin/convert %s -auto-orient -depth 8 rgb:-", "/usr/bin/convert %s -auto-orient -depth 8 rgba:-",
        "/usr/bin/gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=bitrgb -dGrayValues=256 -r72 -dEPSCrop "
        "-sOutputFile=- %s",
        "/usr/bin/pnmtoplainpnm %s",
    };
    enum { IM_RGB, IM_RGBA, GS, NETPBM };
    // top: the format shows its first written row on top (PPM, TIFF, EPS).
    static const struct { const char *name; int code, nx, decoder; bool top, grey; } cases[] = {
        {"b.tga", -1, 6, IM_RGB, false, false}, {"c.tga", 1, 6, IM_RGB, false, false},
        {"d.tga", 12, 6, IM_RGB, false, false}, {"f.tga", -13, 6, IM_RGBA, false, false},
        {"g.tga", 11, 6, IM_RGBA, false, false}, {"b.ppm", 2, 6, NETPBM, true, false},
        {"c.ppm", -2, 6, NETPBM, true, false}, {"b.bmp", -9, 4, IM_RGB, false, false},
        {"a.tif", -5, 6, IM_RGB, true, false}, {"b.eps", 6, 6, GS, true, false},
        {"d.eps", -7, 100, GS, true, true},
    };
    for (const auto &c : cases) {
        // Grey EPS: red (grey 85) on black; 32-bit TGA: one half-transparent pixel.
        Image im = c.grey ? make_f(c.nx, k_red, {0, 0, 0, 255}) : make_f(c.nx);
        if (c.decoder == IM_RGBA) im[1].a = 128;
        const std::string path = dir + "quorl-writer-" + c.name;
        const Bytes file = write_image(im, c.nx, 5, c.code);
        FILE *f = fopen(path.c_str(), "wb");
        ASSERT_TRUE(f && fwrite(file.data(), 1, file.size(), f) == file.size()) << path;
        fclose(f);
        char cmd[512];
        snprintf(cmd, sizeof cmd, decoders[c.decoder], path.c_str());
        int status = -1;
        const std::string text = run(cmd, &status);
        EXPECT_EQ(status, 0) << cmd << " (scripts/setup.sh installs it)";
        Bytes out(text.begin(), text.end());
        if (c.decoder == NETPBM) {  // "P3", width, height, maxval, then the samples
            std::istringstream in(text.substr(2));
            out.clear();
            for (int v, skip = 3; in >> v;)
                if (skip-- <= 0) out.push_back((unsigned char)v);
        }
        if (c.grey)
            for (auto &p : im) p.r = p.g = p.b = (unsigned char)((p.r + p.g + p.b) / 3);
        EXPECT_EQ(out, rows_rgb(im, c.nx, 5, c.top == (c.code < 0), c.decoder == IM_RGBA)) << cmd;
        if (c.code == -5) {  // the fields ImageMagick does not need, as libtiff reads them
            const std::string info = run("/usr/bin/tiffinfo " + path + " 2>&1", &status);
            EXPECT_EQ(status, 0) << info;
            for (const char *field : {"Bits/Sample: 8", "Sample Format: unsigned integer", "Rows/Strip: 5",
                                      "Min Sample Value: 0", "Max Sample Value: 255", "Samples/Pixel: 3"})
                EXPECT_NE(info.find(field), std::string::npos) << field << " not in\n" << info;
            EXPECT_EQ(info.find("arning"), std::string::npos) << info;
        }
        std::filesystem::remove(path);
    }
}
