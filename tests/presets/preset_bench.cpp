// SPDX-License-Identifier: AGPL-3.0-or-later
#include "presets/preset_bench.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace
{
constexpr double kTwoPi = juce::MathConstants<double>::twoPi;
constexpr int kBlock = 256;

/** Adds a voice, a function of the seconds since its start, louder on one side by pan (-1 to 1). */
template <typename Voice>
void add (Sound& sound, double start, double seconds, double level, double pan, Voice voice)
{
    const int first = framesIn (start);
    const int end = std::min (first + framesIn (seconds), sound.frames());

    for (int i = first; i < end; ++i)
    {
        const double value = level * voice ((i - first) / kRate);
        const auto n = static_cast<std::size_t> (i);
        sound.left[n] += static_cast<float> (value * (1.0 - std::max (0.0, pan)));
        sound.right[n] += static_cast<float> (value * (1.0 + std::min (0.0, pan)));
    }
}

/** Harmonics up to the twelfth, falling: brighter than a bass, duller than a saw. */
double reed (double hertz, double t)
{
    double sum = 0.0;

    for (int k = 1; k <= 12; ++k)
        sum += std::sin (kTwoPi * hertz * k * t) / k;

    return sum;
}
}  // namespace

std::size_t placeOf (const std::vector<float>& channel, double seconds)
{
    return std::min (channel.size(), static_cast<std::size_t> (framesIn (seconds)));
}
int framesIn (double seconds)
{
    return static_cast<int> (std::lround (seconds * kRate));
}

Sound silence (double seconds)
{
    const std::vector<float> channel (static_cast<std::size_t> (framesIn (seconds)), 0.0f);
    return { channel, channel };
}

Sound operator+ (const Sound& first, const Sound& second)
{
    Sound sum = first;
    sum.left.insert (sum.left.end(), second.left.begin(), second.left.end());
    sum.right.insert (sum.right.end(), second.right.begin(), second.right.end());
    return sum;
}

Sound bandPhrase()
{
    constexpr double kRoots[] = { 73.42, 58.27, 98.0, 73.42 };
    auto phrase = silence (4.0);
    Noise hiss (1);

    for (int beat = 0; beat < 13; ++beat)  // the last half second rests
    {
        const double start = beat / 3.5;
        add (phrase, start, 0.2, beat % 2 == 0 ? 0.6 : 0.3, beat % 2 == 0 ? -0.2 : 0.4,
             [&hiss] (double t) { return static_cast<double> (hiss()) * std::exp (-22.0 * t); });

        for (const double interval : { 1.0, 2.0, 3.0, 4.76, 7.13 })
            add (phrase, start, 0.28, 0.2, interval / 5.0 - 0.8,
                 [hertz = kRoots[beat / 4] * interval] (double t)
                 { return reed (hertz, t) * std::min (1.0, t / 0.01) * std::exp (-4.0 * t); });
    }

    const double gain = 0.5012 / peak (phrase);  // -6 dBFS

    for (auto* channel : { &phrase.left, &phrase.right })
        for (float& sample : *channel)
            sample *= static_cast<float> (gain);

    return phrase;
}

Sound click (double seconds)
{
    auto sound = silence (seconds);
    add (sound, 0.01, 0.001, 0.5, 0.0,
         [] (double t) { return 0.5 - 0.5 * std::cos (kTwoPi * t / 0.001); });
    return sound;
}

Sound sine (double hertz, double seconds, float level)
{
    auto sound = silence (seconds);
    add (sound, 0.0, seconds, static_cast<double> (level), 0.0,
         [hertz] (double t) { return std::sin (kTwoPi * hertz * t); });
    return sound;
}

Sound noise (double seconds, float level)
{
    Noise hiss (1);
    auto sound = silence (seconds);
    std::generate (sound.left.begin(), sound.left.end(), [&] { return level * hiss(); });
    sound.right = sound.left;
    return sound;
}

double decibels (double ratio)
{
    return 20.0 * std::log10 (std::max (ratio, 1e-9));
}

double rms (const std::vector<float>& channel, double from, double to)
{
    const std::size_t start = placeOf (channel, from);
    const std::size_t end = placeOf (channel, to);
    double sum = 0.0;

    for (std::size_t i = start; i < end; ++i)
        sum += static_cast<double> (channel[i]) * static_cast<double> (channel[i]);

    return std::sqrt (sum / static_cast<double> (std::max<std::size_t> (1, end - start)));
}

double rms (const Sound& sound, double from, double to)
{
    return std::hypot (rms (sound.left, from, to), rms (sound.right, from, to)) / std::sqrt (2.0);
}

double peak (const Sound& sound)
{
    float highest = 0.0f;

    for (const auto* channel : { &sound.left, &sound.right })
        for (const float sample : *channel)
            highest = std::max (highest, std::abs (sample));

    return static_cast<double> (highest);
}

PresetBench::PresetBench (const juce::File& preset, double tempo)
{
    playHead.tempo = tempo;
    processor.setPlayHead (&playHead);
    processor.setPlayConfigDetails (2, 2, kRate, kBlock);
    processor.prepareToPlay (kRate, kBlock);
    const auto document = juce::parseXML (preset);

    EXPECT_NE (document, nullptr) << preset.getFileName();
    processor.loadStateFromXML (document.get());
}

PresetBench::~PresetBench()
{
    processor.setPlayHead (nullptr);
}

void PresetBench::set (const char* id, float value)
{
    auto* const parameter = processor.parameterTree.getParameter (id);

    if (parameter == nullptr)
        FAIL() << "no parameter " << id;

    parameter->setValueNotifyingHost (parameter->convertTo0to1 (value));
}

void PresetBench::note (int number, bool on)
{
    events.addEvent (on ? juce::MidiMessage::noteOn (1, number, juce::uint8 { 100 })
                        : juce::MidiMessage::noteOff (1, number),
                     0);
}

void PresetBench::wheel (int value)
{
    events.addEvent (juce::MidiMessage::controllerEvent (1, 1, value), 0);
}

Sound PresetBench::play (const Sound& input)
{
    Sound output = input;

    for (int start = 0; start < output.frames(); start += kBlock)
    {
        const int n = std::min (kBlock, output.frames() - start);
        float* channels[] = { output.left.data() + start, output.right.data() + start };
        juce::AudioBuffer<float> block (channels, 2, n);
        playHead.position = static_cast<double> (frame) / kRate * *playHead.tempo / 60.0;
        processor.processBlock (block, events);
        events.clear();
        frame += n;
    }

    return output;
}

std::vector<juce::File> factoryFiles()
{
    const auto folder = juce::File (VELKOR_TEST_DATA).getSiblingFile ("resources/presets/Factory");
    const auto found = folder.findChildFiles (juce::File::findFiles, false, "*.zbpreset");
    std::vector<juce::File> files (found.begin(), found.end());
    std::sort (files.begin(), files.end(),
               [] (const juce::File& a, const juce::File& b)
               { return a.getFileName() < b.getFileName(); });
    return files;
}
