// util/stream.cpp - binary and text stream helpers with byte-order control and
// string cleaning.
#include "util/stream.h"

#include <cctype>
#include <cstdint>
#include <cstring>
#include <string>

#include "util/bytes.h"

namespace {

// Reads size bytes (at most 8) into buf, reversing them when swap is set.
int read_raw(FILE *fp, unsigned char *buf, size_t size, int swap)
{
    if (fread(buf, 1, size, fp) != size) return 0;
    if (swap) {
        for (size_t i = 0; i < size / 2; i++) {
            const unsigned char t = buf[i];
            buf[i] = buf[size - 1 - i];
            buf[size - 1 - i] = t;
        }
    }
    return 1;
}

// Reads a value of type T; *v is only written after a complete read.
template <typename T>
int read_value(FILE *fp, T *v, int swap)
{
    unsigned char b[sizeof(T)];
    if (!read_raw(fp, b, sizeof(T), swap)) return 0;
    memcpy(v, b, sizeof(T));
    return 1;
}

// Writes the low size bytes of bits: big-endian when swap is set, else in
// the host's order.
int write_raw(FILE *fp, uint64_t bits, int size, int swap)
{
    return swap || !ub_host_le() ? ub_put_be(fp, bits, size) : ub_put_le(fp, bits, size);
}

bool is_junk(char c)
{
    return (signed char)c < 33 || c == 127;
}

}  // namespace

// ---- binary values ---------------------------------------------------------------

int ReadShort(FILE *fp, short *v, int swap)
{
    return read_value(fp, v, swap);
}

int ReadUShort(FILE *fp, unsigned short *v, int swap)
{
    return read_value(fp, v, swap);
}

int ReadInt(FILE *fp, int *v, int swap)
{
    return read_value(fp, v, swap);
}

int ReadUInt(FILE *fp, unsigned int *v, int swap)
{
    return read_value(fp, v, swap);
}

int ReadLong(FILE *fp, long *v, int swap)
{
    int32_t w;
    if (!read_value(fp, &w, swap)) return 0;
    *v = w;
    return 1;
}

int ReadFloat(FILE *fp, float *v, int swap)
{
    return read_value(fp, v, swap);
}

int ReadDouble(FILE *fp, double *v, int swap)
{
    return read_value(fp, v, swap);
}

int WriteShort(FILE *fp, short v, int swap)
{
    return write_raw(fp, (uint16_t)v, 2, swap);
}

int WriteUShort(FILE *fp, unsigned short v, int swap)
{
    return WriteShort(fp, (short)v, swap);
}

int WriteInt(FILE *fp, int v, int swap)
{
    return write_raw(fp, (uint32_t)v, 4, swap);
}

int WriteUInt(FILE *fp, unsigned int v, int swap)
{
    return WriteInt(fp, (int)v, swap);
}

int WriteLong(FILE *fp, long v, int swap)
{
    return write_raw(fp, (uint32_t)v, 4, swap);
}

int WriteULong(FILE *fp, unsigned long v, int swap)
{
    return WriteLong(fp, (long)v, swap);
}

int WriteFloat(FILE *fp, float v, int swap)
{
    uint32_t bits;
    memcpy(&bits, &v, 4);
    return write_raw(fp, bits, 4, swap);
}

int WriteDouble(FILE *fp, double v, int swap)
{
    uint64_t bits;
    memcpy(&bits, &v, 8);
    return write_raw(fp, bits, 8, swap);
}

// ---- text input ------------------------------------------------------------------

int ReadLine(FILE *fp, char *buf, int max)
{
    int n = 0;
    buf[0] = '\0';
    while (n < max) {
        const int c = fgetc(fp);
        if (c == EOF) return 0;
        if (c == '\n' || c == '\r') return 1;
        buf[n++] = (char)c;
        buf[n] = '\0';
    }
    return 1;
}

int ReadUntil(FILE *fp, int stop, char *buf)
{
    int n = 0;
    buf[0] = '\0';
    for (;;) {
        const int c = fgetc(fp);
        if (c == EOF) return 0;
        if (c == stop) return 1;
        buf[n++] = (char)c;
        buf[n] = '\0';
    }
}

int ReadString(FILE *fp, char *buf, int n)
{
    if (n < 1) return 1;
    const size_t got = fread(buf, 1, (size_t)n, fp);
    buf[got] = '\0';
    return got == (size_t)n;
}

int ReadToString(FILE *fp, const char *target)
{
    // Word by word as "%s" would split them, but without a length limit.
    std::string word;
    for (;;) {
        int c;
        do c = fgetc(fp);
        while (c != EOF && isspace(c));
        if (c == EOF) return EOF;
        word.clear();
        while (c != EOF && !isspace(c)) {
            word += (char)c;
            c = fgetc(fp);
        }
        if (c != EOF) ungetc(c, fp);  // leave the separator unread, as "%s" does
        if (word == target) return 0;
    }
}

int ReadSkip(FILE *fp, int n)
{
    for (int i = 0; i < n; i++)
        if (fgetc(fp) == EOF) return 0;
    return 1;
}

int SkipUntil(FILE *fp, int c)
{
    int got;
    do got = fgetc(fp);
    while (got != EOF && got != c);
    return got;
}

// ---- strings ---------------------------------------------------------------------

int RightTrim(char *s)
{
    size_t n = strlen(s);
    while (n > 0 && s[n - 1] == ' ') s[--n] = '\0';
    return (int)n;
}

void StringClean(char *s)
{
    size_t n = strlen(s);
    while (n > 0 && is_junk(s[n - 1])) s[--n] = '\0';
    size_t lead = 0;
    while (lead < n && is_junk(s[lead])) lead++;
    memmove(s, s + lead, n - lead + 1);  // one shift instead of one per character
}

void StrToLower(char *s)
{
    for (; *s; s++)
        if (*s >= 'A' && *s <= 'Z') *s = (char)(*s - 'A' + 'a');
}

void StrToUpper(char *s)
{
    for (; *s; s++)
        if (*s >= 'a' && *s <= 'z') *s = (char)(*s - 'a' + 'A');
}

int IndexCopy(const char *src, char *dst, int from, int to)
{
    dst[0] = '\0';
    if ((long)strlen(src) < to) return 0;
    if (from > to) return 1;
    if (from < 0) return 0;  // would read before the string
    const size_t n = (size_t)to - (size_t)from + 1;
    memcpy(dst, src + from, n);
    dst[n] = '\0';
    return 1;
}

int EchoFile(const char *name, FILE *out)
{
    FILE *fp = fopen(name, "rb");
    if (!fp) return 0;
    unsigned char buf[4096];
    size_t got;
    int ok = 1;
    while (ok && (got = fread(buf, 1, sizeof buf, fp)) > 0) ok = fwrite(buf, 1, got, out) == got;
    fclose(fp);
    return ok;
}
