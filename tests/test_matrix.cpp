// Matrices: inverses as round trips, determinant identities, the solver against numpy, and the written text.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "capture.h"
#include "util/matrix.h"

namespace {

// An n-row pointer-array matrix of ncols columns (one more for the solver's right-hand side).
struct Mat {
    std::vector<std::vector<double>> cols;
    std::vector<double *> p;
    explicit Mat(std::vector<std::vector<double>> c) : cols(std::move(c)), p(cols.size())
    {
        for (size_t i = 0; i < cols.size(); i++) p[i] = cols[i].data();
    }
    explicit Mat(int n, int ncols = -1)
        : Mat(std::vector<std::vector<double>>(ncols < 0 ? n : ncols, std::vector<double>(n))) {}
};

double uniform(std::mt19937 &rng) { return rng() / 2147483648.0 - 1.0; }  // [-1, 1), the same on every system

}  // namespace

TEST(Matrix, InversesAndDeterminants)
{
    double out[16] = {9}, inv3[9];
    const double sing[4] = {1, 2, 2, 4}, m2[4] = {4, 7, 2, 6}, want2[4] = {0.6, -0.7, -0.2, 0.4};
    // 3x3 with m1 == 0, where the added middle term of the determinant vanishes.
    const double m3[9] = {2, 0, 1, 1, 3, 2, 1, 1, 2}, want3[9] = {2. / 3, 1. / 6, -.5, 0, .5, -.5, -1. / 3, -1. / 3, 1};
    EXPECT_TRUE(Inverse22(sing, out) == 0 && out[0] == 9);  // singular: untouched
    ASSERT_TRUE(Inverse22(m2, out) == 1 && Inverse33(m3, inv3) == 1);
    for (int i = 0; i < 9; i++)
        EXPECT_TRUE(fabs(inv3[i] - want3[i]) < 1e-12 && (i > 3 || fabs(out[i] - want2[i]) < 1e-12)) << i;
    const double swap[9] = {0, 1, 0, 1, 0, 0, 0, 0, 1};
    EXPECT_TRUE(Determinant33(swap) == 1 && Det3x3(0, 1, 0, 1, 0, 0, 0, 0, 1) == -1);  // the first kept as it is
    std::mt19937 rng(44);
    for (int t = 0; t < 20; t++) {
        double m[16], inv[16], p[16];
        Mat a(4);
        for (int i = 0; i < 16; i++) m[i] = a.p[i / 4][i % 4] = uniform(rng) + (i % 5 == 0 ? 4.0 : 0.0);
        EXPECT_NEAR(Determinant44(m), Determinant(a.p.data(), 4), 1e-9) << "seed 44 case " << t;
        ASSERT_EQ(Inverse44(m, inv), 1) << "seed 44 case " << t;
        Multiply44(m, inv, p);
        for (int i = 0; i < 16; i++) EXPECT_NEAR(p[i], i % 5 == 0, 1e-9) << "seed 44 case " << t << " [" << i << "]";
    }
    for (int i = 0; i < 16; i++) out[i] = i % 4 + 1.0;  // equal rows
    EXPECT_EQ(Inverse44(out, out), 0);
    // a times its transposed cofactors is det(a) times the identity.
    const int n = 5;
    Mat a(n), c(n);
    for (int i = 0; i < n * n; i++) a.p[i / n][i % n] = uniform(rng);
    const double da = Determinant(a.p.data(), n);
    CoFactor(a.p.data(), n, c.p.data());
    Transpose(c.p.data(), n);
    MatrixMul(a.p.data(), c.p.data(), n, a.p.data());  // into a itself
    for (int i = 0; i < n * n; i++) EXPECT_NEAR(a.p[i / n][i % n], i % (n + 1) == 0 ? da : 0.0, 1e-12) << i;
    EXPECT_TRUE(Determinant(c.p.data(), 1) == c.p[0][0] && Determinant(c.p.data(), 0) == 0);
}

TEST(Matrix, SolverAgainstNumpy)
{
    Mat sing({{1, 2}, {2, 4}, {3, 5}});
    double x[8];
    EXPECT_EQ(GSolve(sing.p.data(), 2, x), 0);
    std::mt19937 rng(2024);  // dominant terms off the diagonal from n = 2: pivoting needed
    std::vector<Mat> systems;
    const std::string path = testing::TempDir() + "quorl_gsolve.txt";
    FILE *f = fopen(path.c_str(), "w");
    ASSERT_TRUE(f);
    for (int n = 1; n <= 8; n++) {
        Mat &m = systems.emplace_back(n, n + 1);
        fprintf(f, "%d\n", n);
        for (int j = 0; j < n; j++)  // equation j, then the right-hand sides
            for (int k = 0; k < n; k++) fprintf(f, " %.17g", m.p[k][j] = uniform(rng) + (k == (j + n / 2) % n ? n : 0));
        for (int j = 0; j < n; j++) fprintf(f, " %.17g\n", m.p[n][j] = 10 * uniform(rng));
    }
    fclose(f);
    int status = -1;
    std::istringstream in(run("/usr/bin/python3 " QUORL_SOLVE_LINEAR " " + path, &status));
    remove(path.c_str());
    ASSERT_EQ(status, 0) << "the numpy reference script failed (scripts/setup.sh installs python3-numpy)";
    for (int n = 1; n <= 8; n++) {
        ASSERT_EQ(GSolve(systems[n - 1].p.data(), n, x), 1) << "n=" << n;
        for (int k = 0; k < n; k++) {
            double want = NAN;
            in >> want;
            EXPECT_NEAR(x[k], want, 1e-12) << "seed 2024 n=" << n << " x" << k;
        }
    }
}

TEST(Matrix, TextAndHtml)
{
    Mat a({{1, -2.5}, {1e6, 0.125}});
    auto written = [&](int form) {
        return capture<std::string>([&](FILE *f) { return WriteMatrix(f, form, a.p.data(), 2), 0; });
    };
    EXPECT_EQ(written(0), "    1.0000   -2.5000\n1000000.0000    0.1250\n");
    const std::string html = written(1);  // the parts in order, row by row
    size_t at = 0;
    for (const std::string part : {"<table", "A = ", "lbracket.gif", "<table", "<tr>", ";1&", ";-2.5&", "</tr>", "<tr>",
                                   ";1e+06&", ";0.125&", "</tr>", "</table>", "rbracket.gif", "</tr></table>\n"}) {
        EXPECT_TRUE((at = html.find(part, at)) != std::string::npos) << part << " in\n" << html;
        at += part.size();
    }
    EXPECT_EQ(written(2), "");
}
