// bitmap/bytes.h - binary fields written one byte at a time.
//
// Every multi-byte field of a file header goes out through these helpers, one
// fputc per byte, in the byte order the format demands (le = least significant
// byte first, be = most significant first). The files therefore come out the
// same on any host, and no writer packs its own structs. Values are taken
// modulo 2^16 or 2^32. Each returns 1 when every byte was accepted by the
// stream and stops at the first refused byte (0); a buffered stream may only
// report a failed write later, through ferror or fflush.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

inline int bm_put8(FILE *f, std::uint32_t v)
{
    return fputc((int)(v & 0xFFu), f) != EOF;
}

inline int bm_put16le(FILE *f, std::uint32_t v)
{
    return bm_put8(f, v) && bm_put8(f, v >> 8);
}

inline int bm_put16be(FILE *f, std::uint32_t v)
{
    return bm_put8(f, v >> 8) && bm_put8(f, v);
}

inline int bm_put32le(FILE *f, std::uint32_t v)
{
    return bm_put16le(f, v) && bm_put16le(f, v >> 16);
}

inline int bm_put32be(FILE *f, std::uint32_t v)
{
    return bm_put16be(f, v >> 16) && bm_put16be(f, v);
}

// The same 4 bytes as bm_put32be, stored in buf instead.
inline void bm_store32be(unsigned char *buf, std::uint32_t v)
{
    for (int i = 0; i < 4; i++) buf[i] = (unsigned char)(v >> (24 - 8 * i));
}

// n bytes of a character array, as they stand (no terminator).
inline int bm_putchars(FILE *f, const char *s, std::size_t n)
{
    for (std::size_t i = 0; i < n; i++)
        if (!bm_put8(f, (unsigned char)s[i])) return 0;
    return 1;
}

inline int bm_putzeros(FILE *f, std::size_t n)
{
    for (std::size_t i = 0; i < n; i++)
        if (!bm_put8(f, 0)) return 0;
    return 1;
}
