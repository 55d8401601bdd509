// Matrices: inverses as round trips, determinant identities, the solver
// against numpy, and the text and HTML output byte for byte.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "util/matrix.h"

namespace {

// An n x n pointer-array matrix (extra columns for the solver's right-hand side).
struct Mat {
    std::vector<std::vector<double>> cols;
    std::vector<double *> p;
    explicit Mat(std::vector<std::vector<double>> c) : cols(std::move(c)), p(cols.size())
    {
        for (size_t i = 0; i < cols.size(); i++) p[i] = cols[i].data();
    }
    explicit Mat(int n, int ncols = -1) : Mat(std::vector<std::vector<double>>(ncols < 0 ? n : ncols, std::vector<double>(n))) {}
};

// Uniform in [-1, 1) from a seeded engine whose sequence is fixed by the standard.
double uniform(std::mt19937 &rng) { return rng() / 2147483648.0 - 1.0; }

void expect_identity(const double *m, int n, const char *id)
{
    for (int i = 0; i < n * n; i++) EXPECT_NEAR(m[i], i % (n + 1) == 0 ? 1.0 : 0.0, 1e-9) << id << " [" << i << "]";
}

std::string written(int format, double **a, int n)
{
    FILE *f = tmpfile();
    WriteMatrix(f, format, a, n);
    std::string s((size_t)ftell(f), '\0');
    rewind(f);
    EXPECT_EQ(fread(s.data(), 1, s.size(), f), s.size());
    fclose(f);
    return s;
}

}  // namespace

TEST(MatrixFixed, InversesRoundTrip)
{
    double out[16] = {9, 9, 9, 9};
    const double sing[4] = {1, 2, 2, 4}, m2[4] = {4, 7, 2, 6};
    EXPECT_EQ(Inverse22(sing, out), 0);
    EXPECT_EQ(out[0], 9);  // untouched
    ASSERT_EQ(Inverse22(m2, out), 1);
    const double want[4] = {0.6, -0.7, -0.2, 0.4};
    for (int i = 0; i < 4; i++) EXPECT_NEAR(out[i], want[i], 1e-12) << i;

    // 3x3 with m1 == 0, where the added middle term of the determinant vanishes.
    const double m3[9] = {2, 0, 1, 1, 3, 2, 1, 1, 2}, want3[9] = {2. / 3, 1. / 6, -.5, 0, .5, -.5, -1. / 3, -1. / 3, 1};
    double inv3[9];
    ASSERT_EQ(Inverse33(m3, inv3), 1);
    for (int i = 0; i < 9; i++) EXPECT_NEAR(inv3[i], want3[i], 1e-12) << "inv33 " << i;

    std::mt19937 rng(44);
    for (int t = 0; t < 20; t++) {
        double m[16], inv[16], p[16];
        for (int i = 0; i < 16; i++) m[i] = uniform(rng) + (i % 5 == 0 ? 4.0 : 0.0);
        ASSERT_EQ(Inverse44(m, inv), 1) << "seed 44 case " << t;
        Multiply44(m, inv, p);
        expect_identity(p, 4, "inv44");
        Inverse44(inv, inv);  // in place, back to m
        for (int i = 0; i < 16; i++) EXPECT_NEAR(inv[i], m[i], 1e-9) << "case " << t;
    }
    double id[16], sing44[16];
    Identity44(id);
    expect_identity(id, 4, "identity");
    for (int i = 0; i < 16; i++) sing44[i] = i % 4 + 1.0;  // equal rows
    EXPECT_EQ(Inverse44(sing44, out), 0);
}

TEST(MatrixFixed, Determinants)
{
    const double id[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1}, swap[9] = {0, 1, 0, 1, 0, 0, 0, 0, 1};
    EXPECT_EQ(Determinant33(id), 1);
    EXPECT_EQ(Determinant33(swap), 1);  // kept: the true value is -1
    EXPECT_EQ(Det3x3(0, 1, 0, 1, 0, 0, 0, 0, 1), -1);

    std::mt19937 rng(7);
    Mat a(4);
    double m[16];
    for (int i = 0; i < 16; i++) m[i] = a.p[i / 4][i % 4] = uniform(rng);
    EXPECT_NEAR(Determinant44(m), Determinant(a.p.data(), 4), 1e-12);
}

TEST(MatrixVariable, CofactorAndProductIdentities)
{
    Mat one(1);
    one.p[0][0] = 5;
    EXPECT_EQ(Determinant(one.p.data(), 1), 5);
    EXPECT_EQ(Determinant(one.p.data(), 0), 0);

    std::mt19937 rng(5);
    const int n = 5;
    Mat a(n), b(n), c(n), ab(n);
    for (int i = 0; i < n; i++)
        for (int j = 0; j < n; j++) a.p[i][j] = uniform(rng), b.p[i][j] = uniform(rng);
    const double da = Determinant(a.p.data(), n), db = Determinant(b.p.data(), n);
    MatrixMul(a.p.data(), b.p.data(), n, ab.p.data());
    EXPECT_NEAR(Determinant(ab.p.data(), n), da * db, 1e-12);

    // a times its transposed cofactors is det(a) times the identity.
    CoFactor(a.p.data(), n, c.p.data());
    Transpose(c.p.data(), n);
    MatrixMul(a.p.data(), c.p.data(), n, a.p.data());  // into a itself
    for (int i = 0; i < n; i++)
        for (int j = 0; j < n; j++) EXPECT_NEAR(a.p[i][j], i == j ? da : 0.0, 1e-12) << i << "," << j;
}

TEST(MatrixSolve, KnownSingularAndNumpy)
{
    Mat s({{2, 1}, {1, 3}, {3, 5}}), sing({{1, 2}, {2, 4}, {3, 5}});
    double x[8];
    ASSERT_EQ(GSolve(s.p.data(), 2, x), 1);
    EXPECT_NEAR(x[0], 0.8, 1e-12);
    EXPECT_NEAR(x[1], 1.4, 1e-12);
    EXPECT_EQ(GSolve(sing.p.data(), 2, x), 0);
    EXPECT_EQ(GSolve(s.p.data(), 0, x), 1);

    // Random diagonally dominant systems, n = 1..8, against numpy.linalg.solve.
    std::mt19937 rng(2024);
    std::vector<Mat> systems;
    systems.reserve(8);
    std::string path = (std::filesystem::temp_directory_path() / "quorl_gsolveXXXXXX").string();
    const int fd = mkstemp(path.data());
    ASSERT_GE(fd, 0);
    FILE *f = fdopen(fd, "w");
    for (int n = 1; n <= 8; n++) {
        Mat &m = systems.emplace_back(n, n + 1);
        fprintf(f, "%d\n", n);
        for (int j = 0; j < n; j++) {  // equation j
            for (int k = 0; k < n; k++) fprintf(f, " %.17g", m.p[k][j] = uniform(rng) + (k == j ? n : 0));
            fprintf(f, "\n");
        }
        for (int j = 0; j < n; j++) fprintf(f, " %.17g", m.p[n][j] = 10 * uniform(rng));
        fprintf(f, "\n");
    }
    fclose(f);
    int status = 0;
    std::string out;
    if (FILE *p = popen(("/usr/bin/python3 " QUORL_SOLVE_LINEAR " " + path + " 2>/dev/null").c_str(), "r")) {
        for (int ch; (ch = fgetc(p)) != EOF;) out += (char)ch;
        status = pclose(p);
    }
    remove(path.c_str());
    if (status != 0) GTEST_SKIP() << "/usr/bin/python3 with numpy is not available";
    std::istringstream in(out);
    for (int n = 1; n <= 8; n++) {
        ASSERT_EQ(GSolve(systems[n - 1].p.data(), n, x), 1) << "n=" << n;
        for (int k = 0; k < n; k++) {
            double want = 0;
            in >> want;
            EXPECT_NEAR(x[k], want, 1e-12) << "seed 2024 n=" << n << " x" << k;
        }
    }
}

TEST(MatrixOutput, TextAndHtmlExact)
{
    Mat a({{1, -2.5}, {1e6, 0.125}});
    EXPECT_EQ(written(0, a.p.data(), 2), "    1.0000   -2.5000\n1000000.0000    0.1250\n");
    EXPECT_EQ(written(1, a.p.data(), 2),
              "<table cellpadding=0 cellspacing=0 border=0><tr>\n<td valign=\"center\">A = </td>\n"
              "<td valign=\"center\"><img src=\"lbracket.gif\" width=3 height=26></td>\n"
              "<td valign=\"center\">\n<table cellpadding=0 cellspacing=0 border=0>\n<tr>\n"
              "<td height=10><center>&nbsp;&nbsp;1&nbsp;&nbsp;</center></td>\n"
              "<td height=10><center>&nbsp;&nbsp;-2.5&nbsp;&nbsp;</center></td>\n</tr>\n<tr>\n"
              "<td height=10><center>&nbsp;&nbsp;1e+06&nbsp;&nbsp;</center></td>\n"
              "<td height=10><center>&nbsp;&nbsp;0.125&nbsp;&nbsp;</center></td>\n</tr>\n</table></td>\n"
              "<td valign=\"center\"><img src=\"rbracket.gif\" width=3 height=30></td>\n</tr></table>\n");
    EXPECT_EQ(written(2, a.p.data(), 2), "");
}
