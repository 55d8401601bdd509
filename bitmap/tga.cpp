// bitmap/tga.cpp - Truevision TGA reader.
#include "bitmap/tga.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

struct TgaHeader {
    int idlength, maptype, imagetype;
    int maporigin, maplength, mapbits;
    int width, height, bits, descriptor;
};

int le16(const unsigned char *p)
{
    return p[0] + 256 * p[1];
}

// Reads the header; returns the number of bytes actually present (18 when
// whole). Missing bytes read as 0.
int read_header(FILE *fptr, TgaHeader *h)
{
    unsigned char b[18] = {0};
    int got = (int)fread(b, 1, sizeof b, fptr);
    h->idlength = b[0];
    h->maptype = b[1];
    h->imagetype = b[2];
    h->maporigin = le16(b + 3);
    h->maplength = le16(b + 5);
    h->mapbits = b[7];
    h->width = le16(b + 12);
    h->height = le16(b + 14);
    h->bits = b[16];
    h->descriptor = b[17];
    return got;
}

// One value of NB bytes (1 grey, 2 ARRRRRGG GGGBBBBB little-endian, 3 BGR,
// 4 BGRA) as a pixel; the same conversion as TGA_MergeBytes, fixed per loop.
template <int NB> inline BitmapPixel pixel_of(const unsigned char *v)
{
    if constexpr (NB == 1) {
        return BitmapPixel{v[0], v[0], v[0], 255};
    } else if constexpr (NB == 2) {
        return BitmapPixel{(unsigned char)((v[1] << 1) & 0xF8),
                           (unsigned char)(((v[0] >> 2) & 0x38) | (v[1] << 6)),
                           (unsigned char)(v[0] << 3), (unsigned char)(v[1] & 0x80)};
    } else if constexpr (NB == 3) {
        return BitmapPixel{v[2], v[1], v[0], 255};
    } else {
        return BitmapPixel{v[2], v[1], v[0], v[3]};
    }
}

template <int NB> void decode(BitmapPixel *dst, const unsigned char *src, long count)
{
    for (long i = 0; i < count; i++) dst[i] = pixel_of<NB>(src + i * NB);
}

BitmapPixel pixel_of(const unsigned char *v, int nb)
{
    BitmapPixel p{0, 0, 0, 0};
    TGA_MergeBytes(&p, v, nb);
    return p;
}

// The stream seen through a buffer of fixed size, so that decoding makes one
// stdio call per buffer rather than per pixel and never holds the whole file.
struct Input {
    FILE *f;
    std::vector<unsigned char> buf;
    size_t at = 0, end = 0;  // unread bytes are buf[at .. end)
    bool ended = false;

    Input(FILE *fptr, size_t size) : f(fptr), buf(size) {}
    const unsigned char *next(void) const { return buf.data() + at; }
    // Makes at least want bytes (at most the buffer's size) readable at
    // next(); returns how many are, fewer than want only at the end of file.
    size_t have(size_t want)
    {
        if (end - at >= want || ended) return end - at;
        memmove(buf.data(), buf.data() + at, end - at);
        end -= at;
        at = 0;
        while (end < want && !ended) {
            const size_t got = fread(buf.data() + end, 1, buf.size() - end, f);
            if (got == 0) ended = true;
            end += got;
        }
        return end;
    }
    // Leaves the stream just after the bytes taken, as unbuffered reads would.
    void give_back(void)
    {
        if (end > at) fseek(f, -(long)(end - at), SEEK_CUR);
        at = end;
    }
};

constexpr size_t input_size = 1 << 18;

// Where decoded pixels go: the whole bitmap, or a buffer of a few rows that
// is handed on row by row. at(pos, &room) gives the address of pixel pos and
// how many pixels from there may be written in one go (at least 1 below n).
struct Whole {
    BitmapPixel *image;
    long n;
    BitmapPixel *at(long pos, long *room) { *room = n - pos; return image + pos; }
    void finish(void) {}
};

struct Rows {
    TGA_RowFunc row;
    void *ctx;
    int width, height;
    bool flip;     // rows stored top-down: file row j is bitmap row height-1-j
    long n, cap;   // pixels in all, and in the buffer (whole rows)
    long base = 0; // the first pixel held in the buffer
    std::vector<BitmapPixel> buf;

    Rows(TGA_RowFunc f, void *c, int w, int h, bool topdown)
        : row(f), ctx(c), width(w), height(h), flip(topdown && h >= 2), n((long)w * h),
          cap((long)w * std::max(1L, 65536L / std::max(w, 1))), buf((size_t)std::min(cap, n))
    {
    }
    void hand_on(long end)
    {
        for (long p = base; p < end; p += width) {
            const int j = (int)(p / width);
            row(ctx, flip ? height - 1 - j : j, buf.data() + (p - base));
        }
    }
    BitmapPixel *at(long pos, long *room)
    {
        if (pos >= base + cap) {
            hand_on(base + cap);
            base += cap;
        }
        *room = std::min(base + cap, n) - pos;
        return buf.data() + (pos - base);
    }
    void finish(void) { hand_on(n); }
};

// Stores count copies of p from pixel pos, cut at pixel n.
template <class Out> void fill(Out &out, long pos, long count, long n, BitmapPixel p)
{
    for (long end = std::min(pos + count, n); pos < end;) {
        long room;
        BitmapPixel *dst = out.at(pos, &room);
        const long k = std::min(room, end - pos);
        std::fill(dst, dst + k, p);
        pos += k;
    }
}

// Decodes count values from src into pixels from pos on.
template <int NB, class Out> void put(Out &out, long pos, const unsigned char *src, long count)
{
    while (count > 0) {
        long room;
        BitmapPixel *dst = out.at(pos, &room);
        const long k = std::min(room, count);
        decode<NB>(dst, src, k);
        src += k * NB;
        pos += k;
        count -= k;
    }
}

// Uncompressed true-colour or grey pixels.
template <int NB, class Out> int read_plain(Input &in, Out &out, long n)
{
    for (long pos = 0; pos < n;) {
        const size_t got = in.have(NB);
        if (got < NB) return TGA_EOFPIXELS;
        const long k = std::min<long>((long)(got / NB), n - pos);
        put<NB>(out, pos, in.next(), k);
        in.at += (size_t)k * NB;
        pos += k;
    }
    return TGA_OK;
}

// Run-length packets: a header byte, then one value repeated (bit 7 set) or
// (header AND 0x7F) + 1 values. Packets reaching past n are cut at n.
template <int NB, class Out> int read_packets(Input &in, Out &out, long n)
{
    for (long pos = 0; pos < n;) {
        if (in.have(NB + 1) < NB + 1) return TGA_EOFPIXELS;
        const int head = in.next()[0];
        const BitmapPixel p = pixel_of<NB>(in.next() + 1);
        in.at += NB + 1;
        const long k = head & 0x7F;
        if (head & 0x80) {
            fill(out, pos, k + 1, n, p);
            pos += k + 1;
            continue;
        }
        fill(out, pos++, 1, n, p);
        const long whole = std::min<long>(k, (long)(in.have((size_t)k * NB) / NB));
        put<NB>(out, pos, in.next(), std::min(whole, n - pos));
        in.at += (size_t)whole * NB;
        pos += whole;
        if (whole < k) return TGA_EOFRAWPACKET;
    }
    return TGA_OK;
}

// Colour-mapped pixels: one index byte each, at or beyond the map's length
// taking its last entry; with no map every pixel is 0.
template <class Out> int read_mapped(Input &in, Out &out, long n, const std::vector<BitmapPixel> &map)
{
    BitmapPixel lut[256] = {};
    if (!map.empty())
        for (size_t c = 0; c < 256; c++) lut[c] = map[std::min(c, map.size() - 1)];
    for (long pos = 0; pos < n;) {
        const size_t got = in.have(1);
        if (got == 0) return TGA_EOFPIXELS;
        long room;
        BitmapPixel *dst = out.at(pos, &room);
        const long k = std::min<long>((long)got, std::min(room, n - pos));
        const unsigned char *idx = in.next();
        for (long i = 0; i < k; i++) dst[i] = lut[idx[i]];
        in.at += (size_t)k;
        pos += k;
    }
    return TGA_OK;
}

template <int NB, class Out> int read_pixels(int type, Input &in, Out &out, long n)
{
    return type == 2 || type == 3 ? read_plain<NB>(in, out, n) : read_packets<NB>(in, out, n);
}

// The reader after the header: checks, colour map, pixels into out. Returns
// 0 or a TGA_Read code.
template <class Out> int read_body(FILE *fptr, const TgaHeader &h, int got, Out &out)
{
    const int t = h.imagetype;
    if (t != 1 && t != 2 && t != 3 && t != 10 && t != 11) return TGA_BADTYPE;
    if (h.bits != 8 && h.bits != 16 && h.bits != 24 && h.bits != 32) return TGA_BADDEPTH;
    if (h.maptype > 1) return TGA_BADMAPTYPE;
    const long n = (long)h.width * h.height;
    // boundary: a header that declares no pixels needs nothing after its
    // 17th byte (the descriptor only orders rows)
    if (got < 18 && n > 0) return TGA_EOFPIXELS;

    // The colour map is read straight after the header, before the image ID
    // is skipped: a colour-mapped file with a non-empty ID is misread. Entries
    // of a size other than 1 to 4 bytes stay zero.
    std::vector<BitmapPixel> map;
    if (t == 1) {
        map.assign((size_t)h.maplength, BitmapPixel{0, 0, 0, 0});
        const size_t nb = (size_t)h.mapbits / 8;  // 15-bit entries count as 1 byte (grey)
        std::vector<unsigned char> bytes(nb * map.size());
        const size_t whole = bytes.empty() ? map.size() : fread(bytes.data(), 1, bytes.size(), fptr) / nb;
        for (size_t i = 0; i < whole; i++) map[i] = pixel_of(bytes.data() + i * nb, (int)nb);
        if (whole < map.size()) return TGA_EOFMAP;
    }

    long skip = 18L + h.idlength + (long)h.maptype * h.maplength * h.mapbits / 8;
    if (n > 0 && fseek(fptr, skip, SEEK_SET) != 0) return TGA_EOFPIXELS;

    if (n > 0) {
        Input in(fptr, input_size);
        int code;
        if (t == 1) {
            code = read_mapped(in, out, n, map);
        } else {
            switch (h.bits / 8) {
            case 1: code = read_pixels<1>(t, in, out, n); break;
            case 2: code = read_pixels<2>(t, in, out, n); break;
            case 3: code = read_pixels<3>(t, in, out, n); break;
            default: code = read_pixels<4>(t, in, out, n); break;
            }
        }
        if (code != TGA_OK) return code;
        in.give_back();
        out.finish();
    }
    return TGA_OK;
}

}  // namespace

void TGA_Info(FILE *fptr, int *width, int *height, int *depth)
{
    TgaHeader h;
    read_header(fptr, &h);
    *width = h.width;
    *height = h.height;
    *depth = h.bits < 128 ? h.bits : h.bits - 256;  // the byte is taken as signed
    rewind(fptr);
}

void TGA_MergeBytes(BitmapPixel *dst, const unsigned char *src, int nbytes)
{
    switch (nbytes) {
    case 1:
        dst->r = dst->g = dst->b = src[0];
        dst->a = 255;
        break;
    case 2: {
        unsigned char lo = src[0], hi = src[1];
        dst->r = (unsigned char)((hi << 1) & 0xF8);
        dst->g = (unsigned char)(((lo >> 2) & 0x38) | (hi << 6));
        dst->b = (unsigned char)(lo << 3);
        dst->a = hi & 0x80;
        break;
    }
    case 3:
        dst->r = src[2];
        dst->g = src[1];
        dst->b = src[0];
        dst->a = 255;
        break;
    case 4:
        dst->r = src[2];
        dst->g = src[1];
        dst->b = src[0];
        dst->a = src[3];
        break;
    default:
        break;
    }
}

int TGA_Read(FILE *fptr, BitmapPixel *image, int *width, int *height)
{
    TgaHeader h;
    const int got = read_header(fptr, &h);
    *width = h.width;
    *height = h.height;
    Whole out{image, (long)h.width * h.height};
    const int code = read_body(fptr, h, got, out);
    if (code != TGA_OK) return code;
    if (h.height >= 2 && (h.descriptor & 0x20)) Flip_Bitmap(image, h.width, h.height, 0);
    return TGA_OK;
}

int TGA_ReadRows(FILE *fptr, int *width, int *height, TGA_RowFunc row, void *ctx)
{
    TgaHeader h;
    const int got = read_header(fptr, &h);
    *width = h.width;
    *height = h.height;
    Rows out(row, ctx, h.width, h.height, (h.descriptor & 0x20) != 0);
    return read_body(fptr, h, got, out);
}
