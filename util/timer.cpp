// util/timer.cpp - wall-clock time from gettimeofday.
#include "util/timer.h"

#include <sys/time.h>

double GetRunTime(void)
{
    struct timeval tv;
    gettimeofday(&tv, nullptr);
    return tv.tv_sec + tv.tv_usec / 1000000.0;
}
