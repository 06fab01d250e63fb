// SPDX-License-Identifier: AGPL-3.0-or-later
#include "bank_table.h"
#include "figures.h"
#include "sound_measures.h"

#include <juce_audio_formats/juce_audio_formats.h>

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <iomanip>
#include <iostream>

// What holds for every factory preset: it loads as it is written, it keeps the promise of its
// name and the rules of
// bank_table.h on five sources. VELKOR_BANK=3,17 looks at these two alone; PrintFigures shows
// what is measured.

namespace
{
/** Which presets VELKOR_BANK names; all without it. */
bool isWanted (int number)
{
    const auto names = juce::SystemStats::getEnvironmentVariable ("VELKOR_BANK", {});
    return names.isEmpty() ||
           juce::StringArray::fromTokens (names, ",", {}).contains (juce::String (number));
}

/** The figures of all presets, or of those whose numbers VELKOR_BANK names. Measured once. */
const std::vector<Figures>& allFigures()
{
    static const auto figures = []
    {
        std::vector<Figures> all (kNumPresets);

        for (const auto& row : bankTable())
            if (isWanted (row.number))
                all[static_cast<std::size_t> (row.number)] =
                    figuresOf (Preset (row.number), row.is (midi));

        return all;
    }();

    return figures;
}

constexpr double kLeastDistance = 2.0;  // dB; from the plain slap to the dry sources it is 4

juce::String numbers (const std::array<double, 5>& values)
{
    juce::String text;

    for (const double value : values)
        text << juce::String (value, 1) << ' ';

    return text;
}
}  // namespace

TEST (FactoryBank, EveryDocumentReachesTheInstanceAsItIsWritten)
{
    const auto files = factoryFiles();
    ASSERT_EQ (files.size(), kNumPresets);
    VelkorAudioProcessor processor;

    for (int number = 0; number < kNumPresets; ++number)
    {
        SCOPED_TRACE (files[number].getFileName().toStdString());
        const auto document = juce::parseXML (files[number]);
        ASSERT_NE (document, nullptr);
        processor.loadStateFromXML (document.get());

        const auto name = juce::String (number).paddedLeft ('0', 2) + " - " +
                          document->getStringAttribute ("PresetName");
        EXPECT_EQ (files[number].getFileNameWithoutExtension(), name);
        EXPECT_EQ (processor.presetName, document->getStringAttribute ("PresetName"));

        const auto* const parameters = document->getChildByName ("Parameters");
        ASSERT_EQ (parameters->getNumChildElements(), kNumParameters);

        for (const auto* element : parameters->getChildIterator())
        {
            const auto id = element->getStringAttribute ("id");
            const auto* const value = processor.parameterTree.getRawParameterValue (id);
            ASSERT_NE (value, nullptr) << id;
            const auto written = static_cast<float> (element->getDoubleAttribute ("value"));
            EXPECT_NEAR (value->load(), written, 1e-6f + 1e-5f * std::abs (written)) << id;
        }

        EXPECT_EQ (processor.engine->signal.connectionCount,
                   document->getChildByName ("SignalMatrix")->getNumChildElements());
        EXPECT_EQ (processor.engine->modulation.router.routes.size(),
                   document->getChildByName ("ModMatrix")->getNumChildElements());
    }
}

// One test, because the figures take most of a minute and each test is a process of its own.
TEST (FactoryBank, KeepsItsLevelsEndsItsTailsAndHasNoTwoAlike)
{
    for (const auto& row : bankTable())
    {
        if (! isWanted (row.number))
            continue;

        SCOPED_TRACE (juce::String (row.number) + " - " + row.name);
        const auto& f = allFigures()[static_cast<std::size_t> (row.number)];

        EXPECT_LE (std::abs (f.mean), 3.0) << numbers (f.change) << "LU";
        EXPECT_GE (*std::min_element (f.change.begin(), f.change.end()), -5.0)
            << numbers (f.change) << "LU";
        EXPECT_LE (*std::max_element (f.change.begin(), f.change.end()), 5.0)
            << numbers (f.change) << "LU";

        EXPECT_GE (*std::min_element (f.soft.begin(), f.soft.end()), -8.0)
            << "LU when played 12 dB softer";
        EXPECT_LE (f.peak, -0.3) << "dBTP";
        EXPECT_EQ (f.clips, 0);
        EXPECT_LE (std::abs (f.leftRight), 1.5) << "dB, left over right";
        EXPECT_GE (f.monoLoss, -3.0) << "LU in mono";

        if (! row.is (longTail))
        {
            EXPECT_LE (f.tail, 15.0) << "s";
            EXPECT_LE (f.growth, 0.0) << "dB more in the tail's second half";
        }

        for (const auto& other : bankTable())
            if (other.number < row.number && isWanted (other.number))
            {
                EXPECT_GE (
                    distance (f.map, allFigures()[static_cast<std::size_t> (other.number)].map),
                    kLeastDistance)
                    << "from " << other.name;
            }
    }
}

TEST (FactoryBank, NeedsNoClockWhereNoBeatIsPromised)
{
    const auto& drums = soundSources()[0].sound;

    for (const auto& row : bankTable())
        if (row.is (noClock) && isWanted (row.number))
        {
            Playing stopped;
            stopped.running = false;
            const auto with = played (Preset (row.number), drums),
                       without = played (Preset (row.number), drums, stopped);

            for (int channel = 0; channel < 2; ++channel)
                EXPECT_TRUE (std::equal (with.getReadPointer (channel),
                                         with.getReadPointer (channel) + with.getNumSamples(),
                                         without.getReadPointer (channel)))
                    << row.number << " - " << row.name;
        }
}

TEST (FactoryBank, KeepsWhatEachNamePromises)
{
    for (const auto& row : bankTable())
    {
        if (! isWanted (row.number))
            continue;

        const Preset preset (row.number);
        EXPECT_EQ (preset.fileName,
                   juce::String (row.number).paddedLeft ('0', 2) + " - " + row.name);
        const auto verdict = row.check (preset);
        EXPECT_TRUE (verdict.holds)
            << row.number << " - " << row.name << ": " << row.promise << '\n'
            << verdict.found;
        if (std::getenv ("VELKOR_BANK_VERBOSE"))
            std::cout << row.number << ": " << verdict.found << std::endl;
    }
}

TEST (SoundMeasures, AgreeWithKnownSounds)
{
    auto sine = tone (997.0, 4.0, 1.0);
    sine.clear (1, 0, sine.getNumSamples());
    EXPECT_NEAR (loudness (sine), -3.01, 0.05);
    EXPECT_GT (balance (sine, 0, framesIn (1.0)), 60.0);

    auto halves = silence (0.1);  // a quarter of the rate, 45 degrees late: no sample sees the peak

    for (int i = 0; i < halves.getNumSamples(); ++i)
        halves.setSample (
            0, i,
            static_cast<float> (0.5 * std::sin (juce::MathConstants<double>::halfPi * (i + 0.5))));

    EXPECT_NEAR (truePeak (halves), -6.02, 0.2);

    auto flat = silence (0.1);
    flat.setSample (0, 10, 1.0f), flat.setSample (0, 11, 1.0f);
    EXPECT_EQ (clippedRuns (flat), 0);
    flat.setSample (0, 12, 1.0f);
    EXPECT_EQ (clippedRuns (flat), 1);

    const auto steady = tone (440.0, 1.0, 0.1);
    EXPECT_NEAR (peakHertz (spectrumAt (steady, 0.3), 100.0, 5000.0), 440.0, 0.5);
    EXPECT_NEAR (pitchTrack (steady, 0, 430.0, 0.2, 0.5)[10], 440.0, 0.1);
    EXPECT_NEAR (centroid (spectrumAt (steady, 0.3)), 440.0, 5.0);
    EXPECT_NEAR (monoLoss (steady, 0, framesIn (1.0)), 0.0, 0.01);

    for (const auto& source : soundSources())
    {
        SCOPED_TRACE (source.name);
        EXPECT_NEAR (loudness (source.sound), -18.0, 0.05);
        EXPECT_LT (truePeak (source.sound), -2.0);
    }
}

/** Run by name, with disabled tests on: for the work on the bank. */
TEST (FactoryBank, DISABLED_PrintFigures)
{
    std::cout << std::fixed << std::setprecision (1)
              << "        drums pluck chord   pad voice   mean | peak clip   L-R  mono  tail grow "
                 "| soft pluck chord | nearest\n";

    for (std::size_t i = 0; i < kNumPresets; ++i)
    {
        const auto& f = allFigures()[i];

        if (f.map.empty())
            continue;

        std::cout << std::setw (2) << i << "    ";

        for (const double change : f.change)
            std::cout << std::setw (6) << change;

        std::size_t nearest = kNumPresets;
        double least = distance (f.map, dryMap());

        for (std::size_t k = 0; k < kNumPresets; ++k)
            if (k != i && ! allFigures()[k].map.empty())
                if (const double d = distance (f.map, allFigures()[k].map); d < least)
                    nearest = k, least = d;

        std::cout << std::setw (7) << f.mean << " |" << std::setw (5) << f.peak << std::setw (5)
                  << f.clips << std::setw (6) << f.leftRight << std::setw (6) << f.monoLoss
                  << std::setw (6) << f.tail << std::setw (5) << f.growth << " |" << std::setw (6)
                  << f.soft[0] << std::setw (6) << f.soft[1] << " |" << std::setw (4) << nearest
                  << std::setw (6) << least << "  " << bankTable()[i].name << '\n';
    }
}

TEST (FactoryBank, DISABLED_PrintSources)
{
    for (const auto& source : soundSources())
        std::cout << source.name << ": " << truePeak (source.sound) << " dBTP, centroid "
                  << centroid (spectrumAt (source.sound, 0.0, -1, 262144)) << " Hz\n";
}

/** For scripts/make-sounds: writes the sources as WAV into the folder VELKOR_SOURCES. */
TEST (FactoryBank, DISABLED_WriteSources)
{
    const juce::File folder (juce::SystemStats::getEnvironmentVariable ("VELKOR_SOURCES", {}));

    for (const auto& source : soundSources())
    {
        auto stream =
            folder.getChildFile (juce::String (source.name) + ".wav").createOutputStream();
        ASSERT_NE (stream, nullptr);
        const std::unique_ptr<juce::AudioFormatWriter> writer (
            juce::WavAudioFormat().createWriterFor (stream.release(), kSoundRate, 2, 24, {}, 0));
        ASSERT_TRUE (
            writer->writeFromAudioSampleBuffer (source.sound, 0, source.sound.getNumSamples()));
    }
}
