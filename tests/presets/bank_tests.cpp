// SPDX-License-Identifier: AGPL-3.0-or-later
#include "support/duel.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

// What holds for every factory preset: it loads as it is written, and it is fit to be heard.

namespace
{
using Sound = juce::AudioBuffer<float>;

constexpr double kRate = 44100.0;  // Hz
constexpr int kHalfSecond = 22050;
constexpr int kPhraseFrames = 8 * kHalfSecond;
constexpr int kTailFrames = 5 * kHalfSecond;
constexpr int kNumPresets = 64;
constexpr int kBucket = 57;  // loops what it caught while a note was held

/** The preset files in the order of their numbers. */
juce::Array<juce::File> factoryFiles()
{
    const auto folder = juce::File (VELKOR_TEST_DATA).getSiblingFile ("resources/presets/Factory");
    auto files = folder.findChildFiles (juce::File::findFiles, false, "*.zbpreset");
    files.sort();
    return files;
}

/** Adds a voice, a function of the seconds since its start, louder on one side by pan (-1 to 1). */
template <typename Voice>
void add (Sound& sound, double start, double seconds, double level, double pan, Voice voice)
{
    const auto first = static_cast<int> (std::lround (start * kRate));

    for (int i = 0; i < static_cast<int> (seconds * kRate); ++i)
    {
        const double value = level * voice (i / kRate);
        sound.addSample (0, first + i, static_cast<float> (value * (1.0 - std::max (0.0, pan))));
        sound.addSample (1, first + i, static_cast<float> (value * (1.0 + std::min (0.0, pan))));
    }
}

/** Harmonics up to the twelfth, falling: brighter than a bass, duller than a saw. */
double reed (double hertz, double t)
{
    double sum = 0.0;

    for (int k = 1; k <= 12; ++k)
        sum += std::sin (juce::MathConstants<double>::twoPi * hertz * k * t) / k;

    return sum;
}

/** Struck chords with noise in both channels, not quite alike, peaking at -6 dBFS; then the time for a tail. */
Sound bandPhrase()
{
    constexpr double kRoots[] = { 73.42, 58.27, 98.0, 73.42 };
    Sound phrase (2, kPhraseFrames + kTailFrames);
    phrase.clear();
    Noise hiss (1);

    for (int beat = 0; beat < 13; ++beat)  // the last third of a second rests
    {
        const double start = beat / 3.5;
        add (phrase, start, 0.2, beat % 2 == 0 ? 0.6 : 0.3, beat % 2 == 0 ? -0.2 : 0.4,
             [&hiss] (double t) { return static_cast<double> (hiss()) * std::exp (-22.0 * t); });

        for (const double interval : { 1.0, 2.0, 3.0, 4.76, 7.13 })
            add (phrase, start, 0.28, 0.2, interval / 5.0 - 0.8,
                 [hertz = kRoots[beat / 4] * interval] (double t)
                 { return reed (hertz, t) * std::min (1.0, t / 0.01) * std::exp (-4.0 * t); });
    }

    phrase.applyGain (0.5012f / phrase.getMagnitude (0, kPhraseFrames));
    return phrase;
}

/** What comes at the start of a half second: in the second and the fourth second a note is held, and the wheel
    goes up by and by. */
juce::MidiBuffer eventsAt (int halfSecond)
{
    juce::MidiBuffer events;
    const auto put = [&events] (const juce::MidiMessage& message) { events.addEvent (message, 0); };

    if (halfSecond % 4 == 2 && halfSecond < 8)
        put (juce::MidiMessage::noteOn (1, halfSecond < 4 ? 67 : 48, juce::uint8 { 100 }));
    else if (halfSecond % 4 == 0)
        put (juce::MidiMessage::noteOff (1, halfSecond <= 4 ? 67 : 48));

    if (halfSecond < 8)
        put (juce::MidiMessage::controllerEvent (1, 1, 18 * halfSecond));

    return events;
}

/** The sound through a preset, at 120 beats a minute. */
Sound played (const juce::File& preset, Sound sound)
{
    VelkorAudioProcessor processor;
    FakePlayHead playHead;
    playHead.tempo = 120.0;
    processor.setPlayHead (&playHead);
    processor.prepareToPlay (kRate, 256);
    processor.loadStateFromXML (juce::parseXML (preset).get());

    for (int start = 0, n = 0; start < sound.getNumSamples(); start += n)
    {
        const int place = start % kHalfSecond;
        n = std::min (256, kHalfSecond - place);
        auto events = place == 0 ? eventsAt (start / kHalfSecond) : juce::MidiBuffer();
        playHead.position = 2.0 * start / kRate;
        Sound block (sound.getArrayOfWritePointers(), 2, start, n);
        processor.processBlock (block, events);
    }

    return sound;
}

double decibels (double ratio)
{
    return juce::Decibels::gainToDecibels (ratio, -180.0);
}

/** Root mean square of a stretch of both channels. */
double rms (const Sound& sound, int start, int n)
{
    const float left = sound.getRMSLevel (0, start, n);
    const float right = sound.getRMSLevel (1, start, n);
    return static_cast<double> (std::hypot (left, right)) / std::sqrt (2.0);
}

/** Clean, present on both sides, and about as loud as the source. */
void expectLevels (const Sound& sound, double dry)
{
    for (int channel = 0; channel < 2; ++channel)
    {
        const auto* const samples = sound.getReadPointer (channel);
        ASSERT_TRUE (std::all_of (samples, samples + sound.getNumSamples(),
                                  [] (float x) { return std::isfinite (x); }));
        const auto side = static_cast<double> (sound.getRMSLevel (channel, 0, kPhraseFrames));
        EXPECT_GT (decibels (side / dry), -10.0) << "one side";
    }

    const double top =
        decibels (static_cast<double> (sound.getMagnitude (0, sound.getNumSamples())));
    EXPECT_LT (top, -0.5);
    EXPECT_GT (top, -18.0);
    const double loudness = decibels (rms (sound, 0, kPhraseFrames) / dry);
    EXPECT_LT (loudness, 3.0);
    EXPECT_GT (loudness, -8.0);
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

TEST (FactoryBank, EveryPresetIsFitToBeHeardAndDiesAway)
{
    const auto files = factoryFiles();
    ASSERT_EQ (files.size(), kNumPresets);
    const auto phrase = bandPhrase();

    for (int number = 0; number < kNumPresets; ++number)
    {
        SCOPED_TRACE (files[number].getFileName().toStdString());
        const auto sound = played (files[number], phrase);
        expectLevels (sound, rms (phrase, 0, kPhraseFrames));
        const double first = rms (sound, kPhraseFrames, kTailFrames / 2);
        const double last = rms (sound, kPhraseFrames + kTailFrames / 2, kTailFrames / 2);

        EXPECT_TRUE (number == kBucket ||
                     decibels (last) < std::max (-70.0, decibels (first) - 1.0))
            << decibels (first) << " dB, then " << decibels (last);
    }
}
