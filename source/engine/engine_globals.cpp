// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/engine_globals.h"

std::atomic<float> gAudioSamplingRate { 44100.0f };
std::atomic<float> gAudioSamplingRateReciprocal { 1.0f / 44100.0f };
std::atomic<float> gSamplesPerMillisecond { 44.1f };

void setAudioSamplingRate (double sampleRate) noexcept
{
    const auto rate = static_cast<float> (sampleRate);
    gAudioSamplingRate.store (rate, std::memory_order_relaxed);
    gAudioSamplingRateReciprocal.store (1.0f / rate, std::memory_order_relaxed);
    gSamplesPerMillisecond.store (0.001f * rate, std::memory_order_relaxed);
}
