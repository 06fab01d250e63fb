// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "promises.h"
#include "sound_measures.h"

#include <algorithm>
#include <cmath>
#include <numeric>

// What the checks share.

inline juce::String text (double value, int decimals = 1)
{
    return juce::String (value, decimals);
}

inline bool within (double value, double low, double high)
{
    return value >= low && value <= high;
}

/** Largest minus smallest. */
inline double span (const std::vector<double>& values)
{
    const auto [low, high] = std::minmax_element (values.begin(), values.end());
    return *high - *low;
}

inline double median (std::vector<double> values)
{
    std::sort (values.begin(), values.end());
    return values[values.size() / 2];
}

/** The value that so large a part of them is below. */
inline double quantile (std::vector<double> values, double part)
{
    std::sort (values.begin(), values.end());
    return values[static_cast<std::size_t> (part * static_cast<double> (values.size() - 1))];
}

/** Levels of a side in windows of so many seconds. */
inline std::vector<double> levels (const Sound& sound, int channel, double from, double to,
                                   double window)
{
    std::vector<double> all;

    for (double t = from; t + window <= to; t += window)
        all.push_back (levelAt (sound, channel, t, window));

    return all;
}

/** Centroids of a side over time, in semitones above 40 Hz, but for silence. */
inline std::vector<double> colours (const Sound& sound, int channel, double from, double to,
                                    double step = 0.08)
{
    std::vector<double> all;

    for (double t = from; t + 0.09 <= to; t += step)
        if (levelAt (sound, channel, t, 0.085) > -70.0)
            all.push_back (semitones (centroid (spectrumAt (sound, t, channel)) / 40.0));

    return all;
}
