// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/gen_LFO.h"

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

TEST (GenLFO, TheKindsThatNoWaveSelectsTurnInTheMiddleWhateverTheSkew)
{
    auto square = lfoOf (lfoPlainSquare, 0.1f);
    EXPECT_EQ (gen_LFO_dsp_phasor (square, 0.0), 1.0f);
    EXPECT_EQ (gen_LFO_dsp_phasor (square, 0.4375), 1.0f);
    EXPECT_EQ (gen_LFO_dsp_phasor (square, 0.5), -1.0f);
    EXPECT_EQ (gen_LFO_dsp_phasor (square, 1.0), -1.0f);

    auto triangle = lfoOf (lfoPlainTriangle, 0.1f);
    EXPECT_EQ (gen_LFO_dsp_phasor (triangle, 0.0), -1.0f);
    EXPECT_EQ (gen_LFO_dsp_phasor (triangle, 0.25), -0.5f);
    EXPECT_EQ (gen_LFO_dsp_phasor (triangle, 0.5), 0.0f) << "half way up, and no higher";
    EXPECT_EQ (gen_LFO_dsp_phasor (triangle, 0.875), -0.75f);
    EXPECT_EQ (gen_LFO_dsp_phasor (triangle, 1.0), -1.0f);

    gen_LFO_dsp_phasor (triangle, 0.25);
    gen_LFO_set_kind (triangle, 70);
    EXPECT_EQ (gen_LFO_dsp_phasor (triangle, 0.875), -0.5f) << "an unknown kind holds";
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
