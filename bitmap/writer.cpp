// bitmap/writer.cpp - writes bitmaps as TGA, PPM, TIFF, EPS, BMP and raw files.
//
// Index:
//   SECTION helpers    pixel values and digits
//   SECTION headers    one function per header or trailer
//   SECTION public     Write_Bitmap, WriteTGACompressedRow, BM_WriteHexString,
//                      BM_WriteLongInt
//
// Binary fields go out through bytes.h; the text headers of PPM and EPS go
// through fprintf. Uses only pixels.h and the C library.
#include "bitmap/writer.h"

#include <cassert>
#include <cstddef>

#include "bitmap/bytes.h"

namespace {

// ---- SECTION helpers ---------------------------------------------------------

// How Write_Bitmap lays out the pixels of one format.
enum Layout {
    L_NONE,     // the code names no format
    L_BGR,      // b g r
    L_BGRA,     // b g r a
    L_RGB,      // r g b
    L_GREY,     // (r+g+b)/3
    L_HEX_RGB,  // "%02x%02x%02x" with the EPS line-break rule
    L_HEX_GREY, // "%02x" of (r+g+b)/3, same rule
    L_RLE3,     // TGA run-length packets, 3-byte values
    L_RLE4      // TGA run-length packets, 4-byte values
};

// Layout of each code 0..13.
constexpr Layout k_layout[14] = {
    L_NONE,      // 0
    L_BGR,       // 1  TGA 24
    L_RGB,       // 2  PPM
    L_RGB,       // 3  48-byte header
    L_GREY,      // 4  raw grey
    L_RGB,       // 5  TIFF
    L_HEX_RGB,   // 6  EPS colour
    L_HEX_GREY,  // 7  EPS grey
    L_RGB,       // 8  raw RGB
    L_BGR,       // 9  BMP
    L_NONE,      // 10
    L_BGRA,      // 11 TGA 32
    L_RLE3,      // 12 TGA run-length 24
    L_RLE4,      // 13 TGA run-length 32
};

// EPS hex lines end when this many characters are on the line (or nx, below).
constexpr int k_eps_line = 72;

int grey(BitmapPixel p)
{
    return (p.r + p.g + p.b) / 3;
}

// One TGA value: b g r, then a when bytes is 4.
void put_tga_value(FILE *f, BitmapPixel p, int bytes)
{
    bm_put8(f, p.b);
    bm_put8(f, p.g);
    bm_put8(f, p.r);
    if (bytes == 4) bm_put8(f, p.a);
}

void put_hex_byte(FILE *f, int v)
{
    static const char digits[] = "0123456789abcdef";
    bm_put8(f, (unsigned char)digits[(v >> 4) & 15]);
    bm_put8(f, (unsigned char)digits[v & 15]);
}

// Value of a hex digit, or -1.
int hex_value(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// ---- SECTION headers ---------------------------------------------------------

// 18 bytes: no ID, no colour map, origin 0,0. The 32-bit descriptor 8 declares
// eight alpha bits; bit 5 stays clear (bottom-left origin) either way.
void tga_header(FILE *f, int nx, int ny, int type, int bits)
{
    bm_put8(f, 0);      // ID length
    bm_put8(f, 0);      // colour map type
    bm_put8(f, (std::uint32_t)type);
    bm_putzeros(f, 9);  // colour map fields, x and y origin
    bm_put16le(f, (std::uint32_t)nx);
    bm_put16le(f, (std::uint32_t)ny);
    bm_put8(f, (std::uint32_t)bits);
    bm_put8(f, bits == 32 ? 8 : 0);
}

// The SGI image header's fields (magic 474, verbatim, 1 byte per channel,
// 3 dimensions, sizes, 3 channels, min 0, max 255, a reserved word), with the
// name cut to 16 characters and 8 zero bytes: 48 bytes in all. The pixels that
// follow are interleaved, not stored as channel planes.
void sgi_header(FILE *f, int nx, int ny)
{
    bm_put16be(f, 474);
    bm_put8(f, 0);  // storage: verbatim
    bm_put8(f, 1);  // bytes per channel
    bm_put16be(f, 3);
    bm_put16be(f, (std::uint32_t)nx);
    bm_put16be(f, (std::uint32_t)ny);
    bm_put16be(f, 3);    // channels
    bm_put32be(f, 0);    // minimum value
    bm_put32be(f, 255);  // maximum value
    bm_put32be(f, 0);    // reserved
    bm_putchars(f, "WriteBitmap, kex", 16);
    bm_putzeros(f, 8);
}

// "MM", 42, then the offset of the directory, which follows the S pixel bytes.
void tiff_header(FILE *f, std::uint32_t S)
{
    bm_putchars(f, "MM", 2);
    bm_put16be(f, 42);
    bm_put32be(f, S + 8);
}

// The directory at S + 8: 14 entries of 12 bytes, the next-directory offset 0
// and the four three-short value arrays at S + 182, 188, 194 and 200. The file
// ends at S + 206.
void tiff_directory(FILE *f, int nx, int ny, std::uint32_t S)
{
    enum Base { ZERO, NX, NY, SIZE };  // what an entry's value adds to add
    static constexpr struct {
        std::uint16_t tag, type;  // type 3 SHORT, 4 LONG
        std::uint32_t count;
        Base base;
        std::uint32_t add;
    } entries[14] = {
        {0x100, 3, 1, NX, 0},      // image width
        {0x101, 3, 1, NY, 0},      // image length
        {0x102, 3, 3, SIZE, 182},  // bits per sample -> 8,8,8
        {0x103, 3, 1, ZERO, 1},    // compression: none
        {0x106, 3, 1, ZERO, 2},    // photometric: RGB
        {0x111, 4, 1, ZERO, 8},    // strip offsets: 8
        {0x112, 3, 1, ZERO, 1},    // orientation 1
        {0x115, 3, 1, ZERO, 3},    // samples per pixel 3
        {0x116, 3, 1, NY, 0},      // rows per strip
        {0x117, 4, 1, SIZE, 0},    // strip byte counts
        {0x118, 3, 3, SIZE, 188},  // min sample -> 0,0,0
        {0x119, 3, 3, SIZE, 194},  // max sample -> 255,255,255
        {0x11c, 3, 1, ZERO, 1},    // planar configuration: chunky
        {0x153, 3, 3, SIZE, 200},  // sample format -> 1,1,1
    };
    const std::uint32_t base[4] = {0, (std::uint32_t)nx, (std::uint32_t)ny, S};

    bm_put16be(f, 14);
    for (const auto &e : entries) {
        const std::uint32_t value = base[e.base] + e.add;
        bm_put16be(f, e.tag);
        bm_put16be(f, e.type);
        bm_put32be(f, e.count);
        if (e.type == 3 && e.count == 1) {  // one short sits left-justified in the 4 bytes
            bm_put16be(f, value);
            bm_put16be(f, 0);
        } else {  // a long, or the offset of the value array
            bm_put32be(f, value);
        }
    }
    bm_put32be(f, 0);  // no further directory
    static constexpr std::uint16_t arrays[4] = {8, 0, 255, 1};  // bits, min, max, unsigned format
    for (std::uint16_t v : arrays)
        for (int k = 0; k < 3; k++) bm_put16be(f, v);
}

// The image is scaled to nx by ny points, so one pixel is one point; the
// matrix puts the first row written at the top. No showpage: the file is
// meant to be placed inside another document.
void eps_prologue(FILE *f, int nx, int ny, int colour)
{
    fprintf(f, "%%!PS-Adobe-3.0 EPSF-3.0\n");
    fprintf(f, "%%%%Creator: Created from Raskel by Elvander\n");
    fprintf(f, "%%%%BoundingBox: %d %d %d %d\n", 0, 0, nx, ny);
    fprintf(f, "%%%%LanguageLevel: 2\n");
    fprintf(f, "%%%%Pages: 1\n");
    fprintf(f, "%%%%DocumentData: Clean7Bit\n");
    fprintf(f, "%d %d scale\n", nx, ny);
    fprintf(f, "%d %d 8 [%d 0 0 -%d 0 %d]\n", nx, ny, nx, ny, ny);
    if (colour) {
        fprintf(f, "{currentfile 3 %d mul string readhexstring pop} bind\n", nx);
        fprintf(f, "false 3 colorimage\n");
    } else {
        fprintf(f, "{currentfile %d string readhexstring pop} bind\n", nx);
        fprintf(f, "false 1 colorimage\n");
    }
}

// 54 bytes, little-endian; sizes count unpadded rows of 3*nx bytes.
void bmp_header(FILE *f, int nx, int ny)
{
    std::uint32_t image = (std::uint32_t)nx * (std::uint32_t)ny * 3u;
    bm_putchars(f, "BM", 2);
    bm_put32le(f, image + 54);  // file size
    bm_putzeros(f, 4);          // reserved
    bm_put32le(f, 54);          // offset of the pixels
    bm_put32le(f, 40);          // info header size
    bm_put32le(f, (std::uint32_t)nx);
    bm_put32le(f, (std::uint32_t)ny);
    bm_put16le(f, 1);   // planes
    bm_put16le(f, 24);  // bits per pixel
    bm_put32le(f, 0);   // no compression
    bm_put32le(f, image);
    bm_put32le(f, 1);   // horizontal resolution
    bm_put32le(f, 1);   // vertical resolution
    bm_put32le(f, 0);   // colours used
    bm_put32le(f, 0);   // important colours
}

// Writes the header of code (1..13, not 10); the TIFF and EPS trailers come
// after the rows, in Write_Bitmap.
void write_header(FILE *f, int nx, int ny, int code, std::uint32_t tiff_size)
{
    switch (code) {
    case 1: tga_header(f, nx, ny, 2, 24); break;
    case 11: tga_header(f, nx, ny, 2, 32); break;
    case 12: tga_header(f, nx, ny, 10, 24); break;
    case 13: tga_header(f, nx, ny, 10, 32); break;
    case 2: fprintf(f, "P6\n%d %d\n255\n", nx, ny); break;
    case 3: sgi_header(f, nx, ny); break;
    case 5: tiff_header(f, tiff_size); break;
    case 6: eps_prologue(f, nx, ny, 1); break;
    case 7: eps_prologue(f, nx, ny, 0); break;
    case 9: bmp_header(f, nx, ny); break;
    default: break;  // 4 and 8 are headerless
    }
}

}  // namespace

// ---- SECTION public ----------------------------------------------------------

int Write_Bitmap(FILE *fptr, const BitmapPixel *bm, int nx, int ny, int format)
{
    assert(fptr && "Write_Bitmap needs an open stream");
    long code = format < 0 ? -(long)format : format;  // no overflow for INT_MIN
    if (code > 13 || k_layout[code] == L_NONE) return 0;
    if (nx < 0 || ny < 0) return 0;
    if (!bm && nx > 0 && ny > 0) return 0;

    const Layout layout = k_layout[code];
    // TIFF sizes are 32-bit offsets; wrap rather than overflow for huge images.
    const std::uint32_t tiff_size = (std::uint32_t)nx * (std::uint32_t)ny * 3u;
    write_header(fptr, nx, ny, (int)code, tiff_size);

    int eps_count = 0;  // characters on the current hex line, carried across rows
    const int eps_step = layout == L_HEX_RGB ? 6 : 2;
    for (int i = 0; i < ny && !ferror(fptr); i++) {
        const BitmapPixel *row = bm + (std::size_t)(format > 0 ? i : ny - 1 - i) * nx;
        if (layout == L_RLE3 || layout == L_RLE4) {
            WriteTGACompressedRow(fptr, row, nx, layout == L_RLE4 ? 4 : 3);
            continue;
        }
        for (int x = 0; x < nx; x++) {
            const BitmapPixel p = row[x];
            switch (layout) {
            case L_BGR: put_tga_value(fptr, p, 3); break;
            case L_BGRA: put_tga_value(fptr, p, 4); break;
            case L_RGB:
                bm_put8(fptr, p.r);
                bm_put8(fptr, p.g);
                bm_put8(fptr, p.b);
                break;
            case L_GREY: bm_put8(fptr, (std::uint32_t)grey(p)); break;
            case L_HEX_RGB:
            case L_HEX_GREY:
                if (layout == L_HEX_RGB) {
                    put_hex_byte(fptr, p.r);
                    put_hex_byte(fptr, p.g);
                    put_hex_byte(fptr, p.b);
                } else {
                    put_hex_byte(fptr, grey(p));
                }
                // The count runs on across rows, so narrow images break every
                // few pixels rather than at row ends.
                eps_count += eps_step;
                if (eps_count >= k_eps_line || eps_count >= nx) {
                    bm_put8(fptr, '\n');
                    eps_count = 0;
                }
                break;
            default: break;
            }
        }
    }

    if (code == 5) tiff_directory(fptr, nx, ny, tiff_size);
    if (code == 6 || code == 7) fprintf(fptr, "\n%%%%EOF\n");
    fflush(fptr);  // a buffered write error shows up here, not at the caller's fclose
    return !ferror(fptr);
}

void WriteTGACompressedRow(FILE *fptr, const BitmapPixel *row, int width, int bytes)
{
    if (width < 1 || (bytes != 3 && bytes != 4)) return;
    assert(row && "WriteTGACompressedRow needs a row");

    BitmapPixel c = row[0];  // reference pixel, loaded once and carried (see header)
    int s = 0;               // first pixel not yet written
    while (s < width) {
        if (s + 1 == width) {
            // boundary: one pixel left. It is written as itself, also when c is
            // stale, since there is no following pixel to carry c over.
            bm_put8(fptr, 0x80);
            put_tga_value(fptr, row[s], bytes);
            break;
        }
        if (Same_BitmapPixel(row[s + 1], c)) {
            int n = 2;
            while (n < 128 && s + n < width && Same_BitmapPixel(row[s + n], c)) n++;
            bm_put8(fptr, 0x80u | (std::uint32_t)(n - 1));
            put_tga_value(fptr, c, bytes);
            s += n;
            if (s < width) c = row[s];  // the pixel that ended the run (or the 129th equal one)
            continue;
        }
        // Raw packet: c tracks the last pixel taken. A next pixel equal to it
        // means that pixel starts a run, so it is given back (n - 1) and stays
        // in c for the run packet. Stopping at 128 leaves c on the packet's
        // last pixel, not on the pixel at the new s: the kept quirk.
        int n = 1;
        while (n < 128 && s + n < width) {
            if (Same_BitmapPixel(row[s + n], c)) {
                n--;
                break;
            }
            c = row[s + n];
            n++;
        }
        bm_put8(fptr, (std::uint32_t)(n - 1));
        for (int k = 0; k < n; k++) put_tga_value(fptr, row[s + k], bytes);
        s += n;
    }
}

int BM_WriteHexString(FILE *fptr, const char *hex)
{
    assert(fptr && hex);
    for (const char *p = hex; *p; p++)
        if (hex_value(*p) < 0) return 0;
    for (const char *p = hex; *p; p += 2) {
        int v = hex_value(p[0]);
        if (p[1] == '\0') return bm_put8(fptr, (std::uint32_t)v);  // odd final digit
        if (!bm_put8(fptr, (std::uint32_t)(v * 16 + hex_value(p[1])))) return 0;
    }
    return 1;
}

int BM_WriteLongInt(FILE *fptr, unsigned char *buf, std::uint32_t value)
{
    assert(fptr && buf);
    bm_store32be(buf, value);
    return bm_put32be(fptr, value);
}
