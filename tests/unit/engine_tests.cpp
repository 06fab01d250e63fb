// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/engine.h"
#include "engine/engine_globals.h"

#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <utility>
#include <vector>

namespace
{

/** One block of the same sample on both channels; returns the left output. */
std::vector<float> block (VelkorEngine& engine, int numSamples, float sample)
{
    std::vector<float> left (static_cast<std::size_t> (numSamples), sample);
    std::vector<float> right = left;
    engine_dsp_block (engine, left.data(), right.data(), numSamples, Transport {});
    return left;
}

/** Phase 2 after blocks at 32768 Hz, where the lengths and rates below come out exact in binary: LFO 2 at 8 makes
    1/512 of a cycle per tick, LFO 1 at r makes r/4096. */
double phase2After (float rate1, bool isReset, std::initializer_list<int> blockLengths)
{
    VelkorEngine engine;
    engine_prepare (engine, 32768.0);
    engine.block.lfoRate1 = rate1;
    engine.block.lfoRate2 = 8.0f;
    engine.block.lfo2Reset = isReset;

    for (const int n : blockLengths)
        block (engine, n, 0.0f);

    return engine.block.lfoPhase2;
}

}  // namespace

TEST (Engine, RefusesRatesThatNoBufferCouldBeMeasuredBy)
{
    VelkorEngine engine;
    engine_prepare (engine, 48000.0);

    for (const double rate :
         { 0.0, -44100.0, 0.5, 1.0e-12, 1.0e9, 1.0e300, std::numeric_limits<double>::infinity(),
           std::numeric_limits<double>::quiet_NaN() })
    {
        engine_prepare (engine, rate);
        EXPECT_EQ (engine.sampleRate, 48000.0) << rate;
        EXPECT_EQ (gAudioSamplingRate.load(), 48000.0f) << rate;
    }

    engine_prepare (engine, 1.0);
    EXPECT_EQ (engine.sampleRate, 1.0);
    setAudioSamplingRate (44100.0);
}

TEST (Engine, PlaysOnWithFiltersAndPansAtRestIfThereWasNoMemoryForTheirTables)
{
    VelkorEngine engine;
    engine_prepare (engine, 48000.0);
    std::free (std::exchange (engine.freqLookup.table, nullptr));
    router_panner_1to2_free (engine.panner1);
    const float gainBefore = engine.panner1.gainR;
    engine.block.dryGain = 0.0f;
    engine.block.pan1 = 1.0f;
    engine_set_connection (engine, sourceInputL, destOutput1, true);

    const auto out = block (engine, 1024, 0.5f);
    EXPECT_EQ (engine.filter1.freq, 1000.0f);
    EXPECT_EQ (engine.panner1.gainR, gainBefore);
    EXPECT_NEAR (out.back(), 0.25f, 1.0e-3f) << "the middle: half the level on each side";
}

TEST (Engine, Lfo2ResetStartsLfo2OverWhenLfo1Wraps)
{
    // LFO 1 makes 3/512 per tick: it wraps on tick 171, at 513/512, and LFO 2 has 85 of the 256 ticks left.
    EXPECT_EQ (phase2After (24.0f, true, { 512, 512 }), 85.0 / 512.0);
    EXPECT_EQ (phase2After (24.0f, false, { 512, 512 }), 256.0 / 512.0);

    // The first tick of all starts from phase 0, which holds LFO 2 there for its length.
    EXPECT_EQ (phase2After (24.0f, true, { 512 }), 127.0 / 512.0);

    // LFO 1 lands on 1/32768 on tick 128, no further than a sample from its start: tick 129 holds LFO 2 as well.
    EXPECT_EQ (phase2After (32.0009765625f, true, { 512, 256 }), 63.0 / 512.0);
}
