// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/engine.h"
#include "engine/engine_globals.h"

#include <gtest/gtest.h>
#include <limits>

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
