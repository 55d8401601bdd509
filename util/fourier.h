// util/fourier.h - Fourier transforms and correlation.
//
// One-dimensional data are two caller arrays, real parts x[0..n-1] and
// imaginary parts y[0..n-1], transformed in place. Direction dir = 1 is the
// forward transform, X[k] = (1/n) sum x[j] exp(-2 pi i jk/n): negative
// exponent, divided by the number of points. Any other dir (callers use -1)
// is the reverse transform: positive exponent, no scaling. Forward then
// reverse returns the input. Nothing here prints or keeps state; DFT and
// FFT2D use scratch storage that they free before returning.
#pragma once

#include "util/complexq.h"

// Radix-2 transform of n = 2^m points in place (m from 0 to 30; other m do
// nothing). Twiddle factors by the half-angle recurrence. Always returns 1.
int FFT(int dir, int m, double *x, double *y);
// Direct transform of any n points in place, using pi = 3.141592654 (agrees
// with FFT to about 1e-9 relative). Returns 1; 0 when n < 0 or scratch
// storage is unavailable (the data are then untouched).
int DFT(int dir, int n, double *x, double *y);
// Two-dimensional transform of the grid c[i][j], i < nx, j < ny, reached
// through nx row pointers: FFT over i for every j, then over j for every i.
// Returns 0, leaving the grid untouched, when a size is not a power of two
// by the rule of Powerof2 (so 1 and 2 are refused) or storage is unavailable.
int FFT2D(Complex **c, int nx, int ny, int dir);
// Sets *twopm to the largest power of two not above n but never below 4, and
// *m to its exponent (m = 0, twopm = 1 for n < 2); returns 1 when
// twopm == n, so 1 when n = 2^m with m >= 2. Two is reported
// as not a power of two (m = 2, twopm = 4): the transforms refuse two-point
// dimensions, and callers rely on that.
int Powerof2(int n, int *m, int *twopm);

// r[d + n/2] = normalised cross-correlation of x and y at delay d, for d from
// -(n/2) to n/2 - 1: sum of (x[i] - mean x)(y[i + d] - mean y) over the pairs
// inside both series (no wrapping), over sqrt(sx * sy) of the sums of squared
// deviations. r needs 2*(n/2) entries; constant data give not-a-number.
void Correlate(const double *x, const double *y, int n, double *r);
// Circular autocovariance sum (not normalised): sum over i of
// (x[(i + lag) mod n] - mean)(x[i] - mean). Any lag, negative included,
// is taken mod n. 0 for n < 1.
double AutoCorr(const double *x, int n, int lag);
// Circular cross-covariance sum (not normalised): sum over i of
// (y[(i + lag) mod n] - mean y)(x[i] - mean x). 0 for n < 1.
double CrossCorr(const double *x, const double *y, int n, int lag);
