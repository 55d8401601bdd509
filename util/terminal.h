// util/terminal.h - single-key input on the terminal of standard input.
// Changes the terminal's settings and keeps one saved record of them.
#pragma once

// flag != 0: single-key input on standard input (canonical mode off, echo
// untouched, VMIN 1, VTIME 0), saving the current settings first. flag == 0:
// restore the saved settings (an all-zero record if none was saved). Returns
// the status of the apply call: 0 or -1.
int SetKeyboardIO(int flag);
