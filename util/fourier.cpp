// util/fourier.cpp - Fourier transforms and correlation. Uses only util/complexq.h.
#include "util/fourier.h"

#include <cmath>
#include <new>
#include <vector>

namespace {

const double dft_pi = 3.141592654;  // the direct transform's value of pi

double mean(const double *x, int n)
{
    double s = 0.0;
    for (int i = 0; i < n; i++) s += x[i];
    return s / n;
}

// lag reduced to 0..n-1, so that (i + lag) mod n never indexes outside x.
int wrap_lag(int lag, int n)
{
    int l = lag % n;
    return l < 0 ? l + n : l;
}

}  // namespace

// ---- Transforms -------------------------------------------------------------

int FFT(int dir, int m, double *x, double *y)
{
    if (m < 0 || m > 30) return 1;  // nothing that fits in memory
    const int n = 1 << m;

    // Bit-reversal reordering.
    int j = 0;
    for (int i = 0; i < n - 1; i++) {
        if (i < j) {
            double t = x[i];
            x[i] = x[j];
            x[j] = t;
            t = y[i];
            y[i] = y[j];
            y[j] = t;
        }
        int k = n / 2;
        while (k <= j) {
            j -= k;
            k /= 2;
        }
        j += k;
    }

    // Butterflies. (c1, c2) is the unit root of the stage, halved in angle
    // each stage: cos(a/2) = sqrt((1 + cos a)/2), |sin(a/2)| = sqrt((1 - cos a)/2).
    double c1 = -1.0, c2 = 0.0;
    int l2 = 1;
    for (int stage = 0; stage < m; stage++) {
        const int l1 = l2;
        l2 <<= 1;
        double u1 = 1.0, u2 = 0.0;
        for (int jj = 0; jj < l1; jj++) {
            for (int i = jj; i < n; i += l2) {
                const int i1 = i + l1;
                const double t1 = u1 * x[i1] - u2 * y[i1];
                const double t2 = u1 * y[i1] + u2 * x[i1];
                x[i1] = x[i] - t1;
                y[i1] = y[i] - t2;
                x[i] += t1;
                y[i] += t2;
            }
            const double z = u1 * c1 - u2 * c2;
            u2 = u1 * c2 + u2 * c1;
            u1 = z;
        }
        c2 = sqrt((1.0 - c1) / 2.0);
        if (dir == 1) c2 = -c2;  // forward: negative exponent
        c1 = sqrt((1.0 + c1) / 2.0);
    }

    if (dir == 1) {
        for (int i = 0; i < n; i++) {
            x[i] /= n;
            y[i] /= n;
        }
    }
    return 1;
}

int DFT(int dir, int n, double *x, double *y)
{
    if (n < 0) return 0;
    std::vector<double> re, im;
    try {
        re.resize(n);
        im.resize(n);
    } catch (const std::bad_alloc &) {
        return 0;
    }
    const double sign = dir == 1 ? 1.0 : -1.0;  // forward: negative exponent
    for (int k = 0; k < n; k++) {
        const double arg = -sign * 2.0 * dft_pi * k / n;
        double sr = 0.0, si = 0.0;
        for (int i = 0; i < n; i++) {
            const double cs = cos(i * arg), sn = sin(i * arg);
            sr += x[i] * cs - y[i] * sn;
            si += x[i] * sn + y[i] * cs;
        }
        re[k] = sr;
        im[k] = si;
    }
    for (int i = 0; i < n; i++) {
        x[i] = dir == 1 ? re[i] / n : re[i];
        y[i] = dir == 1 ? im[i] / n : im[i];
    }
    return 1;
}

int FFT2D(Complex **c, int nx, int ny, int dir)
{
    // Both sizes are checked before anything is changed, so that a refusal
    // never leaves the grid transformed along one direction only.
    int mx, my, twopm;
    if (nx < 2 || !Powerof2(nx, &mx, &twopm)) return 0;
    if (ny < 2 || !Powerof2(ny, &my, &twopm)) return 0;
    std::vector<double> re, im;
    try {
        re.resize(nx > ny ? nx : ny);
        im.resize(re.size());
    } catch (const std::bad_alloc &) {
        return 0;
    }

    for (int j = 0; j < ny; j++) {
        for (int i = 0; i < nx; i++) {
            re[i] = c[i][j].real;
            im[i] = c[i][j].imag;
        }
        FFT(dir, mx, re.data(), im.data());
        for (int i = 0; i < nx; i++) c[i][j] = {re[i], im[i]};
    }
    for (int i = 0; i < nx; i++) {
        for (int j = 0; j < ny; j++) {
            re[j] = c[i][j].real;
            im[j] = c[i][j].imag;
        }
        FFT(dir, my, re.data(), im.data());
        for (int j = 0; j < ny; j++) c[i][j] = {re[j], im[j]};
    }
    return 1;
}

int Powerof2(int n, int *m, int *twopm)
{
    if (n < 2) {
        *m = 0;
        *twopm = 1;
        return 0;
    }
    *m = 1;
    *twopm = 2;
    do {  // doubles at least once: n = 2 gives m = 2, twopm = 4
        (*m)++;
        *twopm *= 2;
    } while (2L * *twopm <= n);
    return *twopm == n;
}

// ---- Correlation ------------------------------------------------------------

void Correlate(const double *x, const double *y, int n, double *r)
{
    if (n < 1) return;
    const double mx = mean(x, n), my = mean(y, n);
    double sx = 0.0, sy = 0.0;
    for (int i = 0; i < n; i++) {
        sx += (x[i] - mx) * (x[i] - mx);
        sy += (y[i] - my) * (y[i] - my);
    }
    const double norm = sqrt(sx * sy);
    const int maxdelay = n / 2;  // odd n: the largest positive delay is left out
    for (int d = -maxdelay; d < maxdelay; d++) {
        double sxy = 0.0;
        for (int i = 0; i < n; i++) {
            const int k = i + d;
            if (k >= 0 && k < n) sxy += (x[i] - mx) * (y[k] - my);  // no wrapping
        }
        r[d + maxdelay] = sxy / norm;
    }
}

double AutoCorr(const double *x, int n, int lag)
{
    if (n < 1) return 0.0;
    const double m = mean(x, n);
    const int l = wrap_lag(lag, n);
    double s = 0.0;
    for (int i = 0; i < n; i++) s += (x[(i + l) % n] - m) * (x[i] - m);
    return s;
}

double CrossCorr(const double *x, const double *y, int n, int lag)
{
    if (n < 1) return 0.0;
    const double mx = mean(x, n), my = mean(y, n);
    const int l = wrap_lag(lag, n);
    double s = 0.0;
    for (int i = 0; i < n; i++) s += (y[(i + l) % n] - my) * (x[i] - mx);
    return s;
}
