// SPDX-License-Identifier: AGPL-3.0-or-later
#include "support/duel.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <numeric>

// What the processor does as a whole, with numbers worked out by hand.

namespace
{

/** A duel at 48 kHz, settled after its first fade, with nothing connected, dry signal off, output 1 on the left. */
class Bench : public Duel
{
public:
    Bench()
    {
        prepare (48000.0);
        connectAll (false);
        set (DryLevel, 0.0f);
        set (Pan1, 0.0f);
        settle (2);
    }

    /** Runs blocks of silence. */
    void settle (int blocks)
    {
        for (int i = 0; i < blocks; ++i)
            impulse (512, 0, 0.0f);
    }

    /** The left output for an impulse. */
    std::vector<float> impulse (int length, int at, float height = 1.0f)
    {
        std::vector<float> left (static_cast<std::size_t> (length), 0.0f);
        left[static_cast<std::size_t> (at)] = height;
        auto right = left;
        process (left, right);
        return left;
    }
};

/** Where the loudest sample stands. */
int peakOf (const std::vector<float>& samples)
{
    const auto louder = [] (float a, float b) { return std::abs (a) < std::abs (b); };
    return static_cast<int> (std::max_element (samples.begin(), samples.end(), louder) -
                             samples.begin());
}

}  // namespace

TEST (Processor, EachNodeOnThePathAddsOneSampleAndADelayItsLengthToo)
{
    Bench direct;
    direct.connect (sourceInputL, destOutput1, true);
    EXPECT_EQ (peakOf (direct.impulse (256, 0)), 0) << "an input is heard in the same sample";

    Bench saturators;
    saturators.connect (sourceInputL, destSaturation1, true);
    saturators.connect (sourceSaturation1, destSaturation2, true);
    saturators.connect (sourceSaturation2, destOutput1, true);
    const auto out = saturators.impulse (256, 7);
    EXPECT_EQ (peakOf (out), 9);
    EXPECT_NEAR (out[9], 1.0f, 1e-6f) << "unity at no drive";

    Bench delay;
    delay.connect (sourceInputL, destDelay1, true);
    delay.connect (sourceDelay1, destOutput1, true);
    delay.set (Delay1Multiplier, 0.0f);
    delay.set (Delay1Time, 10.0f);
    delay.settle (94);  // the heads have come to rest
    const auto echo = delay.impulse (1024, 0);
    // The positions' last bits are worth 1/32 of a slot: a glide from above ends where the read head's step
    // rounds to 1, up to 1/64 of the length early.
    EXPECT_GE (peakOf (echo), 480);
    EXPECT_LE (peakOf (echo), 480 + 480 / 64 + 1);
    EXPECT_NEAR (std::accumulate (echo.begin(), echo.end(), 0.0f), 1.0f, 1e-3f);
}

TEST (Processor, EchoesDieAwayThroughTheSmallestNumbersAsWithDenormalsFlushed)
{
    Bench bench;

    for (int to : { destDelay1, destFeedback1, destOutput1 })
        bench.connect (to == destDelay1 ? sourceInputL : sourceDelay1, to, true);

    bench.set (Delay1Multiplier, 0.0f);
    bench.set (Delay1Time, 2.0f);
    bench.set (Delay1Feedback, 0.5f);
    bench.impulse (512, 0);
    bench.set (Kill, 1.0f);  // else the input's offset keeps the echoes up
    bench.settle (60);
    EXPECT_EQ (bench.impulse (512, 0)[511], 0.0f);
}

TEST (Processor, AcceptsStereoInWithStereoOrMonoOutAndNothingElse)
{
    VelkorAudioProcessor processor;
    const auto mono = juce::AudioChannelSet::mono();
    const auto stereo = juce::AudioChannelSet::stereo();
    const auto surround = juce::AudioChannelSet::create5point1();

    for (const auto& in : { mono, stereo, surround })
        for (const auto& out : { mono, stereo, surround })
            EXPECT_EQ (processor.checkBusesLayoutSupported ({ { in }, { out } }),
                       in == stereo && out != surround)
                << in.size() << " in, " << out.size() << " out";

    EXPECT_EQ (processor.getTailLengthSeconds(), 0.0);
}
