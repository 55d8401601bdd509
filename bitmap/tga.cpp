// bitmap/tga.cpp - Truevision TGA reader.
#include "bitmap/tga.h"

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

}  // namespace

void TGA_Info(FILE *fptr, int *width, int *height, int *depth)
{
    TgaHeader h;
    read_header(fptr, &h);
    *width = h.width;
    *height = h.height;
    *depth = (signed char)h.bits;
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
    int got = read_header(fptr, &h);
    *width = h.width;
    *height = h.height;

    const int t = h.imagetype;
    if (t != 1 && t != 2 && t != 3 && t != 10 && t != 11) return TGA_BADTYPE;
    if (h.bits != 8 && h.bits != 16 && h.bits != 24 && h.bits != 32) return TGA_BADDEPTH;
    if (h.maptype > 1) return TGA_BADMAPTYPE;
    if (got < 18) return TGA_EOFPIXELS;

    // The colour map is read straight after the header, before the image ID
    // is skipped: a colour-mapped file with a non-empty ID is misread. Entries
    // of a size other than 1 to 4 bytes stay zero.
    std::vector<BitmapPixel> map;
    if (t == 1) {
        map.assign((size_t)h.maplength, BitmapPixel{0, 0, 0, 0});
        const int nb = h.mapbits / 8;  // 15-bit entries count as 1 byte (grey)
        unsigned char v[32];             // entry sizes go up to 255 bits
        for (int i = 0; i < h.maplength; i++) {
            if (nb > 0 && fread(v, 1, (size_t)nb, fptr) != (size_t)nb) return TGA_EOFMAP;
            TGA_MergeBytes(&map[(size_t)i], v, nb);
        }
    }

    long skip = 18L + h.idlength + (long)h.maptype * h.maplength * h.mapbits / 8;
    if (fseek(fptr, skip, SEEK_SET) != 0) return TGA_EOFPIXELS;

    const long n = (long)h.width * h.height;
    const int nb = h.bits / 8;
    unsigned char v[5];
    long pos = 0;
    auto put = [&](const BitmapPixel &p) {
        if (pos < n) image[pos] = p;  // a packet running past the image is cut
        pos++;
    };

    while (pos < n) {
        BitmapPixel p{0, 0, 0, 0};
        if (t == 1) {
            int c = fgetc(fptr);
            if (c == EOF) return TGA_EOFPIXELS;
            if (!map.empty()) p = map[(size_t)(c < h.maplength ? c : h.maplength - 1)];
            put(p);
        } else if (t == 2 || t == 3) {
            if (fread(v, 1, (size_t)nb, fptr) != (size_t)nb) return TGA_EOFPIXELS;
            TGA_MergeBytes(&p, v, nb);
            put(p);
        } else {
            if (fread(v, 1, (size_t)nb + 1, fptr) != (size_t)nb + 1) return TGA_EOFPIXELS;
            TGA_MergeBytes(&p, v + 1, nb);
            put(p);
            int k = v[0] & 0x7F;
            if (v[0] & 0x80) {
                for (int i = 0; i < k; i++) put(p);
            } else {
                for (int i = 0; i < k; i++) {
                    if (fread(v, 1, (size_t)nb, fptr) != (size_t)nb) return TGA_EOFRAWPACKET;
                    TGA_MergeBytes(&p, v, nb);
                    put(p);
                }
            }
        }
    }

    if (h.height >= 2 && (h.descriptor & 0x20)) Flip_Bitmap(image, h.width, h.height, 0);
    return TGA_OK;
}
