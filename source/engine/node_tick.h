// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "engine/block_lanes.h"
#include "engine/delay_heads.h"
#include "engine/saturation.h"

// A tick node by node, for steady heads and wirings that have an order (StagePlan). In a header, since it is compiled
// with the sample loop that it stands in for. All of it is the audio thread's, under connectionLock.

/** A tick's samples of both channels, one to a lane. */
struct StereoTick
{
    Floats left, right;
};

/** A tick's values one sample later: the last of the tick before comes first. */
inline Floats delayed (Floats before, Floats now) noexcept
{
    return __builtin_shufflevector (before, now, 3, 4, 5, 6);
}

inline void runSaturators (BlockLanes& lanes, const StagePlan& plan) noexcept
{
    NodeTicks& t = lanes.ticks;

    for (int i = 0; i < 2; ++i)
    {
        const Floats before = t.dests[destSaturation1 + i];
        stage_plan_sum (plan, t.sources, t.dests, destSaturation1 + i);
        t.sources[sourceSaturation1 + i] = saturation (
            splat (lanes.satKOfFilters[2 + i]), delayed (before, t.dests[destSaturation1 + i]));
    }
}

inline void runFilters (BlockLanes& lanes, const StagePlan& plan) noexcept
{
    NodeTicks& t = lanes.ticks;
    stage_plan_sum (plan, t.sources, t.dests, destFilter1);
    stage_plan_sum (plan, t.sources, t.dests, destFilter2);
    const Floats early = interleaveLow (t.dests[destFilter1], t.dests[destFilter2]);
    const Floats late = interleaveHigh (t.dests[destFilter1], t.dests[destFilter2]);

    MorphState<Doubles> state = lanes.filters.state;
    const Floats first = filter_pair_dsp (lanes.filters, state, early);
    const Floats second = filter_pair_dsp (lanes.filters, state, upperPair (early));
    const Floats third = filter_pair_dsp (lanes.filters, state, late);
    const Floats fourth = filter_pair_dsp (lanes.filters, state, upperPair (late));
    lanes.filters.state = state;

    const Floats earlyOut = interleaveLow (first, second);
    const Floats lateOut = interleaveLow (third, fourth);
    const Floats out[] = { pairs (earlyOut, lateOut),
                           pairs (upperPair (earlyOut), upperPair (lateOut)) };

    for (int i = 0; i < 2; ++i)
    {
        t.sources[sourceFilter1 + i] = delayed (t.filterOut[i], out[i]);
        t.filterOut[i] = out[i];
    }
}

inline void writeDelays (BlockLanes& lanes, const StagePlan& plan) noexcept
{
    NodeTicks& t = lanes.ticks;
    Floats last {};

    for (int i = 0; i < 2; ++i)
    {
        stage_plan_sum (plan, t.sources, t.dests, destDelay1 + i);
        stage_plan_sum (plan, t.sources, t.dests, destFeedback1 + i);
        const Floats in =
            t.dests[destDelay1 + i] +
            feedbackShape (splat (lanes.feedbackOfInputs[2 + i]), t.dests[destFeedback1 + i]);
        steadyWrite (lanes.delays, i, in);
        last[i] = in[3];
    }

    steadyFinish (lanes.delays, last);
}

/** The tick node by node instead of sample by sample: the same sums in the same order, four samples at a time. What the
    delays give for the whole tick is known at its head, since they are longer, and so in their order is what the
    saturators give and the filters, each of which gets through its four samples at once. */
inline StereoTick runNodes (BlockLanes& lanes, const StagePlan& plan, StereoTick in) noexcept
{
    NodeTicks& t = lanes.ticks;
    t.sources[sourceInputL] = in.left;
    t.sources[sourceInputR] = in.right;

    for (int i = 0; i < 2; ++i)
    {
        const Floats out = steadyOutputs (lanes.delays, i);
        t.sources[sourceDelay1 + i] = delayed (t.delayOut[i], out);
        t.delayOut[i] = out;
    }

    if (plan.order == StagePlan::Order::filtersFirst)
    {
        runFilters (lanes, plan);
        runSaturators (lanes, plan);
    }
    else
    {
        runSaturators (lanes, plan);
        runFilters (lanes, plan);
    }

    writeDelays (lanes, plan);
    stage_plan_sum (plan, t.sources, t.dests, destOutput1);
    stage_plan_sum (plan, t.sources, t.dests, destOutput2);
    return { t.dests[destOutput1], t.dests[destOutput2] };
}
