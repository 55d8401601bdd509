// util/random.cpp - seeded uniform, Gaussian and integer random number generators.
//
// Each step: u[i97] = u[i97] - u[j97] (mod 1), then the carry c steps down by
// cd (mod cm), and the result is u[i97] - c (mod 1). Every quantity is a
// multiple of 2^-24 below 2, so all arithmetic on doubles is exact and a step
// can be undone exactly.
#include "util/random.h"

#include <cmath>
#include <cstdint>

// The one stream of the process. u is indexed 0..96 here; i97 and j97 count
// from 1 to 97, so the entry they name is u[i97 - 1].
static double u[97];    // lag table, each entry in [0, 1)
static double c;        // carry sequence value
static double cd;       // carry decrement, 7654321 / 16777216
static double cm;       // carry modulus, 16777213 / 16777216
static int i97, j97;    // the two lag indices, 1-based
static int test = 0;    // nonzero once seeded

static const int default_ij = 1802, default_kl = 9373;

// ---- Helpers ----------------------------------------------------------------

static void ensure_seeded(void)
{
    if (!test) RandomInitialise(default_ij, default_kl);
}

// One forward step of the table and the carry; returns the new table entry.
static double step_forward(void)
{
    double uni = u[i97 - 1] - u[j97 - 1];
    if (uni <= 0.0) uni += 1.0;
    u[i97 - 1] = uni;
    if (--i97 == 0) i97 = 97;
    if (--j97 == 0) j97 = 97;
    c -= cd;
    if (c < 0.0) c += cm;
    return uni;
}

// Undoes one step_forward; returns the table entry that step had produced.
static double step_back(void)
{
    if (c >= cm) c -= cm;
    const int jj = j97 == 97 ? 0 : j97;  // 0-based index of the entry used
    const int ii = i97 == 97 ? 0 : i97;  // 0-based index of the entry changed
    const double produced = u[ii];
    double value = u[ii] + u[jj];
    if (!(value > 0.0 && value < 1.0)) value = u[ii] - 1.0 + u[jj];
    c += cd;  // may reach cm; the next backward step reduces it first
    j97 = jj + 1;
    i97 = ii + 1;
    u[ii] = value;
    return produced;
}

// ---- Uniform stream ---------------------------------------------------------

void RandomInitialise(int ij, int kl)
{
    if (ij < 0 || ij > 31328 || kl < 0 || kl > 30081) {
        ij = default_ij;
        kl = default_kl;
    }
    int i = (ij / 177) % 177 + 2;
    int j = ij % 177 + 2;
    int k = (kl / 169) % 178 + 1;
    int l = kl % 169;
    for (double &entry : u) {
        double s = 0.0, t = 0.5;
        for (int bit = 0; bit < 24; bit++) {
            const int m = (((i * j) % 179) * k) % 179;
            i = j;
            j = k;
            k = m;
            l = (53 * l + 1) % 169;
            if ((l * m) % 64 >= 32) s += t;
            t *= 0.5;
        }
        entry = s;
    }
    c = 362436.0 / 16777216.0;
    cd = 7654321.0 / 16777216.0;
    cm = 16777213.0 / 16777216.0;
    i97 = 97;
    j97 = 33;
    test = 1;
}

double RandomUniform(void)
{
    ensure_seeded();
    double uni = step_forward() - c;
    if (uni < 0.0) uni += 1.0;
    return uni;
}

double RandomGaussian(double mean, double stddev)
{
    double uu, v;
    for (;;) {
        uu = RandomUniform();
        v = RandomUniform();
        if (uu <= 0.0 || v <= 0.0) {
            uu = 1.0;  // a pair the test below always rejects
            v = 1.0;
        }
        v = 1.7156 * (v - 0.5);
        const double x = uu - 0.449871;
        const double y = fabs(v) + 0.386595;
        const double q = x * x + y * (0.196 * y - 0.25472 * x);
        if (q < 0.27597) break;  // inside the inner bound: accept at once
        if (q > 0.27846) continue;  // outside the outer bound: reject at once
        if (v * v <= -4.0 * log(uu) * uu * uu) break;
    }
    return mean + stddev * v / uu;
}

int RandomInt(int lower, int upper)
{
    // Formed in double and long long so that the widest int range cannot overflow.
    const double range = (double)upper - (double)lower + 1.0;
    return (int)((long long)(range * RandomUniform()) + lower);
}

double RandomDouble(double lower, double upper)
{
    return RandomUniform() * (upper - lower) + lower;
}

long rand24(void)
{
    return (long)(RandomUniform() * 4096.0 * 4096.0);
}

// ---- Skipping and stepping back ---------------------------------------------

void ForwardRandomUniform(long n)
{
    ensure_seeded();
    for (long s = 0; s < n; s++) step_forward();
}

void BackupRandomUniform(long n)
{
    for (long s = 0; s < n; s++) step_back();
}

double UnRandomUniform(void)
{
    const double produced = step_back();
    // The carry as the undone step left it, and the value that step returned.
    double cprev = c - cd;
    if (cprev < 0.0) cprev += cm;
    double uni = produced - cprev;
    if (uni < 0.0) uni += 1.0;
    return uni;
}

long unRand24(void)
{
    return (long)(UnRandomUniform() * 4096.0 * 4096.0);
}

// ---- Noise ------------------------------------------------------------------

double PrimeNoise1(int x)
{
    // Unsigned 32-bit arithmetic: wraps on overflow as the hash intends.
    uint32_t n = (uint32_t)x << 13;
    if (x >= 1) {
        // n times x, x times over, i.e. n * x^x mod 2^32, formed by squaring so
        // that large x cost log x steps; the product is the same.
        uint32_t base = (uint32_t)x, power = 1;
        for (uint32_t e = (uint32_t)x; e != 0; e >>= 1) {
            if (e & 1u) power *= base;
            base *= base;
        }
        n *= power;
    }
    const uint32_t r = (n * (n * n * 15731u + 789221u) + 1376312589u) & 0x7fffffffu;
    return r * -9.313225746154785e-10 + 1.0;  // 1 - r / 2^30
}
