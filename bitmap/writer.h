// bitmap/writer.h - writes a bitmap to an open stream as TGA, PPM, TIFF, EPS,
// BMP or raw bytes.
//
// Write_Bitmap(fptr, bm, nx, ny, format) writes the header for |format|, the
// ny rows of nx pixels, then any trailer:
//
//    code  format                                  bytes per pixel
//     1    TGA type 2, 24 bits, descriptor 0       b g r
//    11    TGA type 2, 32 bits, descriptor 8       b g r a
//    12    TGA type 10 (run-length), 24 bits       packets, b g r
//    13    TGA type 10 (run-length), 32 bits       packets, b g r a
//     2    binary PPM "P6"                         r g b
//     3    48-byte SGI-style header "WriteBitmap, kex", then interleaved r g b
//     4    raw grey, no header                     (r+g+b)/3
//     5    TIFF, big-endian, uncompressed RGB, one strip; directory after the pixels
//     6    EPS, colour, "false 3 colorimage"       6 lower-case hex digits
//     7    EPS, grey, "false 1 colorimage"         2 hex digits of (r+g+b)/3
//     8    raw r g b, no header                    r g b
//     9    BMP, 24 bits, 54-byte header            b g r
//    0, 10 and anything above 13 write nothing.
//
// Row order: a positive code writes row 0 (the bottom row, see pixels.h) first,
// a negative code writes row ny-1 first. No header records the order, so a
// picture comes out upright with a positive code in the bottom-up formats (TGA,
// BMP) and with a negative code in the top-down ones (PPM, TIFF, EPS).
//
// Rows are never padded, BMP included: a BMP whose 3*nx is not a multiple of 4
// does not follow the BMP row rule. Width and height go into 16-bit fields in
// TGA, the SGI-style header and TIFF, and are cut to 16 bits there.
//
// Every binary field is written byte by byte (bytes.h), so the output does not
// depend on the host's byte order. Nothing is printed; the stream is not closed.
#pragma once

#include <cstdint>
#include <cstdio>

#include "bitmap/pixels.h"

// Writes bm as described above and flushes the stream. Returns 1 when the
// whole file was written; 0 when nothing was written (a code that names no
// format, a negative nx or ny, or a null bitmap with pixels to write) or when
// the stream reported a write error, in which case the file is incomplete.
int Write_Bitmap(FILE *fptr, const BitmapPixel *bm, int nx, int ny, int format);

// Writes one row of width pixels as TGA run-length packets of bytes (3 or 4)
// bytes per value, b g r [a]; nothing for width < 1 or another byte count.
// Pixels are compared as whole 4-byte values, alpha included even when only 3
// bytes are written, so a row never merges pixels that differ only in alpha.
//  - A run packet, header 0x80 | (n-1), holds 2 to 128 equal pixels; a single
//    pixel left at the end of the row is a run packet of 1 (header 0x80).
//  - A raw packet, header n-1, holds 1 to 128 pixels, each differing from the
//    one before; it ends before a pixel that starts a run.
//  - The pixel a run is compared against is carried from packet to packet.
//    After a raw packet that stops at 128 pixels it is still the last pixel of
//    that packet: when the pixels after the next one equal it, the next run
//    packet carries that value over the next pixel too. Kept on purpose: an
//    all-distinct stretch of 128 followed by X V V, V equal to the 128th value,
//    comes out as 128 raw values and a run of three V.
void WriteTGACompressedRow(FILE *fptr, const BitmapPixel *row, int width, int bytes);

// Writes each pair of hex digits (either case) of hex as one byte; an odd
// final digit becomes a byte of that digit's value ("abc" gives AB 0C); an
// empty text writes nothing. Returns 0, writing nothing, when the text holds
// a character that is not a hex digit; 0 when the stream refused a byte; else 1.
int BM_WriteHexString(FILE *fptr, const char *hex);

// Writes value as 4 bytes, most significant first, and leaves the same 4
// bytes in buf. Returns 1 when the stream took all four, else 0.
int BM_WriteLongInt(FILE *fptr, unsigned char *buf, std::uint32_t value);
