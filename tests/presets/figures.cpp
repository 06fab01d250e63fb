// SPDX-License-Identifier: AGPL-3.0-or-later
#include "figures.h"

#include "sound_measures.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace
{
const int kPhraseFrames = framesIn (kPhraseSeconds);

/** Levels of bands over time, left and right, above a floor 50 dB below the loudest; their mean
    taken
    out, so that level doesn't count. */
void appendMap (std::vector<double>& map, const Sound& sound)
{
    constexpr double kEdges[] = { 50, 120, 250, 500, 900, 1600, 2800, 5000, 9000, 16000 };
    std::vector<double> levels;

    for (int channel = 0; channel < 2; ++channel)
        for (double t = 0.5; t < kPhraseSeconds; t += 0.13)
        {
            const auto spectrum = spectrumAt (sound, t, channel, 2048);

            for (std::size_t band = 0; band + 1 < std::size (kEdges); ++band)
                levels.push_back (bandLevel (spectrum, kEdges[band], kEdges[band + 1]));
        }

    const double floor = *std::max_element (levels.begin(), levels.end()) - 50.0;

    for (auto& level : levels)
        level = std::max (level, floor);

    const double mean =
        std::accumulate (levels.begin(), levels.end(), 0.0) / static_cast<double> (levels.size());

    for (const double level : levels)
        map.push_back (level - mean);
}

bool isMapped (std::size_t source)
{
    return source != 3;  // the pad says little
}
}  // namespace

Figures figuresOf (const Preset& preset, bool midi)
{
    Figures figures;
    const auto how = midi ? withMidiLine() : Playing();

    for (std::size_t i = 0; i < soundSources().size(); ++i)
    {
        const auto& dry = soundSources()[i].sound;
        const bool hasTail = i == 2;
        const auto out =
            played (preset, followedBySilence (dry, hasTail ? kTailSeconds : 1.0), how);
        Sound phrase (2, kPhraseFrames);

        for (int channel = 0; channel < 2; ++channel)
            phrase.copyFrom (channel, 0, out, channel, 0, kPhraseFrames);

        figures.change[i] = loudness (phrase) - loudness (dry);
        figures.mean += figures.change[i] / 5.0;
        figures.peak = std::max (figures.peak, truePeak (out));
        figures.clips += clippedRuns (out);
        figures.leftRight +=
            (balance (out, 0, kPhraseFrames) - balance (dry, 0, kPhraseFrames)) / 5.0;
        figures.monoLoss = std::min (figures.monoLoss, monoLoss (out, 0, kPhraseFrames) -
                                                           monoLoss (dry, 0, kPhraseFrames));

        if (i == 1 || i == 2)  // what is played with touch
        {
            auto quiet = dry;
            quiet.applyGain (juce::Decibels::decibelsToGain (-12.0f));
            figures.soft[i - 1] =
                loudness (played (preset, quiet, how)) - loudness (quiet) - figures.change[i];
        }

        if (isMapped (i))
            appendMap (figures.map, phrase);

        if (hasTail)
        {
            figures.tail =
                secondsUntilBelow (out, kPhraseSeconds, levelAt (dry, 0.0, kPhraseSeconds), 60.0);
            const auto loudest = [&out] (double from, double to)
            {
                double top = -60.0;  // quieter is silence

                for (double t = from; t + 1.0 <= to; t += 0.5)
                    top = std::max (top, levelAt (out, kPhraseSeconds + t, 1.0));

                return top;
            };
            figures.growth =
                loudest (kTailSeconds / 2, kTailSeconds) - loudest (0.0, kTailSeconds / 2);
        }
    }

    return figures;
}

double distance (const std::vector<double>& a, const std::vector<double>& b)
{
    return std::sqrt (std::transform_reduce (a.begin(), a.end(), b.begin(), 0.0, std::plus<>(),
                                             [] (double x, double y)
                                             { return (x - y) * (x - y); }) /
                      static_cast<double> (a.size()));
}

const std::vector<double>& dryMap()
{
    static const auto map = []
    {
        std::vector<double> all;

        for (std::size_t i = 0; i < soundSources().size(); ++i)
            if (isMapped (i))
                appendMap (all, soundSources()[i].sound);

        return all;
    }();

    return map;
}
