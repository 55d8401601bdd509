// SetKeyboardIO on a pseudo-terminal opened by the test, and on standard
// input that is not a terminal. Standard input is swapped for the test's own
// descriptor and put back afterwards, so the terminal running the tests (if
// any) is never touched.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "util/terminal.h"

namespace {

// Makes fd standard input for the guard's lifetime. With standard input
// closed, the descriptors a test opens would take number 0 themselves, so
// /dev/null is parked there first.
struct StdinSwap {
    int saved;
    explicit StdinSwap(int fd) : saved(dup(0)) { dup2(fd, 0); }
    ~StdinSwap()
    {
        dup2(saved, 0);
        close(saved);
    }
};

void occupy_stdin(void)
{
    if (fcntl(0, F_GETFD) == -1) open("/dev/null", O_RDONLY);  // becomes descriptor 0
}

// Whether standard input has something to read within ms milliseconds.
bool readable(int ms)
{
    pollfd p = {0, POLLIN, 0};
    return poll(&p, 1, ms) == 1;
}

}  // namespace

TEST(Keyboard, SingleKeysOnPseudoTerminal)
{
    occupy_stdin();
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    if (master < 0) GTEST_SKIP() << "no pseudo-terminals here";
    ASSERT_EQ(grantpt(master), 0);
    ASSERT_EQ(unlockpt(master), 0);
    const int slave = open(ptsname(master), O_RDWR | O_NOCTTY);
    ASSERT_GE(slave, 0);
    termios before;
    ASSERT_EQ(tcgetattr(slave, &before), 0);
    ASSERT_TRUE(before.c_lflag & ICANON);  // a new terminal starts in line mode
    {
        StdinSwap in(slave);
        ASSERT_EQ(SetKeyboardIO(1), 0);
        termios raw;
        ASSERT_EQ(tcgetattr(0, &raw), 0);
        EXPECT_EQ(raw.c_lflag, before.c_lflag & ~(tcflag_t)ICANON);  // echo and the rest kept
        EXPECT_EQ(raw.c_iflag, before.c_iflag);
        EXPECT_EQ(raw.c_cc[VMIN], 1);
        EXPECT_EQ(raw.c_cc[VTIME], 0);

        // One key, no newline, arrives at once.
        ASSERT_EQ(write(master, "q", 1), 1);
        ASSERT_TRUE(readable(5000));
        char key[4] = {};
        EXPECT_EQ(read(0, key, sizeof key), 1);
        EXPECT_EQ(key[0], 'q');

        ASSERT_EQ(SetKeyboardIO(0), 0);
        termios after;
        ASSERT_EQ(tcgetattr(0, &after), 0);
        EXPECT_EQ(after.c_lflag, before.c_lflag);
        EXPECT_EQ(after.c_cc[VMIN], before.c_cc[VMIN]);
        EXPECT_EQ(after.c_cc[VTIME], before.c_cc[VTIME]);
    }
    close(slave);
    close(master);
}

TEST(Keyboard, NotATerminalFailsHarmlessly)
{
    occupy_stdin();
    int fds[2];
    ASSERT_EQ(pipe(fds), 0);
    {
        StdinSwap in(fds[0]);
        EXPECT_EQ(SetKeyboardIO(1), -1);
        EXPECT_EQ(errno, ENOTTY);
        EXPECT_EQ(SetKeyboardIO(0), -1);
        ASSERT_EQ(write(fds[1], "z", 1), 1);  // the pipe still carries data
        char ch = 0;
        EXPECT_TRUE(read(0, &ch, 1) == 1 && ch == 'z');
    }
    close(fds[0]);
    close(fds[1]);
}
