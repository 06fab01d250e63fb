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

/** The best likeness of two stretches of equal length as one is shifted by up to reach frames. */
double likeness (const std::vector<float>& a, const std::vector<float>& b, int reach)
{
    const int n = static_cast<int> (a.size()) - 2 * reach;
    double best = -1.0;

    for (int shift = 0; shift <= 2 * reach; ++shift)
        best = std::max (best, correlation (a, reach, b, shift, n));

    return best;
}
}  // namespace

TEST (ManualPatches, CrossingEchoBouncesFromSideToSideOnTheDottedEighthAndFades)
{
    for (const double tempo : kTempos)
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

TEST (ManualPatches, DarkerEveryTimeLosesItsTopFromRepeatToRepeat)
{
    PresetBench bench (patch ("Darker Every Time"));
    bench.set ("Dry Level", 0.0f);
    const auto out = bench.play (noise (0.02) + silence (3.0));

    for (int repeat = 1; repeat < 5; ++repeat)
    {
        SCOPED_TRACE (repeat);
        const auto from = [repeat] (int later) { return 0.42 * (repeat + later) - 0.08; };
        const auto to = [repeat] (int later) { return 0.42 * (repeat + later) + 0.2; };
        EXPECT_LT (brightness (out.left, from (1), to (1)),
                   brightness (out.left, from (0), to (0)) - 2.2);
        EXPECT_GT (decibels (rms (out.left, from (1), to (1)) / rms (out.left, from (0), to (0))),
                   -8.0)
            << "but goes on";
    }
}

TEST (ManualPatches, DarkerEveryTimeDriftsTheSidesAgainstEachOther)
{
    PresetBench bench (patch ("Darker Every Time"));
    bench.set ("Dry Level", 0.0f);
    bench.set ("Delay 1 Feedback", 0.0f);
    bench.set ("Delay 2 Feedback", 0.0f);
    double nearest = 1.0, farthest = -1.0;

    for (int i = 0; i < 9; ++i)  // through a cycle of the LFO, which lasts 5 s
    {
        const auto out = bench.play (click (0.6));
        const auto left = onsets (out.left), right = onsets (out.right);
        ASSERT_FALSE (left.empty() || right.empty());
        nearest = std::min (nearest, right.front() - left.front());
        farthest = std::max (farthest, right.front() - left.front());
    }

    EXPECT_GT (farthest - nearest, 0.025);
    EXPECT_LT (farthest - nearest, 0.090);
}

TEST (ManualPatches, TouchWahOpensWithTheTouchAndClosesAgain)
{
    PresetBench bench (patch ("Touch Wah"));
    const auto out = bench.play (noise (1.0, 0.02f) + noise (1.0, 0.4f) + noise (1.0, 0.02f));
    const double before = brightness (out.left, 0.5, 1.0);
    EXPECT_GT (brightness (out.left, 1.5, 2.0), before + 10.0);

    // The echo, to the middle as well, holds on to the loud sound a little longer.
    bench.set ("Output 2 Level", 0.0f);
    const auto alone = bench.play (noise (1.0, 0.4f) + noise (1.5, 0.02f));
    EXPECT_NEAR (brightness (alone.left, 2.0, 2.5), before, 2.0);
}

TEST (ManualPatches, CatchAndTurnCatchesABarRepeatsItExactlyAndPlaysItBackwards)
{
    PresetBench bench (patch ("Catch And Turn"));
    bench.set ("Dry Level", 0.0f);
    const auto whole = bandPhrase();
    const auto bar = framesIn (2.0);  // at 120
    const Sound phrase { { whole.left.begin(), whole.left.begin() + bar },
                         { whole.right.begin(), whole.right.begin() + bar } };
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
