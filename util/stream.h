// util/stream.h - binary and text stream helpers with byte-order control and
// string cleaning.
//
// Small helpers over C streams (FILE *) and NUL-terminated strings. Results
// are int 1 for success and 0 for failure unless a function says otherwise;
// nothing is printed. Functions that fill a caller's buffer state the room
// they need.
//
// Byte order (the swap argument):
//  - Read helpers take the value's bytes as they lie in the file (host order)
//    and, when swap != 0, reverse them. On failure the variable is untouched.
//  - Write helpers write most significant byte first (big-endian) when
//    swap != 0, whatever the host; with swap == 0 they write the host's order.
// On a little-endian host both mean: swap != 0 <=> the file is big-endian.
// Writers take (stream, value, swap), the float and double writers included.
#pragma once

#include <cstdio>

// ---- binary values ---------------------------------------------------------------

int ReadShort(FILE *fp, short *v, int swap);
int ReadUShort(FILE *fp, unsigned short *v, int swap);
int ReadInt(FILE *fp, int *v, int swap);
int ReadUInt(FILE *fp, unsigned int *v, int swap);
// Reads 4 bytes (never 8, whatever the size of long) and stores them in *v as
// a signed 32-bit value, so ReadLong returns what WriteLong wrote.
int ReadLong(FILE *fp, long *v, int swap);
int ReadFloat(FILE *fp, float *v, int swap);
int ReadDouble(FILE *fp, double *v, int swap);

int WriteShort(FILE *fp, short v, int swap);
int WriteUShort(FILE *fp, unsigned short v, int swap);
int WriteInt(FILE *fp, int v, int swap);
int WriteUInt(FILE *fp, unsigned int v, int swap);
// Write the low 32 bits of v as 4 bytes (never 8).
int WriteLong(FILE *fp, long v, int swap);
int WriteULong(FILE *fp, unsigned long v, int swap);
int WriteFloat(FILE *fp, float v, int swap);
int WriteDouble(FILE *fp, double v, int swap);

// ---- text input ------------------------------------------------------------------

// Reads one line into buf (room for max + 1 bytes, at least 1), NUL-terminated. A line
// feed or a carriage return ends the line and is consumed, not stored, so
// CR LF gives the line and then an empty line. Returns 1 when a line ended or
// max characters were stored (the rest stays unread; max < 1 stores nothing),
// 0 at end of file, even when characters were stored.
int ReadLine(FILE *fp, char *buf, int max);
// Stores the characters before the next stop character, NUL-terminated; the
// stop character is consumed, not stored. There is no length limit: buf must
// hold the longest stretch the file can contain, plus 1. Returns 1 when the
// stop character was met, 0 at end of file (what was read is kept).
int ReadUntil(FILE *fp, int stop, char *buf);
// Stores exactly n characters of any value, NUL-terminated (room for n + 1).
// Returns 1 when n were read, 0 at end of file (what was read is kept). For
// n < 1 returns 1 and leaves buf untouched.
int ReadString(FILE *fp, char *buf, int n);
// Reads blank-separated words (any length) until one equals target, leaving
// the stream just after it. Returns 0 when found, -1 (EOF) when the file ends.
int ReadToString(FILE *fp, const char *target);
// Discards n characters. Returns 0 when the file ends first, else 1 (1 at
// once when n < 1).
int ReadSkip(FILE *fp, int n);
// Reads up to and including the character c. Returns c, or EOF when the file
// ended first.
int SkipUntil(FILE *fp, int c);

// ---- strings ---------------------------------------------------------------------

// Removes trailing spaces (not tabs or newlines); returns the new length.
int RightTrim(char *s);
// Removes from both ends every byte that is below 33 taken as a signed 8-bit
// value (controls, the space and every byte from 128 to 255) or is 127.
void StringClean(char *s);
// ASCII case conversion in place; other bytes untouched.
void StrToLower(char *s);
void StrToUpper(char *s);
// Copies src[from..to], both inclusive, into dst, NUL-terminated (dst holds
// to - from + 2 bytes; to may be strlen(src), copying the terminator too).
// Returns 0 with dst empty when strlen(src) < to or from < 0; 1 with dst
// empty when from > to; else 1.
int IndexCopy(const char *src, char *dst, int from, int to);
// Copies the named file byte for byte to out. Returns 1 when copied; 0 when
// the file cannot be opened (nothing is written) or out refuses a write.
int EchoFile(const char *name, FILE *out);
