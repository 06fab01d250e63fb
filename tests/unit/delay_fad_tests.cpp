// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/delay_fad.h"
#include "engine/engine_globals.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <span>
#include <utility>
#include <vector>

namespace
{

float feedbackShapeOf (float amount, float x)
{
    return feedbackShape (splat (amount), splat (x))[0];
}

/** A line of a given length at 44.1 kHz whose buffer and heads a test can lay out by hand. */
class SmallLine
{
public:
    SmallLine (std::uint64_t slots, std::uint64_t delay)
    {
        setAudioSamplingRate (44100.0);
        line.buffer = static_cast<float*> (std::calloc (slots, sizeof (float)));
        line.bufferSize = slots;
        line.delaySamples = delay;
        line.writePos = static_cast<float> (delay) - 1.0f;
    }

    ~SmallLine() { delay_fad_free (line); }
    SmallLine (const SmallLine&) = delete;
    SmallLine& operator= (const SmallLine&) = delete;

    float operator() (float in)
    {
        delay_fad_dsp (line, in);
        return line.out;
    }

    DelayFad line;
};

/** The calls, counted from 0, at which an impulse at call 0 comes back, with their values. */
std::vector<std::pair<int, float>> echoes (SmallLine& line, int calls)
{
    std::vector<std::pair<int, float>> found;

    for (int n = 0; n < calls; ++n)
        if (const float out = line (n == 0 ? 1.0f : 0.0f); out != 0.0f)
            found.emplace_back (n, out);

    return found;
}

using Echoes = std::vector<std::pair<int, float>>;

}  // namespace

TEST (DelayFad, AnImpulseComesBackOnceAsTwoHalvesWhateverSlotItStartsIn)
{
    for (int before = 0; before < 17;
         ++before)  // more calls than slots: every slot gets to be the first
    {
        SmallLine line (13, 5);

        for (int n = 0; n < before; ++n)
            line (0.0f);

        EXPECT_EQ (echoes (line, 12), (Echoes { { 3, 0.5f }, { 4, 0.5f } }))
            << before << " calls before";
    }
}

TEST (DelayFad, AFasterTapeShortensTheDelayAndASlowerOneStretchesIt)
{
    for (const float rate : { 0.5f, 0.75f, 1.25f, 1.5f })
    {
        SmallLine line (4000, 600);
        line.line.readRate = rate;
        line.line.writeRate = rate;
        double centre = 0.0;
        double sum = 0.0;

        for (const auto& [n, value] : echoes (line, 2000))
        {
            centre += static_cast<double> (value) * n;
            sum += static_cast<double> (value);
        }

        EXPECT_NEAR (centre / sum, 600.0 / static_cast<double> (rate), 3.0) << "rate " << rate;
    }
}

TEST (DelayFad, ANewTimeIsReachedAlongAnExponential)
{
    SmallLine line (5000, 100);

    for (int n = 0; n < 50; ++n)
        line (0.0f);

    line.line.delaySamples = 200;
    const auto gap = [&line]
    { return std::fmod (line.line.writePos - line.line.readPos + 5000.0f, 5000.0f); };

    for (int n = 1; n <= 600; ++n)
    {
        line (0.0f);
        const double want = 200.0 - 100.0 * std::exp (-n / 200.0);
        ASSERT_NEAR (static_cast<double> (gap()), want, 2.0) << "after " << n;
    }
}

TEST (DelayFad, ReversePlaysWhatIsInTheBufferNewestFirst)
{
    SmallLine line (1000, 100);

    for (int n = 1; n <= 400; ++n)  // a rising ramp
        line (static_cast<float> (n) * 0.001f);

    line.line.reverseRequest = true;
    line (0.0f);
    float last = line (0.0f);
    EXPECT_NEAR (last, 0.398f, 0.003f);

    for (int n = 0; n < 90; ++n)
    {
        const float out = line (0.0f);
        ASSERT_NEAR (last - out, 0.001f, 0.0002f) << "the ramp falls now, call " << n;
        last = out;
    }
}

TEST (DelayFad, BypassKeepsTheInputOutOfTheBufferAndPassesItOnlyInReverse)
{
    SmallLine line (1000, 50);
    line.line.thru = 1.0f;
    EXPECT_EQ (line (0.7f), 0.0f);

    line.line.reverseRequest = true;
    EXPECT_EQ (line (0.7f), 0.7f);
}

TEST (DelayFad, ALoopGoesRoundAtUnityWithinItsLimits)
{
    SmallLine line (1000, 50);
    line (0.8f);

    for (int n = 1; n < 40; ++n)
        line (0.0f);

    line.line.loop = true;
    std::vector<float> peaks;

    for (int round = 0; round < 5; ++round)
    {
        float peak = 0.0f;

        for (int n = 0; n < 50; ++n)
            peak = std::max (peak, std::abs (line (0.0f)));

        peaks.push_back (peak);
    }

    // Each round writes between neighbours, which rounds the tip but keeps what is under it.
    EXPECT_NEAR (peaks.front(), 0.4f, 0.001f);
    EXPECT_GT (peaks.back(), 0.1f);

    for (int n = 0; n < 500; ++n)
        ASSERT_LE (std::abs (line (1.0f)), 1.0f) << "the loop adds up to its rails and no further";
}

TEST (DelayFad, SyncedTimesJumpAndFreeOnesGlideWithinTwoMillisecondsToTwelveSeconds)
{
    setAudioSamplingRate (48000.0);
    DelayFad line;
    delay_fad_init (line);
    line.resetPending = false;

    delay_fad_set_time (line, true, 2, 8.5f / 14.85f, 0.0f, 120.0);  // position of 1/4
    EXPECT_EQ (line.timeMs, 1000.0f);
    EXPECT_EQ (line.delaySamples, 48000u);
    EXPECT_TRUE (line.resetPending);

    line.resetPending = false;
    delay_fad_set_time (line, false, 8, 0.0f, 1000.0f, 120.0);
    EXPECT_EQ (line.timeMs, 8000.0f);
    EXPECT_FALSE (line.resetPending);

    delay_fad_set_time (line, true, 8, 1.0f, 0.0f, 120.0);  // asks for 16 s
    EXPECT_EQ (line.timeMs, 12000.0f);
    delay_fad_set_time (line, true, 1, 0.0f, 0.0f, 100000.0);
    EXPECT_EQ (line.timeMs, 2.0f);
    delay_fad_free (line);
}

TEST (DelayFad, ClearingLeavesNothingBehindWhereverTheHeadsHaveBeen)
{
    setAudioSamplingRate (44100.0);
    DelayFad line;
    delay_fad_init (line);

    for (const double rate : { 44100.0, 192000.0 })
    {
        setAudioSamplingRate (rate);
        delay_fad_prepare (line);
        delay_fad_clear (line);
        const std::span<const float> buffer (line.buffer, line.bufferSize);
        const auto isSilent = [] (float x) { return x == 0.0f; };

        // In the middle, across both ends, and further out than the buffer reaches.
        for (const std::uint64_t delay : { std::uint64_t { 96 }, std::uint64_t { 50000 },
                                           line.bufferSize - 100, line.bufferSize + 100000 })
        {
            line.delaySamples = delay;
            delay_fad_clear (line);

            for (int n = 0; n < 12000; ++n)
            {
                line.reverseRequest = n / 4000 % 2 == 1;
                line.readRate = 0.5f + static_cast<float> (n % 3) * 0.5f;
                line.writeRate = line.readRate;
                delay_fad_dsp (line, 0.5f);
            }

            EXPECT_FALSE (std::ranges::all_of (buffer, isSilent));
            delay_fad_clear (line);
            EXPECT_TRUE (std::ranges::all_of (buffer, isSilent)) << rate << " Hz, delay " << delay;
        }
    }

    delay_fad_free (line);
    setAudioSamplingRate (44100.0);
}

TEST (FeedbackShape, MeetsItsLimitWithoutAStepAndHasItsGainNearZero)
{
    EXPECT_FLOAT_EQ (feedbackShapeOf (1.0f, 1.0f), 0.76f);
    EXPECT_FLOAT_EQ (feedbackShapeOf (1.0f, 1.0001f), 0.76f);
    EXPECT_FLOAT_EQ (feedbackShapeOf (0.5f, -3.0f), -0.38f);
    EXPECT_NEAR (feedbackShapeOf (1.0f, 0.001f) / 0.001f, 1.14f, 1.0e-4f);
}
