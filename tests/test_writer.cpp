// tests/test_writer.cpp - the image writer.
//
// Focus: the exact bytes of every header and of the run-length packets, the
// row order chosen by the sign of the format code, write errors, round trips
// through our own TGA reader, and files decoded by programs nobody here wrote
// (ImageMagick, Ghostscript, netpbm). Case ids are printed
// on failure. The test image is a 6x5 'F' (no symmetry) in red on blue, so
// that row flips and R<->B swaps show.
#include <gtest/gtest.h>

#include <unistd.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "bitmap/pixels.h"
#include "capture.h"
#include "bitmap/tga.h"
#include "bitmap/writer.h"

namespace {

using Image = std::vector<BitmapPixel>;

constexpr BitmapPixel k_red = {255, 0, 0, 255}, k_blue = {0, 0, 255, 255};

// The 'F' as it looks, top row first; wider images are padded with background.
const char *const k_f_art[5] = {"RRRRR.", "R.....", "RRRR..", "R.....", "R....."};

Image make_f(int nx, BitmapPixel fg = k_red, BitmapPixel bg = k_blue)
{
    Image im((size_t)nx * 5);
    for (int y = 0; y < 5; y++)
        for (int x = 0; x < nx; x++)
            im[(size_t)y * nx + x] = x < 6 && k_f_art[4 - y][x] == 'R' ? fg : bg;
    return im;
}

Bytes tail(const Bytes &b, size_t from, size_t n)
{
    return Bytes(b.begin() + (long)from, b.begin() + (long)(from + n));
}

Bytes write_image(const Image &im, int nx, int ny, int code, int *result = nullptr)
{
    return capture([&](FILE *f) { return Write_Bitmap(f, im.data(), nx, ny, code); }, result);
}

// r g b (a) of the rows of im, either the first row given first or the last.
Bytes rows_rgb(const Image &im, int nx, int ny, bool last_first, bool alpha)
{
    Bytes out;
    for (int i = 0; i < ny; i++) {
        int y = last_first ? ny - 1 - i : i;
        for (int x = 0; x < nx; x++) {
            const BitmapPixel &p = im[(size_t)y * nx + x];
            out.insert(out.end(), {p.r, p.g, p.b});
            if (alpha) out.push_back(p.a);
        }
    }
    return out;
}

// ---- SECTION hex strings and long ints ---------------------------------------

TEST(writer_bytes, HexStringAndLongInt)
{
    static const struct { const char *id, *text, *want; int ok; } cases[] = {
        {"hex-1.2", "4d4D002a", "4d 4d 00 2a", 1}, {"hex-1.3", "abc", "ab 0c", 1},  // odd final digit stands alone
        {"hex-1.5", "00ff0g", "", 0},    // a non-digit writes nothing at all
    };
    for (const auto &c : cases) {
        int ok = -1;
        Bytes got = capture([&](FILE *f) { return BM_WriteHexString(f, c.text); }, &ok);
        EXPECT_EQ(got, hx(c.want)) << c.id;
        EXPECT_EQ(ok, c.ok) << c.id;
    }
    unsigned char buf[4] = {9, 9, 9, 9};
    EXPECT_EQ(capture([&](FILE *f) { return BM_WriteLongInt(f, buf, 0xFFFFFFFEu); }), hx("fffffffe"));
    EXPECT_EQ(Bytes(buf, buf + 4), hx("fffffffe"));
}

// ---- SECTION run-length packets ----------------------------------------------

// Letters name pixels; 'a' differs from 'A' in alpha only.
BitmapPixel letter(char c)
{
    switch (c) {
    case 'A': return {10, 20, 30, 255};
    case 'a': return {10, 20, 30, 0};
    case 'B': return {40, 50, 60, 255};
    case 'C': return {70, 80, 90, 200};
    default: return {1, 2, 3, 4};  // 'X'
    }
}

// "#81 B": a header byte, then pixel values by letter (b g r [a]).
Bytes packets(const std::string &text, int bytes)
{
    Bytes out;
    for (size_t i = 0; i < text.size(); i++) {
        if (text[i] == ' ') continue;
        if (text[i] == '#') {
            out.push_back((unsigned char)std::stoi(text.substr(i + 1, 2), nullptr, 16));
            i += 2;
            continue;
        }
        BitmapPixel p = letter(text[i]);
        out.insert(out.end(), {p.b, p.g, p.r});
        if (bytes == 4) out.push_back(p.a);
    }
    return out;
}

std::string rep(const std::string &s, int n)
{
    std::string out;
    while (n-- > 0) out += s;
    return out;
}

TEST(writer_rle, Packets)
{
    const std::string ab64 = rep("AB", 64);  // 128 pixels, no two neighbours equal
    const struct { std::string id, row; int bytes; std::string want; } cases[] = {
        {"rle-1.1", rep("A", 300), 3, "#FF A #FF A #AB A"}, {"rle-1.2", "ABC", 3, "#02 ABC"},
        {"rle-1.3", "ABB", 3, "#00 A #81 B"}, {"rle-1.5", "A", 3, "#80 A"}, {"rle-1.6", "AAB", 4, "#81 A #80 B"},
        {"rle-1.8", "Aa", 3, "#01 Aa"},  // alpha tells them apart though it is not written
        {"rle-1.9", "AAaa", 4, "#81 A #81 a"},
        // 128 raw, then X V V with V the 128th value: the run carries V over X.
        {"rle-2.1", ab64 + "XBB", 3, "#7F " + ab64 + " #82 B"},
        // A lone last pixel after 128 raw ones is written as itself.
        {"rle-2.2", ab64 + "X", 3, "#7F " + ab64 + " #80 X"},
        {"rle-2.3", rep("ABC", 43) + "AB", 3, "#7F " + rep("ABC", 42) + "AB #02 CAB"},
    };
    for (const auto &c : cases) {
        std::vector<BitmapPixel> row;
        for (char ch : c.row) row.push_back(letter(ch));
        Bytes got =
            capture([&](FILE *f) { return WriteTGACompressedRow(f, row.data(), (int)row.size(), c.bytes), 0; });
        EXPECT_EQ(got, packets(c.want, c.bytes)) << c.id;
    }
}

// ---- SECTION headers, byte for byte ------------------------------------------

TEST(writer_headers, ExactBytes)
{
    const Image f = make_f(6);
    static const struct { const char *id; int code; const char *head; size_t size; } cases[] = {
        {"hdr-1.1", 1, "00 00 02 000000000000000000 0600 0500 18 00", 18 + 90},
        {"hdr-1.2", 11, "00 00 02 000000000000000000 0600 0500 20 08", 18 + 120},
        {"hdr-1.3", 12, "00 00 0a 000000000000000000 0600 0500 18 00", 0},
        {"hdr-1.4", 13, "00 00 0a 000000000000000000 0600 0500 20 08", 0},
        {"hdr-1.5", 2, "50 36 0a 36 20 35 0a 32 35 35 0a", 11 + 90},  // "P6\n6 5\n255\n"
        {"hdr-1.6", 3,
         "01da 00 01 0003 0006 0005 0003 00000000 000000ff 00000000"
         "5772697465426974 6d61702c206b6578"  // "WriteBitmap, kex"
         "0000000000000000",
         48 + 90},
        {"hdr-1.7", 9,
         "424d 90000000 00000000 36000000 28000000 06000000 05000000 0100 1800"
         "00000000 5a000000 01000000 01000000 00000000 00000000",
         54 + 90},
        {"hdr-1.8", 5, "4d4d002a 00000062", 8 + 90 + 198},
        {"hdr-1.9", 4, "", 30},
        {"hdr-1.10", 8, "", 90},
    };
    for (const auto &c : cases) {
        Bytes head = hx(c.head);
        for (int code : {c.code, -c.code}) {
            int ok = 0;
            Bytes got = write_image(f, 6, 5, code, &ok);
            EXPECT_EQ(ok, 1) << c.id;
            ASSERT_GE(got.size(), head.size()) << c.id;
            EXPECT_EQ(tail(got, 0, head.size()), head) << c.id << " code " << code;
            if (c.size) {
                EXPECT_EQ(got.size(), c.size) << c.id << " code " << code;
            }
        }
    }
    // Pixel bytes: bottom row "R....." first for a positive code, so red then
    // blue; b g r in TGA and BMP, r g b elsewhere.
    EXPECT_EQ(tail(write_image(f, 6, 5, 1), 18, 6), hx("0000ff ff0000"));
    EXPECT_EQ(tail(write_image(f, 6, 5, 11), 18, 8), hx("0000ffff ff0000ff"));
    EXPECT_EQ(tail(write_image(f, 6, 5, 9), 54, 6), hx("0000ff ff0000"));
    EXPECT_EQ(tail(write_image(f, 6, 5, 2), 11, 6), hx("ff0000 0000ff"));
    EXPECT_EQ(tail(write_image(f, 6, 5, -2), 11 + 12, 6), hx("ff0000 0000ff"));  // top row
    EXPECT_EQ(tail(write_image(f, 6, 5, 3), 48, 90), write_image(f, 6, 5, 8));
    // A negative code writes the same rows in reverse order.
    Bytes up = write_image(f, 6, 5, 1), down = write_image(f, 6, 5, -1);
    for (int i = 0; i < 5; i++)
        EXPECT_EQ(tail(down, 18 + 18 * (size_t)i, 18), tail(up, 18 + 18 * (size_t)(4 - i), 18)) << i;
    for (int code : {0, 10, -10, 14, -14, 99, INT_MIN}) {  // no such format: nothing written
        int ok = -1;
        EXPECT_TRUE(write_image(f, 6, 5, code, &ok).empty() && ok == 0) << code;
    }
    // Grey is (r+g+b)/3, truncated.
    const Image g = {{10, 20, 40, 0}, {255, 255, 255, 0}, {1, 1, 0, 0}};
    EXPECT_EQ(write_image(g, 3, 1, 4), hx("17 ff 00"));
}

TEST(writer_headers, TiffDirectory)
{
    const Bytes tiff = write_image(make_f(6), 6, 5, -5);  // S = 90, directory at 98
    const Bytes dir = hx("000e"
                         "0100 0003 00000001 0006 0000"
                         "0101 0003 00000001 0005 0000"
                         "0102 0003 00000003 00000110"  // S + 182
                         "0103 0003 00000001 0001 0000"
                         "0106 0003 00000001 0002 0000"
                         "0111 0004 00000001 00000008"
                         "0112 0003 00000001 0001 0000"
                         "0115 0003 00000001 0003 0000"
                         "0116 0003 00000001 0005 0000"
                         "0117 0004 00000001 0000005a"  // S
                         "0118 0003 00000003 00000116"  // S + 188
                         "0119 0003 00000003 0000011c"  // S + 194
                         "011c 0003 00000001 0001 0000"
                         "0153 0003 00000003 00000122"  // S + 200
                         "00000000");
    ASSERT_EQ(tiff.size(), 296u);
    EXPECT_EQ(tail(tiff, 98, dir.size()), dir);
    EXPECT_EQ(tail(tiff, 272, 24), hx("000800080008 000000000000 00ff00ff00ff 000100010001"));
    EXPECT_EQ(tail(tiff, 8, 3), hx("ff0000"));  // top-left pixel first for a negative code

    const Bytes one = write_image(make_f(1), 1, 1, 5);
    EXPECT_EQ(one.size(), 209u);
    EXPECT_EQ(tail(one, 4, 4), hx("0000000b"));
}

const char k_eps_colour[] =
    "%!PS-Adobe-3.0 EPSF-3.0\n%%Creator: Created from Raskel by Elvander\n"
    "%%BoundingBox: 0 0 6 5\n%%LanguageLevel: 2\n%%Pages: 1\n%%DocumentData: Clean7Bit\n"
    "6 5 scale\n6 5 8 [6 0 0 -5 0 5]\n{currentfile 3 6 mul string readhexstring pop} bind\n"
    "false 3 colorimage\n";

TEST(writer_headers, EpsPrologueAndLines)
{
    auto text = [](const Image &im, int nx, int ny, int code) {
        Bytes b = write_image(im, nx, ny, code);
        return std::string(b.begin(), b.end());
    };
    const std::string colour = text(make_f(6), 6, 5, -6);
    EXPECT_EQ(colour.substr(0, sizeof k_eps_colour - 1), k_eps_colour);
    EXPECT_EQ(colour.substr(sizeof k_eps_colour - 1, 14), "ff0000\nff0000\n");  // top row first
    EXPECT_EQ(colour.substr(colour.size() - 14), "0000ff\n\n%%EOF\n");          // no showpage

    // Pixels per hex line: the count runs on across rows and breaks at 72
    // characters or at nx characters, whichever comes first.
    static const struct { const char *id; int code, nx, ny, per_line; } cases[] = {
        {"eps-1.2", 7, 6, 5, 3}, {"eps-1.3", 6, 20, 2, 4}, {"eps-1.5", 7, 100, 2, 36}, {"eps-1.6", 7, 5, 3, 3},
    };
    for (const auto &c : cases) {
        std::string want;
        for (int i = 1; i <= c.nx * c.ny; i++)
            want += std::string(c.code == 6 ? "ff0000" : "55") + (i % c.per_line ? "" : "\n");
        const std::string got = text(Image((size_t)c.nx * c.ny, k_red), c.nx, c.ny, c.code);
        EXPECT_EQ(got.substr(got.find("colorimage\n") + 11), want + "\n%%EOF\n") << c.id;
    }
    const Image g = {{10, 20, 40, 0}, {255, 255, 255, 0}, {1, 1, 0, 0}};
    EXPECT_NE(text(g, 3, 1, 7).find("{currentfile 3 string readhexstring pop} bind\nfalse 1 colorimage\n"
                                    "17ff\n00\n%%EOF\n"),
              std::string::npos);
}

// ---- SECTION write errors -----------------------------------------------------

// A stream that accepts `room` bytes and then refuses.
ssize_t limited_write(void *cookie, const char *, size_t n)
{
    size_t *room = (size_t *)cookie;
    size_t take = n < *room ? n : *room;
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
            const cookie_io_functions_t io = {nullptr, limited_write, nullptr, nullptr};
            FILE *s = fopencookie(&left, "w", io);
            ASSERT_NE(s, nullptr);
            int ok = Write_Bitmap(s, f.data(), 6, 5, code);
            fclose(s);
            EXPECT_EQ(ok, room == size ? 1 : 0) << "code " << code << " room " << room;
        }
    }
}

// ---- SECTION round trips through the TGA reader -------------------------------

// The pixels TGA_Read gives back for file, which must hold an nx by ny image.
Image read_tga(Bytes file, int nx, int ny)
{
    Image back((size_t)nx * ny);
    FILE *f = fmemopen(file.data(), file.size(), "rb");
    int w = 0, h = 0;
    EXPECT_EQ(TGA_Read(f, back.data(), &w, &h), 0);
    fclose(f);
    EXPECT_EQ(w, nx);
    EXPECT_EQ(h, ny);
    return back;
}

TEST(writer_roundtrip, OwnTgaReader)
{
    std::mt19937 rng(20240501u);  // fixed: runs of 1 to 4 from a small palette
    auto runs = [&](int nx, int ny) {
        const BitmapPixel pal[3] = {k_red, k_blue, {7, 8, 9, 100}};
        Image im((size_t)nx * ny);
        for (size_t i = 0; i < im.size();) {
            BitmapPixel p = pal[rng() % 3];
            for (unsigned n = 1 + rng() % 4; n-- > 0 && i < im.size();) im[i++] = p;
        }
        return im;
    };
    const struct { const char *id; int nx, ny; Image im; } images[] = {
        {"rt-1", 6, 5, make_f(6)}, {"rt-2", 300, 4, runs(300, 4)}, {"rt-3", 1, 1, make_f(1)},
    };
    for (const auto &c : images) {
        for (int code : {1, -1, 11, -11, 12, -12, 13, -13}) {
            const Image back = read_tga(write_image(c.im, c.nx, c.ny, code), c.nx, c.ny);
            const bool alpha = code == 11 || code == -11 || code == 13 || code == -13;
            EXPECT_EQ(rows_rgb(back, c.nx, c.ny, false, alpha),
                      rows_rgb(c.im, c.nx, c.ny, code < 0, alpha))
                << c.id << " code " << code;
        }
    }
    // The carried reference pixel: X after 128 raw pixels comes back as V.
    Image quirk, want;
    for (char ch : rep("AB", 64) + "XBB") quirk.push_back(letter(ch));
    for (char ch : rep("AB", 64) + "BBB") want.push_back(letter(ch));
    EXPECT_EQ(rows_rgb(read_tga(write_image(quirk, 131, 1, 13), 131, 1), 131, 1, false, true),
              rows_rgb(want, 131, 1, false, true));
}

// ---- SECTION real readers -----------------------------------------------------

// Programs from the Debian packages that scripts/setup.sh installs.
bool have(const char *prog)
{
    return access(prog, X_OK) == 0;
}

struct TempDir {
    std::string path = (std::filesystem::temp_directory_path() / "quorl-writer-XXXXXX").string();
    TempDir() { path = mkdtemp(path.data()) ? path : ""; }
    ~TempDir() { if (!path.empty()) std::filesystem::remove_all(path); }
};

std::string save(const TempDir &dir, const char *name, const Bytes &b)
{
    std::string path = dir.path + "/" + name;
    if (FILE *f = fopen(path.c_str(), "wb")) {
        fwrite(b.data(), 1, b.size(), f);
        fclose(f);
    }
    return path;
}

// The samples of a plain "P3" file, after its width, height and maxval.
Bytes plain_samples(const std::string &text)
{
    std::istringstream in(text.substr(2));
    Bytes out;
    int v, skip = 3;
    while (in >> v)
        if (skip-- <= 0) out.push_back((unsigned char)v);
    return out;
}

TEST(writer_readers, ImageMagickGhostscriptNetpbm)
{
    TempDir dir;
    ASSERT_FALSE(dir.path.empty());
    // How each decoder is called; it prints the samples top row first.
    // ImageMagick keeps a TGA's bottom-left origin as a tag until -auto-orient;
    // Ghostscript renders one point per pixel at 72 dpi, as bare r g b bytes.
    static const struct { const char *prog, *cmd; } decoders[] = {
        {"/usr/bin/convert", "/usr/bin/convert %s -auto-orient -depth 8 rgb:-"},
        {"/usr/bin/convert", "/usr/bin/convert %s -auto-orient -depth 8 rgba:-"},
        {"/usr/bin/gs", "/usr/bin/gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=bitrgb -dGrayValues=256 "
                        "-r72 -dEPSCrop -sOutputFile=- %s"},
        {"/usr/bin/pnmtoplainpnm", "/usr/bin/pnmtoplainpnm %s"},
    };
    enum { IM_RGB, IM_RGBA, GS, NETPBM };
    // top: the written first row is shown on top (PPM, TIFF, EPS).
    static const struct { const char *id, *name; int code, nx, decoder; bool top, grey; } cases[] = {
        {"read-1.2", "b.tga", -1, 6, IM_RGB, false, false}, {"read-1.4", "d.tga", 12, 6, IM_RGB, false, false},
        {"read-1.6", "f.tga", -13, 6, IM_RGBA, false, false}, {"read-2.2", "b.ppm", 2, 6, NETPBM, true, false},
        {"read-3.2", "b.bmp", -9, 4, IM_RGB, false, false}, {"read-4.1", "a.tif", -5, 6, IM_RGB, true, false},
        {"read-5.2", "b.eps", 6, 6, GS, true, false}, {"read-5.4", "d.eps", -7, 100, GS, true, true},
    };
    int tried = 0;
    std::string missing;
    for (const auto &c : cases) {
        const auto &d = decoders[c.decoder];
        if (!have(d.prog)) {
            if (missing.find(d.prog) == std::string::npos) missing += std::string(" ") + d.prog;
            continue;
        }
        tried++;
        // Grey EPS: red (grey 85) on black; 32-bit TGA: one half-transparent pixel.
        Image im = c.grey ? make_f(c.nx, k_red, {0, 0, 0, 255}) : make_f(c.nx);
        if (c.decoder == IM_RGBA) im[1].a = 128;
        std::string path = save(dir, c.name, write_image(im, c.nx, 5, c.code));
        char cmd[512];
        snprintf(cmd, sizeof cmd, d.cmd, path.c_str());
        int status = -1;
        const std::string text = run(cmd, &status);
        EXPECT_EQ(status, 0) << c.id << ": " << cmd;
        const Bytes out = c.decoder == NETPBM ? plain_samples(text) : Bytes(text.begin(), text.end());
        if (c.grey)
            for (auto &p : im) p.r = p.g = p.b = (unsigned char)((p.r + p.g + p.b) / 3);
        // Upright when the first row written is the one the format shows on top.
        const bool top_row_first = c.top == (c.code < 0);
        EXPECT_EQ(out, rows_rgb(im, c.nx, 5, top_row_first, c.decoder == IM_RGBA))
            << c.id << ": " << cmd;
    }
    if (!missing.empty())
        GTEST_SKIP() << tried << " cases ran; not installed (scripts/setup.sh):" << missing;
}

}  // namespace
