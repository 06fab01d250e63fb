// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <atomic>

/** A spin lock that waits as juce::SpinLock does and is left by a plain store. The framework's is left by an exchange,
    which makes the processor wait for everything before it; with two locks in every tick of four samples that was a
    tenth of a frame's time. Not re-entrant. */
class TickLock
{
public:
    using ScopedLockType = juce::GenericScopedLock<TickLock>;

    TickLock() = default;

    /** Waits until no other thread has the lock: spins at first, then lets other threads run. Any thread. */
    void enter() const noexcept
    {
        if (! tryEnter()) [[unlikely]]
            wait();
    }

    /** Takes the lock if it is free. Any thread; doesn't wait. */
    bool tryEnter() const noexcept { return ! isTaken.exchange (true, std::memory_order_acquire); }

    /** Leaves the lock. The thread that has it. */
    void exit() const noexcept { isTaken.store (false, std::memory_order_release); }

private:
    void wait() const noexcept
    {
        for (int i = 0; i < 20; ++i)
            if (tryEnter())
                return;

        while (! tryEnter())
            juce::Thread::yield();
    }

    mutable std::atomic<bool> isTaken { false };

    JUCE_DECLARE_NON_COPYABLE (TickLock)
};
