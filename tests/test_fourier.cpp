// Fourier transforms and correlation: numpy.fft as the reference for scaling
// and sign, round trips at sizes numpy does not check, the 2-D transform's refusals, and correlations.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

#include "capture.h"
#include "util/fourier.h"
#include "util/random.h"

using Vec = std::vector<double>;

TEST(Fourier, PowerOfTwoRule)
{
    static const struct { int n, ok, m, twopm; } cases[] = {
        {-4, 0, 0, 1}, {2, 0, 2, 4}, {3, 0, 2, 4}, {4, 1, 2, 4}, {12, 0, 3, 8}, {1 << 30, 1, 30, 1 << 30}};
    for (const auto &c : cases) {
        int m = -1, twopm = -1;
        EXPECT_EQ(Powerof2(c.n, &m, &twopm), c.ok) << c.n;
        EXPECT_TRUE(m == c.m && twopm == c.twopm) << c.n << ": " << m << ", " << twopm;
    }
}

TEST(Fourier, AgreesWithNumpy)
{
    // Rows x y Fr Fi Ir Ii per size (see the script). Forward = fft / n,
    // reverse = ifft * n. m < 0: a size for DFT only.
    static const struct { int n, m; } sizes[] = {{1, 0}, {8, 3}, {64, 6}, {5, -1}, {12, -1}, {64, -1}};
    std::string cmd = "/usr/bin/python3 " QUORL_FFT_REFERENCE " 7";
    for (const auto &s : sizes) cmd += ' ' + std::to_string(s.n);
    int status = -1;
    std::istringstream in(run(cmd, &status));
    ASSERT_EQ(status, 0) << "the numpy reference script failed (scripts/setup.sh installs python3-numpy)";
    std::vector<Vec> ref;
    for (Vec r(6); in >> r[0] >> r[1] >> r[2] >> r[3] >> r[4] >> r[5];) ref.push_back(r);

    size_t row = 0;
    for (const auto &s : sizes) {
        for (int dir : {1, -1}) {
            ASSERT_LE(row + s.n, ref.size());
            Vec x(s.n), y(s.n);
            for (int k = 0; k < s.n; k++) x[k] = ref[row + k][0], y[k] = ref[row + k][1];
            const bool fft = s.m >= 0;
            ASSERT_EQ(fft ? FFT(dir, s.m, x.data(), y.data()) : DFT(dir, s.n, x.data(), y.data()), 1);
            // DFT's pi is short by 4e-10, so each angle is off by up to 8e-10 n;
            // the unscaled reverse sums are n times larger.
            const double tol = fft ? 1e-12 : 2e-9 * s.n * (dir == 1 ? 1 : s.n);
            const double scale = dir == 1 ? 1.0 / s.n : s.n;
            const int col = dir == 1 ? 2 : 4;
            for (int k = 0; k < s.n; k++)
                EXPECT_TRUE(fabs(x[k] - ref[row + k][col] * scale) <= tol
                    && fabs(y[k] - ref[row + k][col + 1] * scale) <= tol)
                    << s.n << " " << s.m << " " << dir << " " << k;
        }
        row += s.n;
    }
}

TEST(Fourier, RoundTrips)
{
    RandomInitialise(1234, 5678);
    for (int m : {0, 5, 12}) {
        const int n = 1 << m;
        Vec x0(n), y0(n);
        for (int i = 0; i < n; i++) x0[i] = RandomDouble(-1, 1), y0[i] = RandomDouble(-1, 1);
        Vec x1 = x0, y1 = y0, x2 = x0, y2 = y0;
        FFT(1, m, x1.data(), y1.data());
        FFT(-1, m, x1.data(), y1.data());
        const bool dft = m <= 7;  // DFT is quadratic: small sizes only
        if (dft) {
            ASSERT_TRUE(DFT(1, n, x2.data(), y2.data()) && DFT(-1, n, x2.data(), y2.data()));
        }
        for (int i = 0; i < n; i++) {  // the half-angle recurrence loses a little with every stage
            ASSERT_TRUE(fabs(x1[i] - x0[i]) < 1e-11 && fabs(y1[i] - y0[i]) < 1e-11) << "FFT m " << m << " i " << i;
            ASSERT_TRUE(!dft || (fabs(x2[i] - x0[i]) < 1e-7 && fabs(y2[i] - y0[i]) < 1e-7)) << "DFT m " << m << " i "
                << i;
        }
    }
    EXPECT_EQ(DFT(1, 0, nullptr, nullptr), 1);
    EXPECT_EQ(DFT(1, -1, nullptr, nullptr), 0);
}

TEST(Fourier, TwoDimensional)
{
    const int nx = 8, ny = 4;
    std::vector<Complex> cells(nx * ny);
    std::vector<Complex *> c(nx);
    for (int i = 0; i < nx; i++) c[i] = &cells[i * ny];

    // Refused sizes leave the grid as it was; two is not a power of two here.
    const int bad[][2] = {{2, 4}, {8, 2}, {6, 4}, {8, 3}, {1, 4}, {8, 0}};
    for (const auto &b : bad) {
        for (auto &z : cells) z = {1.5, -2.5};
        EXPECT_EQ(FFT2D(c.data(), b[0], b[1], 1), 0) << b[0] << " x " << b[1];
        for (const auto &z : cells) ASSERT_TRUE(z.real == 1.5 && z.imag == -2.5);
    }

    // The wave exp(+2 pi i (3i/nx + j/ny)) goes forward to 1 at (3, 1) only.
    for (int i = 0; i < nx; i++)
        for (int j = 0; j < ny; j++) c[i][j] = {cos(2 * M_PI * (3.0 * i / nx + 1.0 * j / ny)),
                                                sin(2 * M_PI * (3.0 * i / nx + 1.0 * j / ny))};
    const std::vector<Complex> wave = cells;
    ASSERT_EQ(FFT2D(c.data(), nx, ny, 1), 1);
    for (int i = 0; i < nx * ny; i++)
        EXPECT_TRUE(fabs(cells[i].real - (i == 3 * ny + 1)) < 1e-12 && fabs(cells[i].imag) < 1e-12) << i;
    ASSERT_EQ(FFT2D(c.data(), nx, ny, -1), 1);
    for (int k = 0; k < nx * ny; k++)
        EXPECT_TRUE(fabs(cells[k].real - wave[k].real) < 1e-12 && fabs(cells[k].imag - wave[k].imag) < 1e-12) << k;
}

TEST(Fourier, Correlation)
{
    // Deviations of 1..4 are -1.5 -0.5 0.5 1.5, with sum of squares 5.
    const double x[4] = {1, 2, 3, 4}, want[4] = {-1.5 / 5, 1.25 / 5, 1.0, 1.25 / 5};
    double r[4];
    Correlate(x, x, 4, r);
    for (int k = 0; k < 4; k++) EXPECT_NEAR(r[k], want[k], 1e-15) << k;

    // t is s delayed by 2: the peak is at delay +2. Odd n: the slot of delay
    // n/2 is not written.
    const double s[9] = {0, 3, -1, 4, 1, -5, 9, 2, -6};
    double t[9] = {}, rr[9], shifted[9];
    for (int i = 0; i < 9; i++) {
        if (i + 2 < 9) t[i + 2] = s[i];
        shifted[(i + 3) % 9] = s[i];
        rr[i] = 99.0;
    }
    Correlate(s, t, 9, rr);
    int peak = 0;
    for (int k = 0; k < 8; k++) peak = rr[k] > rr[peak] ? k : peak;
    EXPECT_EQ(peak - 4, 2);
    EXPECT_EQ(rr[8], 99.0);

    // Circular sums: lag 0 is n times the population variance, sum s^2 -
    // (sum s)^2 / n with sums 173 and 7; a circular shift by 3 moves
    // CrossCorr's full overlap to lag 3.
    const double nvar = 173.0 - 7.0 * 7.0 / 9.0;
    EXPECT_NEAR(AutoCorr(s, 9, 0), nvar, 1e-12);
    EXPECT_NEAR(CrossCorr(s, shifted, 9, 3), nvar, 1e-12);
    for (int lag : {1, 4, 8}) {
        const double a = AutoCorr(s, 9, lag);
        EXPECT_TRUE(fabs(a - AutoCorr(s, 9, lag + 9)) < 1e-12
            && fabs(AutoCorr(s, 9, -lag) - AutoCorr(s, 9, 9 - lag)) < 1e-12 &&
                    fabs(CrossCorr(s, s, 9, lag) - a) < 1e-12) << lag;
    }
    EXPECT_TRUE(AutoCorr(s, 0, 1) == 0.0 && CrossCorr(s, s, 0, 1) == 0.0);
}
