// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/engine.h"
#include "engine/engine_globals.h"
#include "engine/saturation.h"

#include <cmath>
#include <gtest/gtest.h>
#include <set>

namespace
{

GenLFO lfoOf (std::uint16_t kind, float skew)
{
    GenLFO lfo;
    gen_LFO_init (lfo);
    gen_LFO_set_kind (lfo, kind);
    gen_LFO_set_skew (lfo, skew);
    return lfo;
}

}  // namespace

TEST (GenLFO, WavesPassThroughTheirCornersWhereTheSkewPutsThem)
{
    auto triangle = lfoOf (lfoTriangle, 0.25f);
    EXPECT_NEAR (gen_LFO_dsp_phasor (triangle, 0.0), -1.0f, 1e-6f);
    EXPECT_NEAR (gen_LFO_dsp_phasor (triangle, 0.125), 0.0f, 0.01f);
    EXPECT_NEAR (gen_LFO_dsp_phasor (triangle, 0.2505), 1.0f, 0.01f);
    EXPECT_NEAR (gen_LFO_dsp_phasor (triangle, 1.0), -1.0f, 1e-6f);

    auto square = lfoOf (lfoSquare, 0.5f);
    EXPECT_EQ (gen_LFO_dsp_phasor (square, 0.499), 1.0f);
    EXPECT_EQ (gen_LFO_dsp_phasor (square, 0.5), -1.0f);

    auto sine = lfoOf (lfoSine, 0.5f);
    EXPECT_EQ (gen_LFO_dsp_phasor (sine, 0.0), 0.0f);
    EXPECT_EQ (gen_LFO_dsp_phasor (sine, 1.0), 0.0f) << "a phase may stand at exactly 1";
    EXPECT_NEAR (gen_LFO_dsp_phasor (sine, 1.0 / 12.0), 0.5f, 0.02f);
    EXPECT_LT (gen_LFO_dsp_phasor (sine, 0.25), 1.0f) << "the table never holds exactly 1";
    EXPECT_NEAR (gen_LFO_dsp_phasor (sine, -0.25), -1.0f, 0.02f) << "a pre-roll";
}

TEST (GenLFO, ASkewedSineLeansButKeepsItsHeight)
{
    for (const float skew : { 0.1f, 0.9f })
    {
        auto lfo = lfoOf (lfoSine, skew);
        float top = -2.0f;
        double topAt = 0.0;

        for (int i = 0; i < 1000; ++i)
            if (const float value = gen_LFO_dsp_phasor (lfo, i / 1000.0); value > top)
            {
                top = value;
                topAt = i / 1000.0;
            }

        EXPECT_GT (top, 0.99f);
        EXPECT_LT (skew < 0.5f ? topAt : 0.5 - topAt, 0.24) << "skew " << skew;
    }
}

TEST (GenLFO, RandomHoldsAValuePerCycleAndAlwaysDrawsTheSameSequence)
{
    auto a = lfoOf (lfoRandom, 0.0f);
    auto b = lfoOf (lfoRandom, 0.0f);
    std::set<float> values;

    for (int cycle = 0; cycle < 100; ++cycle)
    {
        const float held = gen_LFO_dsp_phasor (a, 0.1);
        EXPECT_EQ (gen_LFO_dsp_phasor (a, 0.9), held);
        EXPECT_EQ (gen_LFO_dsp_phasor (b, 0.1), held);
        gen_LFO_dsp_phasor (b, 0.9);
        EXPECT_LE (std::abs (held), 1.0f);
        values.insert (held);
    }

    EXPECT_GT (values.size(), 90u);
    // First draw by hand: (3321 * 3877 + 29573) mod 139968 = 28034.
    auto first = lfoOf (lfoRandom, 0.0f);
    EXPECT_FLOAT_EQ (gen_LFO_dsp_phasor (first, 0.5), 1.0f - 2.0f * 28034.0f / 139968.0f);
}

TEST (GenLFO, ReducesAPhaseAsTheLoopOfSubtractionsWould)
{
    for (const double phase :
         { -3.7, 0.0, 0.3, 1.0, 1.0 + 1e-16, 1.25, 2.0, 2.5, 1234.000001, 1e6 / 3.0, 4.0e5 })
    {
        double looped = phase;

        while (looped > 1.0)
            looped -= 1.0;

        EXPECT_EQ (gen_LFO_reduce (phase), looped) << phase;
    }
}

TEST (LfoPlan, AFreeOneRunsAtTwiceItsHertzAndASyncedOneFollowsTheSong)
{
    const LfoBlock block { 0.01, 10, 120.0, 6.5 };
    const auto free = gen_LFO_plan_free (block, 3.0f, 0.4);
    EXPECT_EQ (free.phase, 0.4);
    EXPECT_DOUBLE_EQ (free.increment * 10.0, 2.0 * 3.0 * 0.01);

    const auto slowest = gen_LFO_plan_synced (block, 0.0f);  // 1/1, four quarters
    EXPECT_DOUBLE_EQ (slowest.phase, 6.5 / 4.0);
    EXPECT_NEAR (slowest.increment * 10.0, 0.02 / 4.0, 1e-9);
    const auto fastest = gen_LFO_plan_synced (block, 1.0f);  // 1/32
    EXPECT_DOUBLE_EQ (fastest.phase, 6.5 * 8.0);
}

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
    EXPECT_EQ (saturation (saturationConstant (0.0f), 0.7310586f), 0.7310586f);
    EXPECT_EQ (saturationConstant (1.0f), saturationConstant (0.99f));
    const float k = saturationConstant (0.5f);
    EXPECT_FLOAT_EQ (k, 2.0f);
    EXPECT_FLOAT_EQ (saturation (k, 1.0f), 1.0f);
    EXPECT_FLOAT_EQ (saturation (k, -0.25f), -0.5f);
    EXPECT_NEAR (saturation (k, 1.0e6f), 1.5f, 1e-4f);
}

TEST (SignalMatrix, RemovingTheLastSourceLeavesItsValueStanding)
{
    VelkorEngine engine;
    auto& matrix = engine.signal;
    engine_set_connection (engine, sourceFilter1, destOutput1, true);
    engine_set_connection (engine, sourceFilter1, destOutput1, true);
    EXPECT_EQ (matrix.connectionCount, 7) << "six from the start, and a pair counts once";

    matrix.signalSources[sourceFilter1] = 0.25f;
    matrix.signalSources[sourceDelay1] = 0.5f;
    signal_matrix_dsp (matrix);
    EXPECT_EQ (matrix.signalDests[destOutput1], 0.75f) << "full level, whatever meets";

    engine_set_connection (engine, sourceDelay1, destOutput1, false);
    engine_set_connection (engine, sourceFilter1, destOutput1, false);
    matrix.signalSources.fill (0.0f);
    signal_matrix_dsp (matrix);
    EXPECT_EQ (matrix.signalDests[destOutput1], 0.75f);
    EXPECT_EQ (matrix.signalDests[destDelay1], 0.0f);

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
    mod_router_dsp (matrix);
    EXPECT_EQ (matrix.modDests[modDestFilter1], 2.0f);
    EXPECT_EQ (matrix.modDests[modDestFilter2], 0.0f);

    mod_router_set (matrix, modSourceLfo1, modDestFilter1, false);
    mod_router_set (matrix, modSourceGate, modDestPan1, false);
    mod_router_dsp (matrix);
    EXPECT_EQ (matrix.modDests[modDestFilter1], 1.0f);
    EXPECT_FALSE (mod_router_get (matrix, modSourceLfo1, modDestFilter1));
}
