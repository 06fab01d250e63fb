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
