// SPDX-License-Identifier: AGPL-3.0-or-later
#include "presets/preset_bench.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <utility>

// What holds for every factory preset: it loads as it is written, and it is fit to be heard. What single
// presets promise by their names is in named_echoes_tests.cpp and named_motions_tests.cpp.

namespace
{
constexpr int kNumPresets = 64;
constexpr double kPhraseSeconds = 4.0;
constexpr double kTailSeconds = 2.5;
constexpr int kBucket = 57;  // loops what it caught while a note was held

std::string nameOf (int number)
{
    return factoryFiles().at (static_cast<std::size_t> (number)).getFileName().toStdString();
}

/** The phrase and a rest through a preset; in the second and the fourth second a note is held, and the wheel
    goes up by and by. */
Sound renderOf (int number, const Sound& phrase)
{
    PresetBench bench (number);
    Sound output;

    for (int i = 0; i < 8; ++i)
    {
        if (i % 4 == 2)
            bench.note (i < 4 ? 67 : 48, true);
        else if (i % 4 == 0)
            bench.note (i <= 4 ? 67 : 48, false);

        bench.wheel (18 * i);
        const auto start = i * phrase.frames() / 8;
        const auto end = (i + 1) * phrase.frames() / 8;
        output =
            output + bench.play ({ { phrase.left.begin() + start, phrase.left.begin() + end },
                                   { phrase.right.begin() + start, phrase.right.begin() + end } });
    }

    bench.note (48, false);
    return output + bench.play (silence (kTailSeconds));
}

/** Levels in dB of ten bands an octave apart, in steps of 50 ms, left and then right, for a sound brought to
    a common loudness; 60 dB below that nothing counts. */
std::vector<float> portraitOf (const Sound& sound)
{
    constexpr std::size_t kBands = 10;
    const double loudness = rms (sound, 0.0, kPhraseSeconds);
    const int step = framesIn (0.05);
    std::array<float, kBands> coefficients {};
    std::vector<float> portrait;

    for (std::size_t band = 0; band < kBands; ++band)  // one-pole lowpasses at 12 kHz, 6 kHz ...
        coefficients[band] = static_cast<float> (
            1.0 - std::exp (-6.2832 * 12000.0 / kRate * std::exp2 (-static_cast<double> (band))));

    for (const auto* channel : { &sound.left, &sound.right })
    {
        std::array<float, kBands> lowpass {};

        for (int start = 0; start + step <= framesIn (kPhraseSeconds); start += step)
        {
            std::array<float, kBands> energy {};

            for (int i = start; i < start + step; ++i)
            {
                float rest = channel->at (static_cast<std::size_t> (i));

                for (std::size_t band = 0; band < kBands; ++band)
                {
                    lowpass[band] += coefficients[band] * (rest - lowpass[band]);
                    energy[band] += (rest - lowpass[band]) * (rest - lowpass[band]);
                    rest = lowpass[band];
                }
            }

            for (const float e : energy)
                portrait.push_back (static_cast<float> (
                    decibels (std::sqrt (static_cast<double> (e) / step) / loudness + 0.001)));
        }
    }

    return portrait;
}

/** Mean difference in dB. */
double distance (const std::vector<float>& a, const std::vector<float>& b)
{
    double sum = 0.0;

    for (std::size_t i = 0; i < a.size(); ++i)
        sum += static_cast<double> (std::abs (a[i] - b[i]));

    return sum / static_cast<double> (a.size());
}
/** Clean, present on both sides, and about as loud as the source. */
void expectLevels (const Sound& sound, double dry)
{
    for (const auto* channel : { &sound.left, &sound.right })
    {
        ASSERT_TRUE (std::all_of (channel->begin(), channel->end(),
                                  [] (float x) { return std::isfinite (x); }));
        EXPECT_GT (decibels (rms (*channel, 0.0, kPhraseSeconds) / dry), -10.0) << "one side";
    }

    const double top = decibels (peak (sound));
    EXPECT_LT (top, -0.5);
    EXPECT_GT (top, -18.0);
    const double loudness = decibels (rms (sound, 0.0, kPhraseSeconds) / dry);
    EXPECT_LT (loudness, 3.0);
    EXPECT_GT (loudness, -8.0);
}

void expectDyingAway (const Sound& sound)
{
    const double middle = kPhraseSeconds + 0.5 * kTailSeconds;
    const double first = rms (sound, kPhraseSeconds, middle);
    const double last = rms (sound, middle, kPhraseSeconds + kTailSeconds);
    EXPECT_LT (decibels (last), std::max (-70.0, decibels (first) - 1.0));
}
}  // namespace

TEST (FactoryBank, EveryDocumentReachesTheInstanceAsItIsWritten)
{
    const auto files = factoryFiles();
    ASSERT_EQ (files.size(), static_cast<std::size_t> (kNumPresets));

    for (int number = 0; number < kNumPresets; ++number)
    {
        const auto file = files[static_cast<std::size_t> (number)];
        SCOPED_TRACE (file.getFileName().toStdString());
        const auto document = juce::parseXML (file);
        ASSERT_NE (document, nullptr);
        PresetBench bench (number);

        const auto name = juce::String (number).paddedLeft ('0', 2) + " - " +
                          document->getStringAttribute ("PresetName");
        EXPECT_EQ (file.getFileNameWithoutExtension(), name);
        EXPECT_EQ (bench.processor.presetName, document->getStringAttribute ("PresetName"));

        const auto* const parameters = document->getChildByName ("Parameters");
        ASSERT_EQ (parameters->getNumChildElements(), kNumParameters);

        for (const auto* element : parameters->getChildIterator())
        {
            const auto id = element->getStringAttribute ("id");
            const auto* const value = bench.processor.parameterTree.getRawParameterValue (id);
            ASSERT_NE (value, nullptr) << id;
            const auto written = static_cast<float> (element->getDoubleAttribute ("value"));
            EXPECT_NEAR (value->load(), written, 1e-6f + 1e-5f * std::abs (written)) << id;
        }

        const auto& engine = *bench.processor.engine;
        EXPECT_EQ (engine.signal.connectionCount,
                   document->getChildByName ("SignalMatrix")->getNumChildElements());
        EXPECT_EQ (engine.modulation.router.routes.size(),
                   document->getChildByName ("ModMatrix")->getNumChildElements());
    }
}

TEST (FactoryBank, UsesAllSevenResponsesOfTheFilters)
{
    std::map<std::string, int> uses;

    for (int number = 0; number < kNumPresets; ++number)
    {
        PresetBench bench (number);

        for (const auto& [destination, id] : { std::pair { destFilter1, "Filter 1 Mode" },
                                               std::pair { destFilter2, "Filter 2 Mode" } })
        {
            bool isFed = false;

            for (int source = 0; source < kNumSignalSources; ++source)
                isFed = isFed || bench.processor.getSignalConnection (source, destination);

            const auto* const mode = bench.processor.parameterTree.getParameter (id);

            if (isFed)
                ++uses[mode->getCurrentValueAsText().toStdString()];
        }
    }

    for (const char* const response :
         { "Notch", "Ntch/LP", "Lowpass", "LP/BP", "Bandpass", "BP/HP", "Highpass" })
        EXPECT_GE (uses[response], 2) << response;
}

// One test, since the renders are what takes the time.
TEST (FactoryBank, EveryPresetIsFitToBeHeardDiesAwayAndDiffersFromEveryOther)
{
    const auto phrase = bandPhrase();
    const double dry = rms (phrase, 0.0, kPhraseSeconds);
    const auto portraitOfPhrase = portraitOf (phrase);
    std::vector<std::vector<float>> portraits;

    for (int number = 0; number < kNumPresets; ++number)
    {
        SCOPED_TRACE (nameOf (number));
        const auto sound = renderOf (number, phrase);
        expectLevels (sound, dry);

        if (number != kBucket)
            expectDyingAway (sound);

        portraits.push_back (portraitOf (sound));
        EXPECT_GT (distance (portraits.back(), portraitOfPhrase), 1.0) << "from the source";

        for (int other = 0; other < number; ++other)
            EXPECT_GT (distance (portraits.back(), portraits[static_cast<std::size_t> (other)]),
                       other == number - 1 ? 2.0 : 1.0)
                << nameOf (other);
    }
}
