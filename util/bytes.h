// util/bytes.h - binary fields written one byte at a time, for the library's
// own writers (stream.cpp, audio.cpp).
//
// be = most significant byte first, le = least significant first; n is the
// field's size in bytes (1 to 8) and v is taken modulo 2^(8n). One fputc per
// byte, so a file comes out the same on any host. Each returns 1 when every
// byte was accepted and stops at the first refused byte (0); a buffered stream
// may only report a failed write later, through ferror or fflush.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

inline int ub_put_be(FILE *f, std::uint64_t v, int n)
{
    for (int i = n - 1; i >= 0; i--)
        if (fputc((int)((v >> (8 * i)) & 0xFFu), f) == EOF) return 0;
    return 1;
}

inline int ub_put_le(FILE *f, std::uint64_t v, int n)
{
    for (int i = 0; i < n; i++)
        if (fputc((int)((v >> (8 * i)) & 0xFFu), f) == EOF) return 0;
    return 1;
}

// n characters as they stand (a four-character tag, say; no terminator).
inline int ub_put_chars(FILE *f, const char *s, std::size_t n)
{
    for (std::size_t i = 0; i < n; i++)
        if (fputc((unsigned char)s[i], f) == EOF) return 0;
    return 1;
}

// 1 when this host stores the least significant byte first.
inline int ub_host_le(void)
{
    const std::uint16_t one = 1;
    unsigned char first;
    std::memcpy(&first, &one, 1);
    return first == 1;
}
