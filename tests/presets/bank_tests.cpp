// SPDX-License-Identifier: AGPL-3.0-or-later
#include "presets/preset_bench.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <string>

// What holds for every factory preset: it loads as it is written, and it is fit to be heard.

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
    PresetBench bench (factoryFiles().at (static_cast<std::size_t> (number)));
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
        PresetBench bench (factoryFiles().at (static_cast<std::size_t> (number)));

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

TEST (FactoryBank, EveryPresetIsFitToBeHeardAndDiesAway)
{
    const auto phrase = bandPhrase();
    const double dry = rms (phrase, 0.0, kPhraseSeconds);

    for (int number = 0; number < kNumPresets; ++number)
    {
        SCOPED_TRACE (nameOf (number));
        const auto sound = renderOf (number, phrase);
        expectLevels (sound, dry);

        if (number != kBucket)
            expectDyingAway (sound);
    }
}
