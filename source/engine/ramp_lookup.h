// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <cstdint>

/** A linear ramp towards a target, advanced once per control tick. Its lengths are counted in samples but
    run in ticks, so that a ramp of 1 ms lasts 4 ms; Kill and the MIDI gate are to have that length. */
struct RampGenerator
{
    float target = 0.0f;
    float upTime = 0.001f;        ///< seconds
    float downTime = 0.001f;      ///< seconds
    std::uint64_t upCount = 1;    ///< ticks of a rising ramp, at least 1
    std::uint64_t downCount = 1;  ///< ticks of a falling ramp, at least 1
    double value = 0.0;           ///< where the ramp stands
    double step = 0.0;            ///< added per tick
    std::uint64_t remaining = 0;  ///< ticks left
    float reciprocal = 1.0f;      ///< 1 over upCount; written, never read
    float output = 0.0f;          ///< result of the last rampTick
};

/** Sets both counts for the global sample rate, everything else to rest at 0. Any thread, before the first
    block. */
void ramp_init (RampGenerator& ramp) noexcept;

/** One tick towards x; returns the new output. Audio thread, lock-free. */
float rampTick (RampGenerator& ramp, float x) noexcept;

/** Recomputes the counts for the global sample rate. A ramp in flight starts over, for its whole length,
    from where it stands. Called by prepareToPlay. Any thread, not beside a block. */
void rampSetRate (RampGenerator& ramp) noexcept;

/** The filter's cut-off scale: 40 to 18000 Hz in equal ratios over 1024 entries, and one more that repeats
    the last, so that an interpolation at the very top stays inside. */
struct FreqLookup
{
    std::int32_t size = 1024;
    float* table = nullptr;  ///< size + 1 entries in hertz, owned; empty if memory ran out
    float output = 0.0f;     ///< the last value taken, in hertz
};

/** Allocates and fills the table; leaves it empty if memory runs out, and then the filters keep their cut-off. Any
    thread, before the first block. */
void freq_lookup_init (FreqLookup& lookup) noexcept;

/** Allocates size + 1 zeroed floats for tableLookup; empty if memory ran out. Free with std::free. Any thread but
    the audio thread. */
float* lookup_table_allocate (std::int32_t size) noexcept;

/** Interpolates linearly in a table of size + 1 entries at x, 0 to 1. The first entry's share is worked out
    in 64 bits, the second's in 32: that is part of the sound. The table must be there. Audio thread, lock-free. */
inline float tableLookup (std::int32_t size, const float* table, float x) noexcept
{
    const float p = static_cast<float> (size - 1) * x;
    const auto i = static_cast<std::int32_t> (p);
    const float f = p - static_cast<float> (i);
    const double first = (1.0 - static_cast<double> (f)) * static_cast<double> (table[i]);
    return static_cast<float> (first + static_cast<double> (f * table[i + 1]));
}
