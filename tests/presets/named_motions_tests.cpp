// SPDX-License-Identifier: AGPL-3.0-or-later
#include "presets/preset_bench.h"

#include <cmath>
#include <gtest/gtest.h>
#include <string>
#include <utility>

// Factory presets whose names promise something that can be measured: what they do with level, place and
// colour, and how they follow MIDI.

namespace
{
double leftOverRight (const Sound& sound, double from, double to)
{
    return decibels (rms (sound.left, from, to) / rms (sound.right, from, to));
}
}  // namespace

// --- panorama and level --------------------------------------------------------------------------------------------

TEST (NamedMotions, PannersFollowTheirLfoAtAnyTempo)
{
    for (const auto& [preset, beats] : { std::pair { 60, 2.0 }, std::pair { 21, 4.0 } })
        for (const double tempo : kTempos)
        {
            SCOPED_TRACE (std::to_string (preset) + " at " + std::to_string (tempo));
            const double cycle = beats * 60.0 / tempo;
            PresetBench bench (preset, tempo);
            const auto out = bench.play (noise (2.0 * cycle));

            for (const double start : { 0.0, cycle })
            {
                const auto balance = [&] (double from, double to)
                { return leftOverRight (out, start + from * cycle, start + to * cycle); };

                EXPECT_LT (balance (0.2, 0.3), -20.0) << "right a quarter of the way";
                EXPECT_GT (balance (0.7, 0.8), 20.0) << "left at three quarters";
                EXPECT_NEAR (balance (0.45, 0.55), 0.0, 2.0) << "passing the middle";
            }
        }
}

TEST (NamedMotions, LpfPannerIsBrightOnTheRightAndDarkOnTheLeft)
{
    PresetBench bench (21);
    const auto out = bench.play (noise (2.0));
    EXPECT_GT (brightness (out.right, 0.4, 0.6), brightness (out.left, 1.4, 1.6) + 12.0);
}

TEST (NamedMotions, ShudderTremblesAgainstTheOtherSide)
{
    PresetBench bench (17);
    const auto out = bench.play (noise (1.0));
    int agreeing = 0;

    for (int i = 0; i < 7; ++i)  // a sixteenth is 125 ms: up in the first half on the left
    {
        const double start = 0.125 * (i + 1);
        agreeing += leftOverRight (out, start + 0.02, start + 0.05) > 6.0;
        agreeing += leftOverRight (out, start + 0.08, start + 0.11) < -6.0;
    }

    EXPECT_EQ (agreeing, 14);
}

TEST (NamedMotions, SampleAndHoldGateChangesItsLevelOnTheSixteenthsOnly)
{
    PresetBench bench (2);
    const auto out = bench.play (noise (0.37));  // before the echo begins
    double last = -1.0;

    for (int step = 0; step < 3; ++step)
    {
        const double start = 0.125 * step;
        const double early = rms (out, start + 0.01, start + 0.06);
        const double late = rms (out, start + 0.065, start + 0.115);
        EXPECT_NEAR (early, late, 0.1 * early + 0.002) << step;
        EXPECT_GT (std::abs (late - last), 0.02) << step;
        last = late;
    }
}

TEST (NamedMotions, EnveloperSwellsAndEugeneLosesHisTemperOnlyLater)
{
    PresetBench enveloper (25);
    const auto swell = enveloper.play (noise (1.0));
    EXPECT_GT (decibels (rms (swell, 0.6, 1.0) / rms (swell, 0.0, 0.05)), 15.0);

    WetBench eugene (48);
    const auto rant = eugene.play (noise (3.0));
    EXPECT_GT (decibels (rms (rant, 2.5, 3.0) / rms (rant, 0.35, 0.6)), 8.0);
    EXPECT_GT (brightness (rant.left, 2.5, 3.0), brightness (rant.left, 0.35, 0.6) + 6.0);
}

// --- filters ---------------------------------------------------------------------------------------------------------

TEST (NamedMotions, EnvelopePresetsOpenWithLoudnessAndTheSimpleFilterDoesNot)
{
    const auto opens = [] (int preset)
    {
        PresetBench quiet (preset), loud (preset);
        const auto soft = quiet.play (noise (1.0, 0.01f));
        const auto hard = loud.play (noise (1.0, 0.3f));
        return brightness (hard.left, 0.5, 1.0) - brightness (soft.left, 0.5, 1.0);
    };

    EXPECT_GT (opens (4), 6.0) << "Envelope Stomp";
    EXPECT_GT (opens (30), 12.0) << "Simple Env Follower";
    EXPECT_NEAR (opens (20), 0.0, 1.0) << "Simple Filter";
}

TEST (NamedMotions, AirLiftsTheTopAndLeavesTheBottomAlone)
{
    PresetBench bench (40);
    const auto out = bench.play (sine (80.0, 0.5) + sine (7000.0, 0.5));
    const double low = decibels (amplitudeAt (out.left, 80.0, 0.1, 0.4) / 0.25);
    const double high = decibels (rms (out.left, 0.7, 0.9) / (0.25 / std::sqrt (2.0)));
    EXPECT_NEAR (low, -2.0, 0.5) << "Dry Level";
    EXPECT_GT (high, low + 3.0);
}

TEST (NamedMotions, RandomFlangeWorksTheSidesHarderThanTheMiddleButNotInTheBass)
{
    const auto widened = [] (const Sound& middle)
    {
        auto side = middle;

        for (float& x : side.right)
            x = -x;

        WetBench ofMiddle (19), ofSide (19);
        const auto a = ofMiddle.play (middle);
        const auto b = ofSide.play (side);
        return std::pair { decibels (rms (b.left, 0.2, 1.0) / rms (a.left, 0.2, 1.0)),
                           decibels (rms (b.right, 0.2, 1.0) / rms (a.right, 0.2, 1.0)) };
    };

    const auto [left, right] = widened (noise (1.0));
    EXPECT_GT (left, 4.0);
    EXPECT_NEAR (right, left, 0.1) << "both sides alike";
    const auto [leftBass, rightBass] = widened (sine (40.0, 1.0));
    EXPECT_NEAR (leftBass, 0.0, 1.0);
    EXPECT_NEAR (rightBass, 0.0, 1.0);
}

TEST (NamedMotions, RatshackReverbIsShortAndDense)
{
    WetBench bench (54);
    const auto out = bench.play (noise (0.02) + silence (2.0));
    const double early = rms (out, 0.05, 0.15);
    EXPECT_GT (decibels (rms (out, 0.25, 0.35) / early), -30.0) << "a room";
    EXPECT_LT (decibels (rms (out, 0.8, 1.0) / early), -40.0) << "a small one";
    EXPECT_GT (rms (out, 0.1, 0.12), 0.05 * early) << "no gap between the walls";
}

// --- MIDI ----------------------------------------------------------------------------------------------

TEST (NamedMotions, ModWheelOpensTheFilter)
{
    PresetBench bench (44);
    double last = -100.0;

    for (const int wheel : { 0, 42, 84, 127 })
    {
        bench.wheel (wheel);
        const auto out = bench.play (noise (0.5));

        for (const auto* channel : { &out.left, &out.right })
            EXPECT_GT (brightness (*channel, 0.2, 0.5), last + 3.0) << wheel;

        last = brightness (out.left, 0.2, 0.5);
    }
}

TEST (NamedMotions, NoteSetsTheEchoTimeAndWithoutOneItStandsInTheMiddle)
{
    PresetBench fresh (45);
    fresh.set ("Dry Level", 0.0f);
    expectRepeats (fresh.play (click (0.4)).left, { 0.24 }, "no note");

    for (const auto& [note, seconds] :
         { std::pair { 36, 0.48 }, std::pair { 60, 0.24 }, std::pair { 84, 0.16 } })
    {
        WetBench bench (45);
        bench.note (note, true);
        bench.play (silence (0.1));
        const auto found = onsets (bench.play (click (0.6)).left);
        ASSERT_FALSE (found.empty());
        EXPECT_NEAR (found.front() - kClickSeconds, seconds, 0.002) << note;
    }
}

TEST (NamedMotions, GateIsHeardOnlyWhileANoteIsHeld)
{
    PresetBench bench (46);
    EXPECT_EQ (rms (bench.play (noise (0.3)), 0.0, 0.3), 0.0);
    bench.note (64, true);
    EXPECT_GT (rms (bench.play (noise (0.3)), 0.05, 0.3), 0.1);
    bench.note (64, false);
    EXPECT_EQ (rms (bench.play (noise (0.3)), 0.05, 0.3), 0.0) << "4 ms later";
}

TEST (NamedMotions, NoteAndGateOpenTheFilterTogether)
{
    PresetBench bench (47);
    const auto brightnessNow = [&bench]
    {
        const auto out = bench.play (noise (0.4));
        return brightness (out.left, 0.2, 0.4);
    };

    const double untouched = brightnessNow();
    bench.note (60, true);
    const double middle = brightnessNow();
    bench.note (60, false);
    EXPECT_NEAR (brightnessNow(), untouched, 1.0) << "60 stands in the middle, only the gate opens";
    bench.note (84, true);
    const double high = brightnessNow();
    bench.note (84, false);
    bench.note (40, true);
    const double low = brightnessNow();
    EXPECT_GT (middle, untouched + 4.0);
    EXPECT_GT (high, middle + 3.0);
    EXPECT_LT (low, middle - 3.0);
}
