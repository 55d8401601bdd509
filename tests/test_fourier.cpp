// Fourier transforms and correlation: numpy.fft as the reference for values, scaling and sign, a round trip at a
// size numpy does not check, the 2-D transform's refusals, and correlations.
#include <gtest/gtest.h>

#include <algorithm>
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
        EXPECT_TRUE(Powerof2(c.n, &m, &twopm) == c.ok && m == c.m && twopm == c.twopm) << c.n << ": " << m;
    }
}

TEST(Fourier, AgreesWithNumpy)
{
    // Rows x y Fr Fi Ir Ii per size (see the script). Forward = fft / n, reverse = ifft * n. m < 0: DFT only.
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
        ASSERT_LE(row + s.n, ref.size());
        for (int dir : {1, -1}) {
            Vec x(s.n), y(s.n);
            for (int k = 0; k < s.n; k++) x[k] = ref[row + k][0], y[k] = ref[row + k][1];
            ASSERT_EQ(s.m >= 0 ? FFT(dir, s.m, x.data(), y.data()) : DFT(dir, s.n, x.data(), y.data()), 1);
            // DFT's short pi puts each angle off by up to 8e-10 n; the unscaled reverse sums are n times larger.
            const double tol = s.m >= 0 ? 1e-12 : 2e-9 * s.n * (dir == 1 ? 1 : s.n), scale = dir == 1 ? 1.0 / s.n : s.n;
            const int col = dir == 1 ? 2 : 4;
            for (int k = 0; k < s.n; k++) {
                const Vec &w = ref[row + k];
                EXPECT_TRUE(fabs(x[k] - w[col] * scale) <= tol && fabs(y[k] - w[col + 1] * scale) <= tol)
                    << s.n << " " << s.m << " " << dir << " " << k;
            }
        }
        row += s.n;
    }
}

TEST(Fourier, RoundTripAndRefusals)
{
    RandomInitialise(1234, 5678);
    const int m = 12, n = 1 << m;  // the half-angle recurrence loses a little with every stage
    Vec x0(n), y0(n);
    for (int i = 0; i < n; i++) x0[i] = RandomDouble(-1, 1), y0[i] = RandomDouble(-1, 1);
    Vec x = x0, y = y0;
    FFT(1, m, x.data(), y.data());
    FFT(-1, m, x.data(), y.data());
    for (int i = 0; i < n; i++) ASSERT_TRUE(fabs(x[i] - x0[i]) < 1e-11 && fabs(y[i] - y0[i]) < 1e-11) << i;
    EXPECT_TRUE(DFT(1, 0, nullptr, nullptr) == 1 && DFT(1, -1, nullptr, nullptr) == 0);

    const int nx = 8, ny = 4;
    std::vector<Complex> cells(nx * ny);
    std::vector<Complex *> c(nx);
    for (int i = 0; i < nx; i++) c[i] = &cells[i * ny];
    for (const auto &b : {std::pair{2, 4}, {8, 2}, {6, 4}, {8, 3}, {1, 4}, {8, 0}}) {  // refused: grid untouched
        for (auto &z : cells) z = {1.5, -2.5};
        EXPECT_EQ(FFT2D(c.data(), b.first, b.second, 1), 0) << b.first << " x " << b.second;
        for (const auto &z : cells) ASSERT_TRUE(z.real == 1.5 && z.imag == -2.5);
    }
    // The wave exp(+2 pi i (3i/nx + j/ny)) goes forward to 1 at (3, 1) only, and back.
    for (int k = 0; k < nx * ny; k++) {
        const int row = k / ny, col = k % ny;
        const double t = 2 * M_PI * (3.0 * row / nx + 1.0 * col / ny);
        cells[k] = {cos(t), sin(t)};
    }
    const std::vector<Complex> wave = cells;
    ASSERT_EQ(FFT2D(c.data(), nx, ny, 1), 1);
    for (int k = 0; k < nx * ny; k++)
        EXPECT_TRUE(fabs(cells[k].real - (k == 3 * ny + 1)) < 1e-12 && fabs(cells[k].imag) < 1e-12) << k;
    ASSERT_EQ(FFT2D(c.data(), nx, ny, -1), 1);
    for (int k = 0; k < nx * ny; k++)
        EXPECT_TRUE(fabs(cells[k].real - wave[k].real) < 1e-12 && fabs(cells[k].imag - wave[k].imag) < 1e-12) << k;
}

TEST(Fourier, Correlation)
{
    // t is s delayed by 2: the peak is at delay +2; odd n: the slot of delay n/2 is not written. Lag 0 is n times
    // the population variance, sum s^2 - (sum s)^2 / n; a circular shift by 3 moves CrossCorr's overlap to lag 3.
    const double s[9] = {0, 3, -1, 4, 1, -5, 9, 2, -6}, nvar = 173.0 - 7.0 * 7.0 / 9.0;
    double t[9] = {}, rr[9], shifted[9];
    const double x[4] = {1, 2, 3, 4}, want[4] = {-1.5 / 5, 1.25 / 5, 1.0, 1.25 / 5};  // deviations' squares sum to 5
    Correlate(x, x, 4, rr);
    for (int k = 0; k < 4; k++) EXPECT_NEAR(rr[k], want[k], 1e-15) << k;
    for (int i = 0; i < 9; i++) t[(i + 2) % 9] = i < 7 ? s[i] : 0, shifted[(i + 3) % 9] = s[i], rr[i] = 99.0;
    Correlate(s, t, 9, rr);
    EXPECT_TRUE(std::max_element(rr, rr + 8) - rr == 4 + 2 && rr[8] == 99.0);
    EXPECT_TRUE(fabs(AutoCorr(s, 9, 0) - nvar) < 1e-12 && fabs(CrossCorr(s, shifted, 9, 3) - nvar) < 1e-12);
    for (int lag : {1, 4, 8})  // lags are taken mod n
        EXPECT_TRUE(fabs(AutoCorr(s, 9, lag) - AutoCorr(s, 9, lag + 9)) < 1e-12
                    && fabs(CrossCorr(s, s, 9, lag) - AutoCorr(s, 9, lag)) < 1e-12
                    && fabs(AutoCorr(s, 9, -lag) - AutoCorr(s, 9, 9 - lag)) < 1e-12) << lag;
    EXPECT_TRUE(AutoCorr(s, 0, 1) == 0.0 && CrossCorr(s, s, 0, 1) == 0.0);
}
