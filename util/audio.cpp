// util/audio.cpp - AIFF, AU and WAVE sample writers.
#include "util/audio.h"

#include <cmath>
#include <cstdint>

#include "util/bytes.h"

namespace {

// ---- SECTION byte output ------------------------------------------------------

// A stream and whether every byte so far went out.
struct Out {
    FILE *f;
    bool ok;
};

// Each records a refused byte in o.ok; the bytes go out through bytes.h.
void put_be(Out &o, uint64_t v, int n)
{
    if (!ub_put_be(o.f, v, n)) o.ok = false;
}

void put_le(Out &o, uint64_t v, int n)
{
    if (!ub_put_le(o.f, v, n)) o.ok = false;
}

void put_tag(Out &o, const char *tag)
{
    if (!ub_put_chars(o.f, tag, 4)) o.ok = false;
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
    for (long i = 0; i < n; i++) put_be(o, to16((x[i] - s.mid) * full_scale / s.amp), 2);
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
    put_be(o, bytes + 46, 4);
    put_tag(o, "AIFF");
    put_tag(o, "COMM");
    put_be(o, 18, 4);
    put_be(o, 1, 2);  // channels
    put_be(o, (uint32_t)n, 4);
    put_be(o, 16, 2);  // bits per sample
    put_be(o, 0x4000u | exponent, 2);  // sign 0 and the biased exponent
    put_be(o, 0xAC44ull << 48, 8);     // the mantissa, integer bit first
    put_tag(o, "SSND");
    put_be(o, bytes + 8, 4);
    put_be(o, 0, 4);  // offset
    put_be(o, 0, 4);  // block size
    put_normalised(o, samples, n);
    return finish(o);
}

int Write_AU(FILE *fptr, const double *samples, long n, int rate)
{
    if (bad_args(fptr, samples, n)) return 0;
    Out o = {fptr, true};
    put_tag(o, ".snd");
    put_be(o, 24, 4);  // header size
    put_be(o, (uint32_t)(2 * (uint32_t)n), 4);  // data size, modulo 2^32
    put_be(o, 3, 4);  // 16-bit linear
    put_be(o, (uint32_t)rate, 4);
    put_be(o, 1, 4);  // channels
    put_normalised(o, samples, n);
    return finish(o);
}

int Write_WAVE(FILE *fptr, const float *samples, int n, int rate)
{
    if (bad_args(fptr, samples, n)) return 0;
    const uint32_t bytes = 2 * (uint32_t)n;
    Out o = {fptr, true};
    put_tag(o, "RIFF");
    put_le(o, bytes + 36, 4);
    put_tag(o, "WAVE");
    put_tag(o, "fmt ");
    put_le(o, 16, 4);
    put_le(o, 1, 2);  // PCM
    put_le(o, 1, 2);  // channels
    put_le(o, (uint32_t)rate, 4);
    put_le(o, (uint32_t)(2 * (uint32_t)rate), 4);  // bytes per second
    put_le(o, 2, 2);                   // block align
    put_le(o, 16, 2);                  // bits per sample
    put_tag(o, "data");
    put_le(o, bytes, 4);
    for (int i = 0; i < n; i++) {
        float x = samples[i];
        if (x < -1.0f) x = -1.0f;
        if (x > 1.0f) x = 1.0f;
        put_le(o, to16(x * 32760.0f), 2);  // scaled in single precision, never rescaled
    }
    return finish(o);
}
