// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <time.h>

/** Measures the processor time of the thread that made it, so that what else the machine does hardly shows.
    The benchmark library's own inverted rates would do but for their unit, which is always seconds. */
class Stopwatch
{
public:
    /** Nanoseconds since construction. */
    double nanoseconds() const { return now() - start; }

private:
    static double now()
    {
        timespec time {};
        clock_gettime (CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double> (time.tv_sec) * 1.0e9 + static_cast<double> (time.tv_nsec);
    }

    double start = now();
};
