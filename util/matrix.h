// util/matrix.h - determinants, inverses, linear systems and matrix output.
//
// Two layouts. Fixed-size matrices (2x2, 3x3, 4x4) are contiguous arrays of
// doubles in row order: element (r, c) at m[r*size + c]. Variable-size
// matrices are arrays of n pointers, each to n doubles: element a[i][j].
// Functions returning int give 1 on success and 0 for a singular matrix; a
// failed inverse leaves its output untouched. Nothing here prints or keeps
// state; Determinant and CoFactor allocate scratch minors and free them.
#pragma once

#include <cstdio>

// ---- Fixed-size matrices ----------------------------------------------------

// a*d - b*c: the determinant of the rows (a, b) and (c, d).
double Det2x2(double a, double b, double c, double d);
// m[0]*m[3] - m[1]*m[2].
double Determinant22(const double *m);
// out = inverse of m. Returns 0 (out untouched) when |det| <= 0.000001.
// out may be m itself.
int Inverse22(const double *m, double *out);

// m0(m4m8 - m5m7) + m1(m3m8 - m5m6) + m2(m3m7 - m4m6). The middle term is
// added, not subtracted, so this equals the true determinant only when that
// term vanishes (m1 == 0 or m3m8 == m5m6); callers rely on the sign as it is.
double Determinant33(const double *m);
// The true determinant of the 3x3 matrix with rows (a1, a2, a3), (b1, b2, b3),
// (c1, c2, c3).
double Det3x3(double a1, double a2, double a3, double b1, double b2, double b3,
              double c1, double c2, double c3);
// out = adjugate of m divided by Determinant33(m) (with its added middle
// term), so a true inverse only where Determinant33 is the true determinant.
// Returns 0 (out untouched) when |Determinant33(m)| <= 0.000001. out may be m.
int Inverse33(const double *m, double *out);

// The determinant of a 4x4 matrix by cofactor expansion.
double Determinant44(const double *m);
// out = adjoint of m (the transposed cofactor matrix), so m * out = det * I.
// out must not overlap m.
void Adjoint44(const double *m, double *out);
// out = inverse of m. Returns 0 (out untouched) when |det| < 0.000001.
// out may be m itself.
int Inverse44(const double *m, double *out);
// m = the 4x4 identity.
void Identity44(double *m);
// out = a * b (a applied after b to column vectors). out may be a or b.
void Multiply44(const double *a, const double *b, double *out);

// ---- Variable-size matrices (n pointers to n doubles) -----------------------

// The determinant by expansion along the first row: 0 for n < 1, a[0][0] for
// n == 1. Cost grows as n factorial; meant for small n.
double Determinant(double **a, int n);
// b[i][j] = (-1)^(i+j) * determinant of the minor without row i and column j.
// For n == 1 the minor is empty and its determinant counts as 0. b must not
// overlap a.
void CoFactor(double **a, int n, double **b);
// Transposes a in place.
void Transpose(double **a, int n);
// c = a * b, c[i][j] = sum over k of a[i][k] * b[k][j]. c may be a or b.
void MatrixMul(double **a, double **b, int n, double **c);

// ---- Linear systems -----------------------------------------------------------

// Solves n equations by Gaussian elimination with partial pivoting. a holds
// n + 1 pointers to n doubles, one column each: a[k][j] is the coefficient of
// unknown k in equation j, and a[n] is the right-hand side. The solution goes
// into x[0..n-1]. Returns 1 when solved (also for n < 1, with nothing to do)
// and 0 when a pivot falls below 0.00001 in magnitude (x then incomplete).
// The matrix is destroyed either way.
int GSolve(double **a, int n, double *x);

// ---- Output -------------------------------------------------------------------

// Writes a[i][j] to fptr. format 0: plain text, one row per line, each value
// "%10.4f". format 1: an HTML fragment "A = [ table ]" with bracket images
// lbracket.gif (height 13n) and rbracket.gif (height 15n), values "%g"
// padded with two &nbsp; each side. Any other format writes nothing. Write
// errors are left on the stream for the caller's ferror().
void WriteMatrix(FILE *fptr, int format, double **a, int n);
