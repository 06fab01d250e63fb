// SPDX-License-Identifier: AGPL-3.0-or-later
#include "presets/preset_bench.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <numeric>
#include <string>

// Factory presets whose names promise something that can be measured: what they do with time and pitch.

namespace
{
/** Frequency in semitones from 440 Hz that is strongest around a time. */
double strongestSemitone (const std::vector<float>& channel, double middle)
{
    double best = 0.0, highest = -1.0;

    for (double semitone = -24.0; semitone <= 12.0; semitone += 0.25)
    {
        const double hertz = 440.0 * std::exp2 (semitone / 12.0);
        const double amplitude = amplitudeAt (channel, hertz, middle - 0.03, middle + 0.03);

        if (amplitude > highest)
        {
            highest = amplitude;
            best = semitone;
        }
    }

    return best;
}
}  // namespace

// --- echoes ----------------------------------------------------------------------------------------------------

TEST (NamedEchoes, SyncedEchoesKeepToTheGridAtAnyTempo)
{
    struct Grid
    {
        int preset;
        std::vector<double> left, right;  ///< quarter notes
    };

    const Grid grids[] = {
        { 1, { 1.0, 2.0, 3.0 }, { 1.0, 2.0, 3.0 } },                // Basic Sync
        { 6, { 0.75, 1.5, 2.25 }, { 2.0 / 3.0, 4.0 / 3.0, 2.0 } },  // Syncopated Snares
        { 32, { 0.75, 1.5, 2.25 }, { 0.75, 1.5, 2.25 } },           // Phasing Sat-Delay
        { 38, { 1.5, 3.0 }, { 1.0, 2.0, 3.0 } },                    // More Feedback
        { 59, { 1.0, 2.0, 3.0 }, { 0.75, 1.5, 2.25 } },             // Ex 1- Stereo Delay
        { 61, { 0.75, 1.5, 2.25 }, { 1.0, 2.0, 3.0 } },             // Ex 3-Ducked Delays
    };

    for (const auto& grid : grids)
        for (const double tempo : kTempos)
        {
            const auto what = std::to_string (grid.preset) + " at " + std::to_string (tempo);
            const auto seconds = [tempo] (std::vector<double> beats)
            {
                for (double& beat : beats)
                    beat *= 60.0 / tempo;

                return beats;
            };
            WetBench bench (grid.preset, tempo);
            const auto out = bench.play (click (2.6));
            expectRepeats (out.left, seconds (grid.left), what + ", left");
            expectRepeats (out.right, seconds (grid.right), what + ", right");
        }
}

TEST (NamedEchoes, GertieGallopsClipOnTheTripletClopOnTheBeat)
{
    WetBench bench (10);
    bench.set ("Pan 1 Mod", 0.0f);
    bench.set ("Pan 2 Mod", 0.0f);
    bench.set ("Pan 1", 0.0f);
    bench.set ("Pan 2", 1.0f);
    const auto out = bench.play (click (2.0));
    const auto clips = onsets (out.left);
    const auto clops = onsets (out.right);
    ASSERT_GE (clips.size(), 3u);
    ASSERT_GE (clops.size(), 3u);

    for (std::size_t i = 0; i < 3; ++i)  // the bridge sways: 10 ms either way
    {
        const double beat = static_cast<double> (i);
        EXPECT_NEAR (clips[i] - kClickSeconds, 0.5 * (beat + 2.0 / 3.0), 0.01);
        EXPECT_NEAR (clops[i] - kClickSeconds, 0.5 * (beat + 1.0), 0.01);
    }
}

TEST (NamedEchoes, SlapBackAndStarterPatchRepeatOnceAndBeyondThatNothing)
{
    for (const auto& [preset, seconds] : { std::pair { 12, 0.118 }, std::pair { 63, 0.375 } })
    {
        WetBench bench (preset);
        const auto out = bench.play (click (2.0));
        expectRepeats (out.left, { seconds }, std::to_string (preset));
        EXPECT_EQ (onsets (out.left).size(), 1u) << preset;
        EXPECT_EQ (onsets (out.right).size(), 1u) << preset;
        EXPECT_LT (rms (out, seconds + 0.02, 2.0), 1e-9) << preset;
    }
}

TEST (NamedEchoes, MoreFeedbackIsAboutAsMuchAsThereIsWithoutRunningAway)
{
    const auto lossPerSecond = [] (int preset)
    {
        WetBench bench (preset);
        const auto out = bench.play (noise (0.2) + silence (12.0));
        return decibels (rms (out, 1.0, 5.0) / rms (out, 8.0, 12.0)) / 7.0;
    };

    const double more = lossPerSecond (38);
    EXPECT_GT (more, 0.5) << "it has to end";
    EXPECT_LT (more, 3.0);
    EXPECT_GT (lossPerSecond (1), 3.0 * more);
}

TEST (NamedEchoes, TapeDelayDarkensSaturatesAndWobbles)
{
    const auto repeatsOf = [] (float level)
    {
        WetBench bench (11);
        return bench.play (noise (0.1, level) + silence (2.0));
    };

    const auto quiet = repeatsOf (0.1f), loud = repeatsOf (0.5f);
    double last = 0.0;

    for (int i = 1; i <= 4; ++i)
    {
        const double now = brightness (quiet.left, 0.385 * i, 0.385 * i + 0.09);
        EXPECT_LT (now, last - 1.0) << "repeat " << i;
        last = now;
    }

    const double growth = rms (loud, 0.385, 0.49) / rms (quiet, 0.385, 0.49);
    EXPECT_LT (growth, 4.4) << "five times the input";
    EXPECT_GT (growth, 2.0);

    WetBench bench (11);
    double shortest = 1.0, longest = 0.0;

    for (int i = 0; i < 6; ++i)
    {
        const auto found = onsets (bench.play (click (0.7)).left);
        ASSERT_FALSE (found.empty());
        bench.play (silence (4.3));  // until the repeats have gone
        shortest = std::min (shortest, found.front());
        longest = std::max (longest, found.front());
    }

    EXPECT_GT (longest - shortest, 0.0003) << "seconds";
    EXPECT_LT (longest - shortest, 0.02) << "a worn machine, not a broken one";
}

TEST (NamedEchoes, DuckedDelaysKeepQuietWhileTheSourcePlays)
{
    for (const int preset : { 29, 61 })  // Duck Dodgers, Ex 3-Ducked Delays
    {
        WetBench bench (preset);
        const auto out = bench.play (noise (3.0) + silence (1.5));
        const double during = rms (out, 1.5, 3.0);
        const double after = rms (out, 3.5, 4.5);
        EXPECT_GT (decibels (after / during), 12.0) << preset;
    }
}

TEST (NamedEchoes, FallingDownTheStairsLandsLowerEachTime)
{
    WetBench bench (33);
    auto blip = sine (440.0, 0.06, 0.5f);

    for (int i = 0; i < blip.frames(); ++i)
    {
        const double phase = juce::MathConstants<double>::twoPi * i / blip.frames();
        const auto window = static_cast<float> (0.5 - 0.5 * std::cos (phase));
        blip.left[static_cast<std::size_t> (i)] *= window;
        blip.right[static_cast<std::size_t> (i)] *= window;
    }

    const auto out = bench.play (blip + silence (1.7));
    double last = 0.0;

    for (const double time : { 0.28, 0.6, 0.9, 1.24, 1.64 })
    {
        const double now = strongestSemitone (out.right, time);
        EXPECT_LT (now, last - 0.5) << time;
        last = now;
    }

    EXPECT_LT (last, -9.0);
}

// --- loop and reverse --------------------------------------------------------------------------------------------

TEST (NamedEchoes, FlipItAndReverseItPlaysTheLastHalfBarBackwardsOnLoading)
{
    constexpr double kHalfBar = 1.0;  // at 120 bpm
    PresetBench bench (63);
    auto source = noise (3.0);

    for (std::size_t i = 8; i < source.left.size();
         ++i)  // the heads' interpolation dulls what is sharper
    {
        const auto last = source.left.begin() + static_cast<std::ptrdiff_t> (i);
        source.left[i - 8] = source.right[i - 8] = std::accumulate (last - 8, last, 0.0f) / 8.0f;
    }

    bench.play (source);
    bench.load (51);
    const auto out = bench.play (silence (kHalfBar));

    // 50 ms at a time, since the level swells meanwhile. The heads stand a few frames beside the end: the
    // best of a few places counts.
    for (double time = 0.1; time < 0.9; time += 0.1)
    {
        const int n = framesIn (0.05);
        std::vector<float> backwards (source.left.rbegin(), source.left.rend());
        double best = 0.0;

        for (int shift = -8; shift <= 8; ++shift)
            best = std::max (best, correlation (out.left, framesIn (time), backwards,
                                                framesIn (time) + shift, n));

        EXPECT_GT (best, 0.95) << time;
    }
}

TEST (NamedEchoes, ExampleFourHoldsTwoBarsExactlyAndStopsListening)
{
    constexpr double kTwoBars = 4.0;  // at 120 bpm
    WetBench bench (62);
    bench.set ("Output 2 Level", 0.0f);
    bench.play (noise (kTwoBars));
    bench.set ("Delay 1 Loop", 1.0f);
    const auto out =
        bench.play (silence (0.5) + sine (300.0, 2.0) + silence (2.0 * kTwoBars - 2.4));
    ASSERT_GT (rms (out, 0.0, kTwoBars), 0.01);

    // At unity and without interpolation, so it is the same to the bit but for what keeps denormals away.
    const int first = framesIn (0.1);
    const int n = framesIn (kTwoBars) - first;
    double best = 1.0;

    for (int period = framesIn (kTwoBars) - 2; period <= framesIn (kTwoBars) + 2; ++period)
    {
        double worst = 0.0;

        for (int i = first; i < first + n; ++i)
            worst = std::max (worst, static_cast<double> (std::abs (
                                         out.left.at (static_cast<std::size_t> (i)) -
                                         out.left.at (static_cast<std::size_t> (i + period)))));

        best = std::min (best, worst);
    }

    EXPECT_LT (best, 1e-6);
}

TEST (NamedEchoes, TheBucketHoldsWhatANoteLetInAndNothingElse)
{
    const auto leftAfter = [] (bool noteHeld)
    {
        WetBench bench (57);
        bench.note (60, noteHeld);
        bench.play (noise (0.5));
        bench.note (60, false);
        bench.play (silence (8.0));  // the echo has leaked away by then
        const auto round1 = bench.play (silence (2.0));
        const auto round2 = bench.play (silence (2.0));
        EXPECT_NEAR (rms (round1, 0.0, 2.0), rms (round2, 0.0, 2.0), 1e-5);
        return decibels (rms (round2, 0.0, 2.0));
    };

    EXPECT_GT (leftAfter (true), -50.0);
    EXPECT_LT (leftAfter (false), -80.0);
}

// --- pitch ---------------------------------------------------------------------------------------------------------

TEST (NamedEchoes, PitchmeisterRaisesTheLeftAndLowersTheRight)
{
    WetBench bench (16);
    const auto out = bench.play (sine (440.0, 1.5));

    const auto energyBetween = [] (const std::vector<float>& channel, double low, double high)
    {
        double sum = 0.0;

        for (double hertz = low; hertz <= high; hertz += 2.0)
            sum += std::pow (amplitudeAt (channel, hertz, 1.0, 1.5), 2.0);

        return sum;
    };

    // From one to seven semitones off.
    EXPECT_GT (energyBetween (out.left, 466.0, 660.0),
               3.0 * energyBetween (out.left, 294.0, 415.0));
    EXPECT_GT (energyBetween (out.right, 294.0, 415.0),
               3.0 * energyBetween (out.right, 466.0, 660.0));
    EXPECT_LT (energyBetween (out.left, 430.0, 450.0),
               0.05 * energyBetween (out.left, 466.0, 660.0));
}

TEST (NamedEchoes, ChorusMovesItsDelayUpAndDownOnEachSide)
{
    WetBench bench (13);
    double shortest = 1.0, longest = 0.0;

    for (int i = 0; i < 24; ++i)
    {
        const auto found = onsets (bench.play (click (0.08)).left);
        ASSERT_FALSE (found.empty());
        shortest = std::min (shortest, found.front() - kClickSeconds);
        longest = std::max (longest, found.front() - kClickSeconds);
    }

    EXPECT_NEAR (shortest, 0.009, 0.001);
    EXPECT_NEAR (longest, 0.014, 0.0015);
}

TEST (NamedEchoes, OvertonesAddsHarmonicsToAPureTone)
{
    PresetBench bench (15);
    const auto out = bench.play (sine (330.0, 1.0));
    const double tone = amplitudeAt (out.left, 330.0, 0.3, 1.0);

    for (const double harmonic : { 3.0, 5.0 })
        EXPECT_GT (decibels (amplitudeAt (out.left, 330.0 * harmonic, 0.3, 1.0) / tone), -40.0);
}
