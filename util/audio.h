// util/audio.h - AIFF, AU and WAVE sample writers.
//
// Each writer puts one channel of 16-bit linear PCM samples to an open stream:
// the header, then the n samples. Every field is written byte by byte in the
// order its format demands (AIFF and AU big-endian, WAVE little-endian), so the
// output does not depend on the host. The stream is flushed, not closed.
//
// AIFF and AU take doubles of any range and normalise them: the midpoint of
// the smallest and largest sample becomes 0 and the extremes become +-32760
// (truncated toward zero); a constant signal becomes silence. Infinite samples
// go to the nearest extreme and NaN to 0; neither affects the range. WAVE takes
// floats in -1..1 and scales them by 32760 without normalising: below -1 counts
// as -1, above 1 as 1, NaN as 0.
//
// n = 0 writes the header alone. Each returns 1 when everything was written;
// 0, writing nothing, when n is negative, the samples are missing, or the file
// would pass the 4 GiB its 32-bit sizes can describe; 0 also on a write error.
#pragma once

#include <cstdio>

// AIFF with an 18-byte COMM chunk. The rate field is a fixed 80-bit pattern:
// 22050 and 11025 are recorded as such, every other rate as 44100.
int Write_AIFF(FILE *fptr, const double *samples, long n, int rate);
// Sun/NeXT AU: 24-byte header, encoding 3 (16-bit linear), the rate as given.
int Write_AU(FILE *fptr, const double *samples, long n, int rate);
// RIFF WAVE, PCM format 1, with a 16-byte fmt chunk.
int Write_WAVE(FILE *fptr, const float *samples, int n, int rate);
