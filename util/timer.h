// util/timer.h - wall-clock time. Reads the system clock; nothing else.
#pragma once

// Wall-clock time in seconds since the epoch, microsecond resolution.
double GetRunTime(void);
