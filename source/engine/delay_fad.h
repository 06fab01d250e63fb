// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "engine/lanes.h"

#include <cstddef>
#include <cstdint>

/** The multipliers of Delay N Multiplier, by its choice index. */
inline constexpr std::int32_t multTable[4] = { 1, 2, 4, 8 };

/** A line's buffer is cleared by pages of 2 to this power slots: 4 KB, well under a microsecond each. */
inline constexpr int kPageShift = 10;

/** A tape-like delay line: one circular buffer under a read and a write head that both move at a variable,
    fractional rate. There is no crossfade: a new time makes the read head run faster or slower until the
    heads are the right distance apart, and the pitch bends meanwhile. Reverse swaps the heads and runs all
    of it backwards.

    The positions are single precision: at 576000 slots that leaves a fraction of about 1/32 of a slot, and
    that is accepted. Set up with delay_fad_init; from then on the audio thread's alone, but for
    delay_fad_prepare, delay_fad_clear and delay_fad_sweep between blocks. */
struct DelayFad
{
    float timeMs = 0.0f;             ///< effective delay time, 2 to 12000 ms
    std::uint64_t maxTimeMs = 0;     ///< what the buffer is sized for; set by delay_fad_init only
    std::uint64_t delaySamples = 0;  ///< target distance of the heads, in slots
    std::uint64_t bufferSize = 0;  ///< slots; 0 only if memory ran out, and then the line is silent
    float* buffer = nullptr;       ///< owned, malloc family; freed by delay_fad_free
    float readPos = 0.0f;          ///< slots, 0 up to bufferSize
    float writePos = 0.0f;         ///< slots, 0 up to bufferSize
    float readRate = 1.0f;         ///< slots per sample, 0.5 to 1.5
    float writeRate = 1.0f;        ///< slots per sample, always what readRate is
    float lastIn = 0.0f;           ///< the previous call's input, raw
    bool resetPending = true;      ///< the next call puts the read head in its exact place
    bool reverse = false;          ///< direction in force
    bool reverseRequest = false;   ///< direction asked for
    bool loop = false;             ///< recirculate the buffer at unity
    float thru = 0.0f;             ///< 1 while the line is bypassed, else 0
    float out = 0.0f;  ///< result of the last delay_fad_dsp; the next sample takes it up

    std::uint64_t numPages = 0;  ///< of the buffer; the last may be shorter than the others
    bool* written = nullptr;     ///< by page: slots may be other than 0; behind the buffer's slots
    bool* stale = nullptr;       ///< by page: cleared, but the slots aren't 0 yet; behind written
    std::uint64_t numSwept = 0;  ///< so many pages from the first on are not stale
};

/** Allocates the buffer for the global sample rate and sets the heads; without memory the line stays silent. Any
    thread, before the first block. */
void delay_fad_init (DelayFad& line) noexcept;

/** Frees the buffer, which leaves the line silent. Any thread, after the last block. */
void delay_fad_free (DelayFad& line) noexcept;

/** Sizes the buffer for the global sample rate, and if that changes its length sets heads, rates and last
    input anew. The longest time in milliseconds stays what delay_fad_init found. If memory runs out, buffer
    and length stay as they are. Any thread, not beside a block. */
void delay_fad_prepare (DelayFad& line) noexcept;

/** Silences the buffer and puts both heads back; the direction, out, lastIn and a pending reset stay. What was written
    only becomes stale here: delay_fad_dsp zeroes a stale page before it touches it, and delay_fad_sweep the others, so
    that this takes two bytes' work per page. Any thread while no block runs, or the audio thread. */
void delay_fad_clear (DelayFad& line) noexcept;

/** Whether any page may be stale. Then only delay_fad_dsp may read or write the buffer. */
inline bool delay_fad_is_stale (const DelayFad& line) noexcept
{
    return line.numSwept < line.numPages;
}

/** Zeroes the next stale pages, so many at most. Any thread while no block runs, or the audio thread. */
void delay_fad_sweep (DelayFad& line, std::uint64_t maxPages) noexcept;

/** Sets the time of the coming block: mult times either the beat length at position timeNorm (synced, at
    tempo beats per minute) or timeMs, within 2 to 12000 ms. A new synced time jumps at once, a new free one
    glides. Audio thread, once per block. */
void delay_fad_set_time (DelayFad& line, bool synced, std::int32_t mult, float timeNorm,
                         float timeMs, double tempo) noexcept;

/** One sample through the line: in is written, the read head's value is left in line.out. Reads and writes
    stay inside the buffer whatever the heads' positions are. Audio thread, lock-free. */
void delay_fad_dsp (DelayFad& line, float in) noexcept;

/** The soft limit on what a feedback destination x brings back into its line, times amount (0 to 1), in each lane: a
    cubic that meets 0.76 at x = 1 with no slope, so that feedback near 1 builds up but can't run away. Any
    thread: no state. */
inline Floats feedbackShape (Floats amount, Floats x) noexcept
{
    const Floats cubic = amount * 0.38f * (3.0f * x - x * x * x);

    if (! any (absolute (x) > 1.0f)) [[likely]]
        return cubic;

    return select (x > 1.0f, amount * 0.76f, select (x < -1.0f, amount * -0.76f, cubic));
}
