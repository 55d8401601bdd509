// util/matrix.cpp - determinants, inverses, linear systems and matrix output.
#include "util/matrix.h"

#include <cmath>
#include <utility>
#include <vector>

namespace {

const double inverse_tolerance = 0.000001;  // |det| at or below: singular
const double pivot_tolerance = 0.00001;     // |pivot| below: singular system

// Determinant of the 3x3 minor of a row-order 4x4 matrix without row r, col c.
double minor44(const double *m, int r, int c)
{
    double v[9];
    int k = 0;
    for (int i = 0; i < 4; i++) {
        if (i == r) continue;
        for (int j = 0; j < 4; j++)
            if (j != c) v[k++] = m[i * 4 + j];
    }
    return Det3x3(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8]);
}

// A scratch (n x n) pointer-array matrix; freed when it goes out of scope.
struct Square {
    std::vector<double> cells;
    std::vector<double *> rows;
    explicit Square(int n) : cells((size_t)n * n), rows(n)
    {
        for (int i = 0; i < n; i++) rows[i] = cells.data() + (size_t)i * n;
    }
};

// The minor of a without row r and column c, into s (size n - 1).
void take_minor(double **a, int n, int r, int c, Square &s)
{
    int ii = 0;
    for (int i = 0; i < n; i++) {
        if (i == r) continue;
        int jj = 0;
        for (int j = 0; j < n; j++)
            if (j != c) s.rows[ii][jj++] = a[i][j];
        ii++;
    }
}

}  // namespace

// ---- Fixed-size matrices ----------------------------------------------------

double Det2x2(double a, double b, double c, double d)
{
    return a * d - b * c;
}

double Determinant22(const double *m)
{
    return m[0] * m[3] - m[1] * m[2];
}

int Inverse22(const double *m, double *out)
{
    const double det = m[0] * m[3] - m[1] * m[2];
    if (fabs(det) <= inverse_tolerance) return 0;
    const double a = m[0], b = m[1], c = m[2], d = m[3];  // out may be m
    out[0] = d / det;
    out[1] = -b / det;
    out[2] = -c / det;
    out[3] = a / det;
    return 1;
}

double Determinant33(const double *m)
{
    // The middle term is added on purpose (see the header).
    return m[0] * (m[4] * m[8] - m[5] * m[7]) + m[1] * (m[3] * m[8] - m[5] * m[6]) +
           m[2] * (m[3] * m[7] - m[4] * m[6]);
}

double Det3x3(double a1, double a2, double a3, double b1, double b2, double b3,
              double c1, double c2, double c3)
{
    return a1 * Det2x2(b2, b3, c2, c3) - a2 * Det2x2(b1, b3, c1, c3) + a3 * Det2x2(b1, b2, c1, c2);
}

int Inverse33(const double *m, double *out)
{
    const double det = Determinant33(m);
    if (fabs(det) <= inverse_tolerance) return 0;
    double r[9];
    r[0] = (m[4] * m[8] - m[5] * m[7]) / det;
    r[1] = -(m[1] * m[8] - m[7] * m[2]) / det;
    r[2] = (m[1] * m[5] - m[4] * m[2]) / det;
    r[3] = -(m[3] * m[8] - m[6] * m[5]) / det;
    r[4] = (m[0] * m[8] - m[6] * m[2]) / det;
    r[5] = -(m[0] * m[5] - m[3] * m[2]) / det;
    r[6] = (m[3] * m[7] - m[6] * m[4]) / det;
    r[7] = -(m[0] * m[7] - m[6] * m[1]) / det;
    r[8] = (m[0] * m[4] - m[3] * m[1]) / det;
    for (int i = 0; i < 9; i++) out[i] = r[i];
    return 1;
}

double Determinant44(const double *m)
{
    double det = 0;
    for (int c = 0; c < 4; c++) det += (c % 2 ? -1.0 : 1.0) * m[c] * minor44(m, 0, c);
    return det;
}

void Adjoint44(const double *m, double *out)
{
    for (int r = 0; r < 4; r++)
        for (int c = 0; c < 4; c++)
            out[c * 4 + r] = ((r + c) % 2 ? -1.0 : 1.0) * minor44(m, r, c);
}

int Inverse44(const double *m, double *out)
{
    double adj[16];
    Adjoint44(m, adj);
    const double det = Determinant44(m);
    if (fabs(det) < inverse_tolerance) return 0;
    for (int i = 0; i < 16; i++) out[i] = adj[i] / det;
    return 1;
}

void Identity44(double *m)
{
    for (int i = 0; i < 16; i++) m[i] = (i % 5 == 0) ? 1.0 : 0.0;
}

void Multiply44(const double *a, const double *b, double *out)
{
    double r[16];
    for (int i = 0; i < 4; i++)
        for (int j = 0; j < 4; j++) {
            double s = 0;
            for (int k = 0; k < 4; k++) s += a[i * 4 + k] * b[k * 4 + j];
            r[i * 4 + j] = s;
        }
    for (int i = 0; i < 16; i++) out[i] = r[i];
}

// ---- Variable-size matrices -------------------------------------------------

double Determinant(double **a, int n)
{
    if (n < 1) return 0;
    if (n == 1) return a[0][0];
    if (n == 2) return a[0][0] * a[1][1] - a[1][0] * a[0][1];
    double det = 0;
    Square minor(n - 1);
    for (int j = 0; j < n; j++) {
        take_minor(a, n, 0, j, minor);
        det += (j % 2 ? -1.0 : 1.0) * a[0][j] * Determinant(minor.rows.data(), n - 1);
    }
    return det;
}

void CoFactor(double **a, int n, double **b)
{
    if (n < 1) return;
    Square minor(n - 1);
    for (int i = 0; i < n; i++)
        for (int j = 0; j < n; j++) {
            take_minor(a, n, i, j, minor);
            b[i][j] = ((i + j) % 2 ? -1.0 : 1.0) * Determinant(minor.rows.data(), n - 1);
        }
}

void Transpose(double **a, int n)
{
    for (int i = 1; i < n; i++)
        for (int j = 0; j < i; j++) std::swap(a[i][j], a[j][i]);
}

void MatrixMul(double **a, double **b, int n, double **c)
{
    if (n < 1) return;
    Square r(n);  // c may alias a or b
    for (int i = 0; i < n; i++)
        for (int j = 0; j < n; j++) {
            double s = 0;
            for (int k = 0; k < n; k++) s += a[i][k] * b[k][j];
            r.rows[i][j] = s;
        }
    for (int i = 0; i < n; i++)
        for (int j = 0; j < n; j++) c[i][j] = r.rows[i][j];
}

// ---- Linear systems ---------------------------------------------------------

int GSolve(double **a, int n, double *x)
{
    for (int i = 0; i < n; i++) {
        int maxrow = i;
        for (int j = i + 1; j < n; j++)
            if (fabs(a[i][j]) > fabs(a[i][maxrow])) maxrow = j;
        for (int k = i; k <= n; k++) std::swap(a[k][i], a[k][maxrow]);
        if (fabs(a[i][i]) < pivot_tolerance) return 0;
        for (int j = i + 1; j < n; j++)
            for (int k = n; k >= i; k--)  // downwards: a[i][j] is the multiplier, changed last
                a[k][j] -= a[k][i] * a[i][j] / a[i][i];
    }
    for (int j = n - 1; j >= 0; j--) {
        double t = 0;
        for (int k = j + 1; k < n; k++) t += a[k][j] * x[k];
        x[j] = (a[n][j] - t) / a[j][j];
    }
    return 1;
}

// ---- Output -----------------------------------------------------------------

void WriteMatrix(FILE *fptr, int format, double **a, int n)
{
    if (format == 0) {
        for (int i = 0; i < n; i++) {
            for (int j = 0; j < n; j++) fprintf(fptr, "%10.4f", a[i][j]);
            fprintf(fptr, "\n");
        }
    } else if (format == 1) {
        fprintf(fptr, "<table cellpadding=0 cellspacing=0 border=0><tr>\n");
        fprintf(fptr, "<td valign=\"center\">A = </td>\n");
        fprintf(fptr, "<td valign=\"center\">");
        fprintf(fptr, "<img src=\"lbracket.gif\" width=3 height=%d></td>\n", 13 * n);
        fprintf(fptr, "<td valign=\"center\">\n");
        fprintf(fptr, "<table cellpadding=0 cellspacing=0 border=0>\n");
        for (int i = 0; i < n; i++) {
            fprintf(fptr, "<tr>\n");
            for (int j = 0; j < n; j++) {
                fprintf(fptr, "<td height=10><center>");
                fprintf(fptr, "&nbsp;&nbsp;%g&nbsp;&nbsp;", a[i][j]);
                fprintf(fptr, "</center></td>\n");
            }
            fprintf(fptr, "</tr>\n");
        }
        fprintf(fptr, "</table></td>\n");
        fprintf(fptr, "<td valign=\"center\">");
        fprintf(fptr, "<img src=\"rbracket.gif\" width=3 height=%d></td>\n", 15 * n);
        fprintf(fptr, "</tr></table>\n");
    }
}
