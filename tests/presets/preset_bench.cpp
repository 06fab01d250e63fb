// SPDX-License-Identifier: AGPL-3.0-or-later
#include "presets/preset_bench.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace
{
constexpr double kTwoPi = juce::MathConstants<double>::twoPi;
constexpr int kBlock = 256;

/** White noise in -1..1, the same every time. */
class Hiss
{
public:
    float operator()()
    {
        state = state * 1664525u + 1013904223u;  // Numerical Recipes' "quick and dirty" generator
        return static_cast<float> (static_cast<double> (state >> 8) / 8388608.0 - 1.0);
    }

private:
    std::uint32_t state = 2463534242u;
};

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

void addDrums (Sound& phrase)
{
    Hiss hiss;

    for (int step = 0; step < 28; ++step)  // sixteenths at 105 bpm; the last half second rests
    {
        const double start = step / 7.0;

        if (step % 8 == 0 || step % 16 == 6)
            add (phrase, start, 0.3, 0.9, 0.0,
                 [] (double t)
                 {
                     return std::sin (kTwoPi * (50.0 * t + 3.0 * (1.0 - std::exp (-38.0 * t)))) *
                            std::exp (-10.0 * t);
                 });

        if (step % 8 == 4)
            add (phrase, start, 0.2, 0.6, -0.2,
                 [&hiss] (double t)
                 {
                     return (0.7 * static_cast<double> (hiss()) + std::sin (kTwoPi * 190.0 * t)) *
                            std::exp (-22.0 * t);
                 });

        if (step % 2 == 0)
            add (phrase, start, 0.05, 0.2, 0.4,
                 [&hiss] (double t)
                 { return static_cast<double> (hiss()) * std::exp (-70.0 * t); });
    }
}

void addHarmony (Sound& phrase)
{
    const double roots[] = { 73.42, 58.27, 98.0 };

    for (int bar = 0; bar < 3; ++bar)
    {
        const double start = bar * 8.0 / 7.0;
        const double root = roots[bar];
        add (phrase, start, 0.7, 0.22, 0.0,
             [root] (double t) { return reed (root, t) * std::exp (-2.5 * t); });

        for (const double interval : { 2.0, 3.0, 4.76, 7.13 })
            add (phrase, start + 0.02 * interval, 0.8, 0.1, interval / 5.0 - 0.9,
                 [hertz = root * interval] (double t)
                 { return reed (hertz, t) * std::min (1.0, t / 0.01) * std::exp (-2.0 * t); });
    }
}

void normalise (Sound& sound, double wanted)
{
    const auto gain = static_cast<float> (wanted / peak (sound));

    for (auto* channel : { &sound.left, &sound.right })
        for (float& sample : *channel)
            sample *= gain;
}

std::size_t placeOf (const std::vector<float>& channel, double seconds)
{
    return std::min (channel.size(), static_cast<std::size_t> (framesIn (seconds)));
}
}  // namespace

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
    auto phrase = silence (4.0);
    addDrums (phrase);
    addHarmony (phrase);
    normalise (phrase, 0.5012);  // -6 dBFS
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
    Hiss hiss;
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

double brightness (const std::vector<float>& channel, double from, double to, double hertz)
{
    // Two one-pole highpasses in a row, 12 dB per octave together.
    const auto coefficient = static_cast<float> (1.0 - std::exp (-kTwoPi * hertz / kRate));
    std::vector<float> high (channel);
    float low1 = 0.0f, low2 = 0.0f;

    for (float& sample : high)
    {
        low1 += coefficient * (sample - low1);
        const float once = sample - low1;
        low2 += coefficient * (once - low2);
        sample = once - low2;
    }

    return decibels (rms (high, from, to) / std::max (1e-9, rms (channel, from, to)));
}

double amplitudeAt (const std::vector<float>& channel, double hertz, double from, double to)
{
    const std::size_t start = placeOf (channel, from);
    const std::size_t end = placeOf (channel, to);
    const auto length = static_cast<double> (end - start);
    double re = 0.0, im = 0.0;

    for (std::size_t i = start; i < end; ++i)
    {
        const double window = 1.0 - std::cos (kTwoPi * static_cast<double> (i - start) / length);
        const double value = window * static_cast<double> (channel[i]);
        const double angle = kTwoPi * hertz * static_cast<double> (i) / kRate;
        re += value * std::cos (angle);
        im += value * std::sin (angle);
    }

    return 2.0 * std::hypot (re, im) / length;
}

std::vector<double> onsets (const std::vector<float>& channel)
{
    constexpr int kReach = 1300;  // about 30 ms: a click and what a filter makes of it
    const auto loudest = std::abs (*std::max_element (channel.begin(), channel.end(),
                                                      [] (float a, float b)
                                                      { return std::abs (a) < std::abs (b); }));
    std::vector<double> found;

    for (int i = 0; i < static_cast<int> (channel.size());)
    {
        if (std::abs (channel[static_cast<std::size_t> (i)]) <= 0.0158f * loudest)
        {
            ++i;
            continue;
        }

        const auto first = channel.begin() + i;
        const auto last = std::min (first + kReach, channel.end());
        const auto top = std::max_element (
            first, last, [] (float a, float b) { return std::abs (a) < std::abs (b); });
        found.push_back (static_cast<double> (top - channel.begin()) / kRate);
        i += kReach;
    }

    return found;
}

double correlation (const std::vector<float>& a, int startA, const std::vector<float>& b,
                    int startB, int n)
{
    double ab = 0.0, aa = 1e-20, bb = 1e-20;

    for (int i = 0; i < n; ++i)
    {
        const double x = static_cast<double> (a.at (static_cast<std::size_t> (startA + i)));
        const double y = static_cast<double> (b.at (static_cast<std::size_t> (startB + i)));
        ab += x * y;
        aa += x * x;
        bb += y * y;
    }

    return ab / std::sqrt (aa * bb);
}

juce::Optional<juce::AudioPlayHead::PositionInfo> RunningPlayHead::getPosition() const
{
    PositionInfo info;
    info.setBpm (tempo);
    info.setPpqPosition (static_cast<double> (frame) / kRate * tempo / 60.0);
    info.setIsPlaying (true);
    return info;
}

PresetBench::PresetBench (int number, double tempo)
    : PresetBench (factoryFiles().at (static_cast<std::size_t> (number)), tempo)
{
}

PresetBench::PresetBench (const juce::File& preset, double tempo)
{
    playHead.tempo = tempo;
    processor.setPlayHead (&playHead);
    processor.setPlayConfigDetails (2, 2, kRate, kBlock);
    processor.prepareToPlay (kRate, kBlock);
    load (preset);
}

PresetBench::~PresetBench()
{
    processor.setPlayHead (nullptr);
}

void PresetBench::load (int number)
{
    load (factoryFiles().at (static_cast<std::size_t> (number)));
}

void PresetBench::load (const juce::File& preset)
{
    const auto document = juce::parseXML (preset);

    if (document == nullptr)
        FAIL() << preset.getFileName() << " is no XML";

    processor.loadStateFromXML (document.get());
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
        processor.processBlock (block, events);
        events.clear();
        playHead.frame += n;
    }

    return output;
}

void expectRepeats (const std::vector<float>& channel, const std::vector<double>& expected,
                    const std::string& what)
{
    const auto found = onsets (channel);
    ASSERT_GE (found.size(), expected.size()) << what;

    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR (found[i] - kClickSeconds, expected[i], 0.002) << what << ", repeat " << i;
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
