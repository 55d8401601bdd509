// SetKeyboardIO on a pseudo-terminal opened by the test, and on standard input that is not a terminal. Standard
// input is swapped for the test's descriptor and put back, so the terminal running the tests is never touched.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "util/terminal.h"

// With standard input closed the test's descriptors would take number 0, so /dev/null is parked there first.
[[maybe_unused]] static const int k_parked = fcntl(0, F_GETFD) == -1 ? open("/dev/null", O_RDONLY) : 0;

struct StdinSwap {  // makes fd standard input for the guard's lifetime
    int saved = dup(0);
    explicit StdinSwap(int fd) { dup2(fd, 0); }
    ~StdinSwap() { dup2(saved, 0), close(saved); }
};

TEST(Keyboard, SingleKeysOnPseudoTerminalThenRestored)
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
