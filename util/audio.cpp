// util/audio.cpp - AIFF, AU and WAVE sample writers.
#include "util/audio.h"

#include <cmath>
#include <cstdint>

namespace {

// ---- SECTION byte output ------------------------------------------------------

// A stream and whether every byte so far went out.
struct Out {
    FILE *f;
    bool ok;
};

void put8(Out &o, uint32_t v)
{
    if (fputc((int)(v & 0xFF), o.f) == EOF) o.ok = false;
}

void put16be(Out &o, uint32_t v)
{
    put8(o, v >> 8);
    put8(o, v);
}

void put32be(Out &o, uint32_t v)
{
    put16be(o, v >> 16);
    put16be(o, v);
}

void put16le(Out &o, uint32_t v)
{
    put8(o, v);
    put8(o, v >> 8);
}

void put32le(Out &o, uint32_t v)
{
    put16le(o, v);
    put16le(o, v >> 16);
}

void put_tag(Out &o, const char *tag)
{
    for (int i = 0; i < 4; i++) put8(o, (unsigned char)tag[i]);
}

int finish(Out &o)
{
    if (fflush(o.f) != 0 || ferror(o.f)) o.ok = false;
    return o.ok ? 1 : 0;
}

// ---- SECTION samples ----------------------------------------------------------

constexpr double full_scale = 32760.0;  // the extremes, a little inside the 16-bit range
constexpr long max_samples = 0x7FFFFFE0;  // 2n plus any header stays below 4 GiB

// A scaled sample truncated toward zero into the 16-bit range; NaN gives 0.
uint32_t to16(double y)
{
    if (!(y == y)) return 0;
    if (y > full_scale) y = full_scale;
    if (y < -full_scale) y = -full_scale;
    return (uint32_t)(int32_t)y & 0xFFFF;  // two's complement bit pattern
}

// The normalisation of Write_AIFF and Write_AU: mid goes to 0, the extremes to
// +-32760. Reads no sample when n = 0.
struct Scale {
    double mid, amp;
};

Scale sample_scale(const double *x, long n)
{
    double lo = INFINITY, hi = -INFINITY;
    for (long i = 0; i < n; i++) {
        if (!std::isfinite(x[i])) continue;  // an infinity would flatten everything else
        if (x[i] < lo) lo = x[i];
        if (x[i] > hi) hi = x[i];
    }
    if (lo > hi) lo = hi = 0.0;  // no finite sample at all
    if (!(lo < hi)) {            // a constant signal becomes silence
        lo -= 1.0;
        hi += 1.0;
    }
    const double mid = lo / 2.0 + hi / 2.0;  // (lo + hi) / 2 without overflow near the double limit
    return {mid, fmax(fabs(lo - mid), fabs(hi - mid))};
}

void put_normalised(Out &o, const double *x, long n)
{
    const Scale s = sample_scale(x, n);
    for (long i = 0; i < n; i++) put16be(o, to16((x[i] - s.mid) * full_scale / s.amp));
}

bool bad_args(const FILE *fptr, const void *samples, long n)
{
    return !fptr || n < 0 || n > max_samples || (n > 0 && !samples);
}

}  // namespace

// ---- SECTION writers ----------------------------------------------------------

int Write_AIFF(FILE *fptr, const double *samples, long n, int rate)
{
    if (bad_args(fptr, samples, n)) return 0;
    // The 80-bit extended rate is one of three fixed patterns, not a conversion:
    // 0x400E AC44 is 44100, 0x400D 22050 and 0x400C 11025.
    const uint32_t exponent = rate == 22050 ? 0x0D : (rate == 11025 ? 0x0C : 0x0E);
    const uint32_t bytes = 2 * (uint32_t)n;
    Out o = {fptr, true};
    put_tag(o, "FORM");
    put32be(o, bytes + 46);
    put_tag(o, "AIFF");
    put_tag(o, "COMM");
    put32be(o, 18);
    put16be(o, 1);  // channels
    put32be(o, (uint32_t)n);
    put16be(o, 16);  // bits per sample
    put8(o, 0x40);
    put8(o, exponent);
    put8(o, 0xAC);
    put8(o, 0x44);
    for (int i = 0; i < 6; i++) put8(o, 0);
    put_tag(o, "SSND");
    put32be(o, bytes + 8);
    put32be(o, 0);  // offset
    put32be(o, 0);  // block size
    put_normalised(o, samples, n);
    return finish(o);
}

int Write_AU(FILE *fptr, const double *samples, long n, int rate)
{
    if (bad_args(fptr, samples, n)) return 0;
    Out o = {fptr, true};
    put_tag(o, ".snd");
    put32be(o, 24);  // header size
    put32be(o, 2 * (uint32_t)n);
    put32be(o, 3);  // 16-bit linear
    put32be(o, (uint32_t)rate);
    put32be(o, 1);  // channels
    put_normalised(o, samples, n);
    return finish(o);
}

int Write_WAVE(FILE *fptr, const float *samples, int n, int rate)
{
    if (bad_args(fptr, samples, n)) return 0;
    const uint32_t bytes = 2 * (uint32_t)n;
    Out o = {fptr, true};
    put_tag(o, "RIFF");
    put32le(o, bytes + 36);
    put_tag(o, "WAVE");
    put_tag(o, "fmt ");
    put32le(o, 16);
    put16le(o, 1);  // PCM
    put16le(o, 1);  // channels
    put32le(o, (uint32_t)rate);
    put32le(o, 2 * (uint32_t)rate);  // bytes per second
    put16le(o, 2);                   // block align
    put16le(o, 16);                  // bits per sample
    put_tag(o, "data");
    put32le(o, bytes);
    for (int i = 0; i < n; i++) {
        float x = samples[i];
        if (x < -1.0f) x = -1.0f;
        if (x > 1.0f) x = 1.0f;
        put16le(o, to16(x * 32760.0f));  // scaled in single precision, never rescaled
    }
    return finish(o);
}
