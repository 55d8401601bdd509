// Integer maths (util/arith.h), Bessel functions and log-gamma (util/bessel.h), the timer (util/timer.h), the
// double-precision straight-line fit (util/regress.h), and SetKeyboardIO (util/terminal.h) on a pseudo-terminal
// opened by the test and on standard input that is not a terminal. Standard input is swapped for the test's
// descriptor and put back, so the terminal running the tests is never touched.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "util/arith.h"
#include "util/bessel.h"
#include "util/regress.h"
#include "util/terminal.h"
#include "util/timer.h"

TEST(Maths, KnownValuesAndLimits)
{
    const struct { const char *id; double got, want, tol; } cases[] = {
        {"pow-1.1", (double)PowerInt(5, -3), 1, 0}, {"pow-1.2", (double)PowerInt(-2, 3), -8, 0},
        {"pow-1.3", (double)PowerInt(2, 63), (double)LONG_MIN, 0},  // wraps, no undefined overflow
        {"sqrt-1.1", (double)IntSqrt(99), 9, 0}, {"sqrt-1.2", (double)IntSqrt(-5), 0, 0},
        {"sqrt-1.3", (double)IntSqrt(2000000000), 32767, 0}, {"sqrt-1.4", (double)IntSqrt(1073676289), 32767, 0},
        {"fact-1.1", Factorial(-4), 1, 0}, {"fact-1.2", Factorial(20), 2432902008176640000.0, 0},
        {"log-1.1", Logarithm(1000, 10), 3.0, 1e-12},
        {"I0(1)", BesselI0(1), 1.2660658777520082, 1e-12}, {"I0(3)", BesselI0(3), 4.880792585865024, 1e-5},
        {"J0(1)", Bessel(0, 1), 0.7651976865579666, 1e-3}, {"J2(5)", Bessel(2, 5), 0.04656511627775222, 1e-3},
        {"lgamma(5)", LnGamma(5), log(24.0), 1e-9}, {"lgamma(0.5)", LnGamma(0.5), 0.5 * log(M_PI), 1e-9},
        // Zeros: the first sample past the crossing, high by at most one step; J_1(0) = 0 is the first.
        {"zero-1.1", BesselZero(1, 0), 2.404825557695773 + 5e-4, 7e-4},
        {"zero-1.2", BesselZero(3, 1), 7.015586669815619 + 5e-4, 7e-4},
        {"zero-1.3", BesselZero(1, 1), 0.0, 0}, {"zero-1.4", BesselZero(0, 2), 0.0, 0},
    };
    for (const auto &c : cases) EXPECT_NEAR(c.got, c.want, c.tol) << c.id;
    EXPECT_TRUE(std::isinf(Factorial(171)));
    const double t0 = GetRunTime();
    EXPECT_TRUE(t0 > 1.7e9 && GetRunTime() >= t0);  // wall-clock seconds since the epoch, not process time
}

TEST(LinRegress, KnownFits)
{
    const struct { const char *id; std::vector<double> x, y; int ok; double a, b, r; } cases[] = {
        {"fit-1.1", {0}, {1}, 0, 0, 0, 0}, {"fit-1.2", {0, 1, 2}, {1, 3, 5}, 1, 1, 2, 1},
        {"fit-1.3", {2, 2, 2}, {1, 3, 5}, 0, 0, 0, 0}, {"fit-1.4", {1, 2, 3}, {4, 4, 4}, 1, 4, 0, 1},
        {"fit-1.5", {0, 1, 2}, {0, 1, 0}, 1, 1.0 / 3, 0, 0}, {"fit-1.6", {0, 1, 2, 3}, {3, 1, -1, -3}, 1, 3, -2, -1},
    };
    for (const auto &c : cases) {
        double a = 9, b = 9, r = 9;
        EXPECT_TRUE(LinRegress(c.x.data(), c.y.data(), (int)c.x.size(), &a, &b, &r) == c.ok && fabs(a - c.a) < 1e-12
                    && fabs(b - c.b) < 1e-12 && fabs(r - c.r) < 1e-12) << c.id << ": " << a << " " << b << " " << r;
    }
}

// With standard input closed the test's descriptors would take number 0, so /dev/null is parked there first.
[[maybe_unused]] static const int k_parked = fcntl(0, F_GETFD) == -1 ? open("/dev/null", O_RDONLY) : 0;

struct StdinSwap {  // makes fd standard input for the guard's lifetime
    int saved = dup(0);
    explicit StdinSwap(int fd) { dup2(fd, 0); }
    ~StdinSwap() { dup2(saved, 0), close(saved); }
};

TEST(Keyboard, NonCanonicalOnPseudoTerminalThenRestored)
{
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_TRUE(master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0) << "no pseudo-terminals here";
    const int slave = open(ptsname(master), O_RDWR | O_NOCTTY);
    termios before, raw, after;
    ASSERT_TRUE(slave >= 0 && tcgetattr(slave, &before) == 0 && (before.c_lflag & ICANON));  // new: line mode
    {
        StdinSwap in(slave);
        ASSERT_TRUE(SetKeyboardIO(1) == 0 && tcgetattr(0, &raw) == 0);
        EXPECT_EQ(raw.c_lflag, before.c_lflag & ~(tcflag_t)ICANON);  // echo and the rest kept
        EXPECT_TRUE(raw.c_iflag == before.c_iflag && raw.c_cc[VMIN] == 1 && raw.c_cc[VTIME] == 0);
        ASSERT_TRUE(SetKeyboardIO(0) == 0 && tcgetattr(0, &after) == 0);
        EXPECT_TRUE(after.c_lflag == before.c_lflag && after.c_cc[VMIN] == before.c_cc[VMIN]
                    && after.c_cc[VTIME] == before.c_cc[VTIME]);
    }
    close(slave), close(master);
    int fds[2];  // not a terminal: both calls fail, and the pipe still carries data
    ASSERT_EQ(pipe(fds), 0);
    {
        StdinSwap in(fds[0]);
        EXPECT_TRUE(SetKeyboardIO(1) == -1 && errno == ENOTTY && SetKeyboardIO(0) == -1);
        char ch = 0;
        EXPECT_TRUE(write(fds[1], "z", 1) == 1 && read(0, &ch, 1) == 1 && ch == 'z');
    }
    close(fds[0]), close(fds[1]);
}
