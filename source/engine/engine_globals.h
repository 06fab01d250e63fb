// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <atomic>

/** The sample rate that every instance of the process works at, in hertz: that of whichever instance was
    prepared last. Sharing it is deliberate. Any thread; each value is atomic by itself, no order holds
    among the three. */
extern std::atomic<float> gAudioSamplingRate;

/** 1 over gAudioSamplingRate, in seconds. */
extern std::atomic<float> gAudioSamplingRateReciprocal;

/** The 32-bit product of 0.001 and gAudioSamplingRate once a rate has been set; 44.1 until then. */
extern std::atomic<float> gSamplesPerMillisecond;

/** Sets all three for a rate in hertz, above 0. Called by the prepareToPlay of any instance. Any thread; beside
    blocks of other instances too, which take the new values up as they come. */
void setAudioSamplingRate (double sampleRate) noexcept;

/** Reads one of the globals; a plain load on every machine that the plug-in runs on. Any thread, lock-free. */
inline float loadRelaxed (const std::atomic<float>& value) noexcept
{
    return value.load (std::memory_order_relaxed);
}

/** Samples in one control period. The last tick of a block may be shorter. */
inline constexpr int ControlTick = 4;
