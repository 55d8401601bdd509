// SetKeyboardIO on a pseudo-terminal opened by the test, and on standard input
// that is not a terminal. Standard input is swapped for the test's descriptor
// and put back afterwards, so the terminal running the tests is never touched.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "util/terminal.h"

// With standard input closed a test's own descriptors would take number 0, so
// /dev/null is parked there before any test runs.
[[maybe_unused]] static const int k_parked = fcntl(0, F_GETFD) == -1 ? open("/dev/null", O_RDONLY) : 0;

// Makes fd standard input for the guard's lifetime.
struct StdinSwap {
    int saved = dup(0);
    explicit StdinSwap(int fd) { dup2(fd, 0); }
    ~StdinSwap() { dup2(saved, 0), close(saved); }
};

TEST(Keyboard, SingleKeysOnPseudoTerminalThenRestored)
{
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(master, 0) << "no pseudo-terminals here";
    ASSERT_TRUE(grantpt(master) == 0 && unlockpt(master) == 0);
    const int slave = open(ptsname(master), O_RDWR | O_NOCTTY);
    termios before, raw, after;
    // a new terminal is in line mode
    ASSERT_TRUE(slave >= 0 && tcgetattr(slave, &before) == 0 && (before.c_lflag & ICANON));
    {
        StdinSwap in(slave);
        ASSERT_EQ(SetKeyboardIO(1), 0);
        ASSERT_EQ(tcgetattr(0, &raw), 0);
        EXPECT_EQ(raw.c_lflag, before.c_lflag & ~(tcflag_t)ICANON);  // echo and the rest kept
        EXPECT_TRUE(raw.c_iflag == before.c_iflag && raw.c_cc[VMIN] == 1 && raw.c_cc[VTIME] == 0);
        ASSERT_EQ(write(master, "q", 1), 1);  // one key, no newline, arrives at once
        pollfd p = {0, POLLIN, 0};
        ASSERT_EQ(poll(&p, 1, 5000), 1);
        char key[4] = {};
        EXPECT_TRUE(read(0, key, sizeof key) == 1 && key[0] == 'q');
        ASSERT_EQ(SetKeyboardIO(0), 0);
        ASSERT_EQ(tcgetattr(0, &after), 0);
        EXPECT_TRUE(after.c_lflag == before.c_lflag && after.c_cc[VMIN] == before.c_cc[VMIN]
            && after.c_cc[VTIME] == before.c_cc[VTIME]);
    }
    close(slave);
    close(master);
}

TEST(Keyboard, NotATerminalFailsHarmlessly)
{
    int fds[2];
    ASSERT_EQ(pipe(fds), 0);
    {
        StdinSwap in(fds[0]);
        EXPECT_EQ(SetKeyboardIO(1), -1);
        EXPECT_EQ(errno, ENOTTY);
        EXPECT_EQ(SetKeyboardIO(0), -1);
        char ch = 0;  // the pipe still carries data
        EXPECT_TRUE(write(fds[1], "z", 1) == 1 && read(0, &ch, 1) == 1 && ch == 'z');
    }
    close(fds[0]);
    close(fds[1]);
}
