// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <cstddef>
#include <random>
#include <vector>

/** White noise at a tenth of full scale, the same at every run and with every standard library. */
inline std::vector<float> whiteNoise (std::size_t numSamples, unsigned seed)
{
    std::minstd_rand generator (seed);
    std::vector<float> samples (numSamples);

    for (auto& sample : samples)
        sample = 0.2f * static_cast<float> (generator() >> 7) / 16777216.0f - 0.1f;

    return samples;
}
