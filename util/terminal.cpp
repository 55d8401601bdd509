// util/terminal.cpp - single-key input through termios.
#include "util/terminal.h"

#include <termios.h>

namespace {

struct termios saved_tty;  // the settings SetKeyboardIO(1) replaced

}  // namespace

int SetKeyboardIO(int flag)
{
    if (flag) {
        tcgetattr(0, &saved_tty);
        struct termios raw = saved_tty;
        raw.c_lflag &= ~(tcflag_t)ICANON;
        raw.c_cc[VMIN] = 1;
        raw.c_cc[VTIME] = 0;
        return tcsetattr(0, TCSANOW, &raw);
    }
    return tcsetattr(0, TCSANOW, &saved_tty);
}
