// SPDX-License-Identifier: AGPL-3.0-or-later
#include "velkor_render/interruption.h"

#include "velkor_render/failure.h"

#include <csignal>

namespace
{
volatile std::sig_atomic_t caughtSignal = 0;

void keepSignal (int signalNumber)
{
    caughtSignal = signalNumber;
}
}  // namespace

void catchInterruptions()
{
    std::signal (SIGINT, keepSignal);
    std::signal (SIGTERM, keepSignal);

#ifndef _WIN32
    std::signal (SIGHUP, keepSignal);
    std::signal (SIGPIPE, keepSignal);  // "velkor-render ... | head"
#endif
}

void throwIfInterrupted()
{
    if (caughtSignal != 0)
        fail ("interrupted");
}

void endIfInterrupted()
{
    if (caughtSignal == 0)
        return;

    std::signal (caughtSignal, SIG_DFL);
    std::raise (caughtSignal);
}
