// SPDX-License-Identifier: AGPL-3.0-or-later
#include "presets/preset_bench.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <string>

// The worked patches of docs/manual.md: what the text says that they do.

namespace
{
juce::File patch (const char* name)
{
    return juce::File (VELKOR_TEST_DATA)
        .getSiblingFile ("docs/patches")
        .getChildFile (juce::String (name) + ".zbpreset");
}

/** The same channel, last frame first. */
std::vector<float> backwards (std::vector<float> channel)
{
    std::reverse (channel.begin(), channel.end());
    return channel;
}

/** Likeness of n frames of a from one place and of b from another: 1 alike but for the level, 0 unrelated. */
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

/** The best likeness of two stretches of equal length as one is shifted by up to reach frames. */
double likeness (const std::vector<float>& a, const std::vector<float>& b, int reach)
{
    const int n = static_cast<int> (a.size()) - 2 * reach;
    double best = -1.0;

    for (int shift = 0; shift <= 2 * reach; ++shift)
        best = std::max (best, correlation (a, reach, b, shift, n));

    return best;
}

/** When repeats of a click begin: the middles, in seconds, of everything that sticks out by itself and is at
    most 36 dB below the loudest. */
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

/** Whether the first repeats of a click, which stands highest after 10.5 ms, come at these distances from it. */
void expectRepeats (const std::vector<float>& channel, const std::vector<double>& expected,
                    const std::string& what)
{
    const auto found = onsets (channel);
    ASSERT_GE (found.size(), expected.size()) << what;

    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR (found[i] - 0.0105, expected[i], 0.002) << what << ", repeat " << i;
}

/** Amplitude of one frequency under a raised-cosine window, from one time to another. */
double amplitudeAt (const std::vector<float>& channel, double hertz, double from, double to)
{
    const std::size_t start = static_cast<std::size_t> (framesIn (from));
    const std::size_t end = static_cast<std::size_t> (framesIn (to));
    const auto length = static_cast<double> (end - start);
    double re = 0.0, im = 0.0;

    for (std::size_t i = start; i < end; ++i)
    {
        const double window = 1.0 - std::cos (juce::MathConstants<double>::twoPi *
                                              static_cast<double> (i - start) / length);
        const double value = window * static_cast<double> (channel[i]);
        const double angle =
            juce::MathConstants<double>::twoPi * hertz * static_cast<double> (i) / kRate;
        re += value * std::cos (angle);
        im += value * std::sin (angle);
    }

    return 2.0 * std::hypot (re, im) / length;
}
}  // namespace

TEST (ManualPatches, CrossingEchoBouncesFromSideToSideOnTheDottedEighthAndFades)
{
    for (const double tempo : { 90.0, 120.0, 147.0 })
    {
        SCOPED_TRACE (tempo);
        const double step = 0.75 * 60.0 / tempo;
        PresetBench bench (patch ("Crossing Echo"), tempo);
        bench.set ("Dry Level", 0.0f);
        const auto out = bench.play (click (6.0 * step));
        bench.play (silence (8.0));
        expectRepeats (out.left, { step, 3.0 * step, 5.0 * step }, "left");
        expectRepeats (out.right, { 2.0 * step, 4.0 * step }, "right");

        // Quiet: a loud repeat loses more to the soft limit on feedback.
        const auto hum = bench.play (sine (300.0, 0.1, 0.02f) + silence (4.0 * step));
        const auto loudness = [&] (const std::vector<float>& channel, int repeat)
        { return rms (channel, repeat * step, repeat * step + 0.1); };

        EXPECT_NEAR (decibels (loudness (hum.right, 2) / loudness (hum.left, 1)), -2.9, 0.3);
        EXPECT_NEAR (decibels (loudness (hum.left, 3) / loudness (hum.right, 2)), -2.9, 0.3);
    }
}

TEST (ManualPatches, CatchAndTurnCatchesABarRepeatsItExactlyAndPlaysItBackwards)
{
    PresetBench bench (patch ("Catch And Turn"));
    bench.set ("Dry Level", 0.0f);
    const auto phrase = sine (220.0, 0.6, 0.3f) + noise (0.1, 0.1f) + silence (0.3) +
                        sine (523.25, 0.4, 0.2f) + sine (98.0, 0.6, 0.3f);  // a bar at 120
    const auto setBoth = [&bench] (const char* what, bool on)
    {
        for (const char* delay : { "Delay 1 ", "Delay 2 " })
            bench.set ((std::string (delay) + what).c_str(), on ? 1.0f : 0.0f);
    };

    bench.play (phrase);
    setBoth ("Loop", true);
    const auto caught = bench.play (noise (2.0));
    const auto again = bench.play (silence (2.0));

    for (const auto channel : { &Sound::left, &Sound::right })
    {
        EXPECT_GT (likeness (phrase.*channel, caught.*channel, 4), 0.98);
        EXPECT_GT (likeness (caught.*channel, again.*channel, 4), 0.9999) << "noise stays out";
    }

    setBoth ("Reverse", true);
    const auto turned = bench.play (silence (2.0));
    const auto turnedAgain = bench.play (silence (2.0));

    for (const auto channel : { &Sound::left, &Sound::right })
    {
        EXPECT_GT (likeness (backwards (again.*channel), turned.*channel, 8), 0.99);
        EXPECT_GT (likeness (turned.*channel, turnedAgain.*channel, 8), 0.99);
    }
}

TEST (ManualPatches, PlayedResonanceRingsAtTheNoteAndOnlyWhileItIsHeld)
{
    PresetBench bench (patch ("Played Resonance"));
    EXPECT_EQ (rms (bench.play (noise (0.5)), 0.0, 0.5), 0.0);

    for (const int note : { 48, 60, 67, 72 })
    {
        SCOPED_TRACE (note);
        bench.note (note, true);
        const auto out = bench.play (noise (2.0));
        const double hertz = 440.0 * std::exp2 ((note - 69) / 12.0);

        for (const double semitones : { -2.0, 2.0 })
        {
            const auto above = [&] (const std::vector<float>& channel, double at)
            {
                // A band of half a semitone: noise is uneven from one frequency to the next.
                double here = 0.0, there = 0.0;

                for (int i = -6; i <= 6; ++i)
                {
                    const double detune = std::exp2 (i / 24.0 / 12.0);
                    here += std::pow (amplitudeAt (channel, at * detune, 0.5, 2.0), 2.0);
                    there += std::pow (
                        amplitudeAt (channel, at * detune * std::exp2 (semitones / 12.0), 0.5, 2.0),
                        2.0);
                }

                return 0.5 * decibels (here / there);
            };

            EXPECT_GT (above (out.left, hertz), 6.0) << semitones;
            EXPECT_GT (above (out.right, 2.0 * hertz), 6.0) << semitones;
        }

        bench.note (note, false);
        EXPECT_EQ (rms (bench.play (noise (0.3)), 0.05, 0.3), 0.0);
    }
}
