// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/engine.h"
#include "engine/engine_globals.h"
#include "engine/saturation.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace
{

float saturationOf (float k, float x)
{
    return saturation (splat (k), splat (x))[0];
}

float valueAt (const DestLanes& dests, int destination)
{
    return dests.lanes[destination / 4][destination % 4];
}

}  // namespace

TEST (EnvelopeFollower, DecaysToOneOverEInTwiceTheTimeItWasGiven)
{
    setAudioSamplingRate (48000.0);
    EnvelopeFollower env;
    envelope_follower_set_times (env, 0.0f, 0.25f);
    EXPECT_EQ (envelope_follower_dsp (env, 8.0f), 8.0f) << "no attack: there at once";

    int ticks = 0;

    for (; env.envState > 8.0f / 2.7182818f; ++ticks)
        envelope_follower_dsp (env, 0.0f);

    EXPECT_NEAR (ticks * ControlTick / 48000.0, 0.5, 0.001);
}

TEST (MidiSources, TheGateStaysOpenWhileAnyNoteIsHeldAndTheLastNoteStays)
{
    MidiSources midi;
    EXPECT_TRUE (midi_sources_event (midi, 0x93, 84, 1));
    EXPECT_EQ (midi.noteValue, 1.0f);
    midi_sources_event (midi, 0x90, 60, 100);
    EXPECT_EQ (midi.noteValue, 0.0f);
    midi_sources_event (midi, 0x90, 84, 100);
    EXPECT_EQ (midi.noteValue, 0.0f) << "a repeated note on changes nothing";
    midi_sources_event (midi, 0x80, 60, 0);
    EXPECT_EQ (midi.gate, 1.0f);
    EXPECT_EQ (midi.noteValue, 0.0f);
    EXPECT_TRUE (midi_sources_event (midi, 0x9f, 84, 0)) << "velocity 0 is a note off";
    EXPECT_EQ (midi.gate, 0.0f);
    EXPECT_TRUE (midi_sources_event (midi, 0x80, 84, 0))
        << "an unmatched note off lights the lamp as well";
    EXPECT_EQ (midi.heldCount, 0);

    midi_sources_event (midi, 0x90, 12, 1);
    EXPECT_EQ (midi.noteValue, -1.0f);
    midi_sources_event (midi, 0x90, 127, 1);
    EXPECT_EQ (midi.noteValue, 1.0f);
    midi_sources_event (midi, 0x90, 200, 1);
    EXPECT_EQ (midi.heldCount, 2) << "no note has a number above 127";
}

TEST (MidiSources, OnlyTheModWheelAmongControllersCounts)
{
    MidiSources midi;
    EXPECT_TRUE (midi_sources_event (midi, 0xb5, 1, 127));
    EXPECT_EQ (midi.modWheel, 1.0f);
    EXPECT_FALSE (midi_sources_event (midi, 0xb5, 123, 0));
    EXPECT_FALSE (midi_sources_event (midi, 0xe0, 1, 64));
    EXPECT_FALSE (midi_sources_event (midi, 0xf8, 0, 0));
    EXPECT_EQ (midi.modWheel, 1.0f);
}

TEST (RampGenerator, FadesInFourTimesItsTimeAndTurnsRoundWhereItStands)
{
    setAudioSamplingRate (48000.0);
    RampGenerator ramp;
    ramp_init (ramp);
    int ticks = 0;

    while (rampTick (ramp, 1.0f) < 1.0f)
        ++ticks;

    EXPECT_NEAR (ticks * ControlTick, 4 * 48, ControlTick);

    for (int n = 0; n < 24; ++n)
        rampTick (ramp, 0.0f);

    const float half = ramp.output;
    EXPECT_NEAR (half, 0.5f, 0.001f);
    EXPECT_NEAR (rampTick (ramp, 1.0f) - half, 0.5f / 48.0f, 1e-5f);
}

TEST (FreqLookup, RunsFromFortyToEighteenThousandHertzInEqualRatios)
{
    FreqLookup scale;
    freq_lookup_init (scale);
    const auto at = [&scale] (float x) { return tableLookup (scale.size, scale.table, x); };
    EXPECT_FLOAT_EQ (at (0.0f), 40.0f);
    EXPECT_FLOAT_EQ (at (1.0f), 18000.0f);
    EXPECT_NEAR (at (0.5f), 848.528f, 0.1f);
    EXPECT_NEAR (at (0.3f) / at (0.2f), at (0.9f) / at (0.8f), 1e-3f);
    std::free (scale.table);
}

TEST (RouterPanner, SharesTheSignalWithConstantSumAndMinusSixInTheMiddle)
{
    RouterPanner1to2 panner;
    router_panner_1to2_init (panner);
    EXPECT_NEAR (panner.gainR, 0.5f, 1e-3f);

    router_panner_1to2_set (panner, 0.0f);
    EXPECT_EQ (panner.gainR, 0.0f);
    EXPECT_EQ (panner.gainL, 1.0f);
    router_panner_1to2_set (panner, 1.0f);
    EXPECT_NEAR (panner.gainR, 1.0f, 1e-6f);
    router_panner_1to2_set (panner, 0.25f);
    EXPECT_NEAR (panner.gainR, 0.146447f, 1e-4f);  // sin² of 22.5 degrees
    EXPECT_EQ (panner.gainL, 1.0f - panner.gainR);
    router_panner_1to2_free (panner);
}

TEST (Saturation, IsExactUnityAtZeroAndBendsTowardsItsCeiling)
{
    EXPECT_EQ (saturationOf (saturationConstant (0.0f), 0.7310586f), 0.7310586f);
    EXPECT_EQ (saturationConstant (1.0f), saturationConstant (0.99f));
    const float k = saturationConstant (0.5f);
    EXPECT_FLOAT_EQ (k, 2.0f);
    EXPECT_FLOAT_EQ (saturationOf (k, 1.0f), 1.0f);
    EXPECT_FLOAT_EQ (saturationOf (k, -0.25f), -0.5f);
    EXPECT_NEAR (saturationOf (k, 1.0e6f), 1.5f, 1e-4f);
}

TEST (SignalMatrix, RemovingTheLastSourceLeavesItsValueStanding)
{
    VelkorEngine engine;
    auto& matrix = engine.signal;
    engine_set_connection (engine, sourceFilter1, destOutput1, true);
    engine_set_connection (engine, sourceFilter1, destOutput1, true);
    EXPECT_EQ (matrix.connectionCount, 7) << "six from the start, and a pair counts once";

    float negatives[kNumSignalSources] {};
    DestLanes dests;
    negatives[sourceFilter1] = -0.25f;
    negatives[sourceDelay1] = -0.5f;
    signal_matrix_dsp (matrix, negatives, dests);
    EXPECT_EQ (valueAt (dests, destOutput1), 0.75f) << "full level, whatever meets";

    engine_set_connection (engine, sourceDelay1, destOutput1, false);
    engine_set_connection (engine, sourceFilter1, destOutput1, false);
    std::ranges::fill (negatives, -0.0f);
    signal_matrix_dsp (matrix, negatives, dests);
    EXPECT_EQ (valueAt (dests, destOutput1), 0.75f);
    EXPECT_EQ (valueAt (dests, destDelay1), 0.0f);

    engine_set_connection (engine, 8, 0, true);
    engine_set_connection (engine, 0, 10, true);
    engine_set_connection (engine, -1, -1, true);
    EXPECT_EQ (matrix.connectionCount, 5);
}

TEST (SignalMatrix, AFilterIsActiveWhileAnythingLeadsToIt)
{
    VelkorEngine engine;
    engine_set_connection (engine, sourceInputL, destFilter2, true);
    engine_set_connection (engine, sourceInputR, destFilter2, true);
    engine_set_connection (engine, sourceInputL, destFilter2, false);
    EXPECT_EQ (engine.filter2.active, 1);
    engine_set_connection (engine, sourceInputR, destFilter2, false);
    EXPECT_EQ (engine.filter2.active, 0);
    EXPECT_EQ (engine.filter1.active, 0);
}

TEST (ModRouter, SumsWithoutLimitAndForgetsRoutesThatAreCleared)
{
    VelkorEngine engine;
    auto& matrix = engine.modulation;
    mod_router_set (matrix, modSourceLfo1, modDestFilter1, true);
    mod_router_set (matrix, modSourceLfo2, modDestFilter1, true);
    mod_router_set (matrix, modSourceLfo2, modDestFilter1, true);
    mod_router_set (matrix, 6, 0, true);
    mod_router_set (matrix, 0, 10, true);
    EXPECT_EQ (matrix.router.routes.size(), 2);
    EXPECT_FALSE (mod_router_get (matrix, 6, 0));

    matrix.modSources.set (modSourceLfo1, 1.0f);
    matrix.modSources.set (modSourceLfo2, 1.0f);
    mod_router_dsp (matrix, true);
    EXPECT_EQ (matrix.modDests[modDestFilter1], 2.0f);
    EXPECT_EQ (matrix.modDests[modDestFilter2], 0.0f);

    mod_router_set (matrix, modSourceLfo1, modDestFilter1, false);
    mod_router_set (matrix, modSourceGate, modDestPan1, false);
    mod_router_dsp (matrix, true);
    EXPECT_EQ (matrix.modDests[modDestFilter1], 1.0f);
    EXPECT_FALSE (mod_router_get (matrix, modSourceLfo1, modDestFilter1));
}
