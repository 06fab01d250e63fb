// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

/** While one stands, this thread may not allocate, free, lock, wait, or ask for, open, read or write a file: each such
    call is counted. The calls themselves are replaced for the whole program in audio_guard.cpp. */
class AudioGuard
{
public:
    AudioGuard() noexcept;
    ~AudioGuard();
    AudioGuard (const AudioGuard&) = delete;
    AudioGuard& operator= (const AudioGuard&) = delete;

    /** Forbidden calls of this thread so far, and the name of the first. */
    static int calls() noexcept;
    static const char* firstCall() noexcept;
};
