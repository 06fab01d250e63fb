// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "preset_run.h"

#include <array>
#include <vector>

/** What is measured of a preset over the five sources. All levels in LU or dB. */
struct Figures
{
    std::array<double, 5> change {};  ///< loudness against the dry source
    std::array<double, 2>
        soft {};  ///< what change gains on pluck and chords when they are 12 dB softer
    double mean = 0.0;
    double peak = -150.0;    ///< dBTP, the worst source, its tail included
    int clips = 0;           ///< all sources
    double leftRight = 0.0;  ///< left over right against the dry source, mean of all
    double monoLoss = 0.0;   ///< the worst source
    double tail = 0.0;       ///< seconds from the end of the phrase to 60 dB below its level
    double growth = 0.0;  ///< dB: loudest second of the tail's second half over that of its first
    std::vector<double> map;  ///< what spectra and sides look like over time, for distances
};

inline constexpr double kTailSeconds = 17.0;

/** Plays all sources. Presets that follow MIDI get the MIDI line. */
Figures figuresOf (const Preset& preset, bool midi);

/** Root mean square of the difference of two maps, dB. */
double distance (const std::vector<double>& a, const std::vector<double>& b);

/** The map of the sources as they are. */
const std::vector<double>& dryMap();
