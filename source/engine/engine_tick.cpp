// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/block_lanes.h"
#include "engine/delay_heads.h"
#include "engine/finite_values.h"
#include "engine/limits.h"
#include "engine/node_tick.h"
#include "engine/saturation.h"

#include <algorithm>

/** The final clip to -1..1. Unlike the limits of the controls it lets a NaN through: the end of the block looks for
    it. */
static Floats hardClip (Floats x) noexcept
{
    return larger (splat (-1.0f), smaller (splat (1.0f), x));
}

// --- stages of a tick ------------------------------------------------------------------------------------------

/** The first count of four samples; zeros behind. */
static Floats loadSome (const float* from, int count) noexcept
{
    if (count == ControlTick)
        return load (from);

    float values[ControlTick] = {};
    std::copy_n (from, count, values);
    return load (values);
}

static void storeSome (float* to, Floats values, int count) noexcept
{
    if (count == ControlTick)
        return store (to, values);

    float all[ControlTick];
    store (all, values);
    std::copy_n (all, count, to);
}

/** The input after level and mono, which is also the dry signal. */
static StereoTick inputStage (const VelkorEngine& engine, const StageGains& gains,
                              StereoTick in) noexcept
{
    const Floats left = gains.input * in.left + engine.antiDenormalOffset;
    const Floats right = gains.input * in.right + engine.antiDenormalOffset;

    if (! engine.block.mono)
        return { left, right };

    const Floats sum = 0.707f * right + 0.707f * left;
    return { sum, sum };
}

/** What the dry signal comes to behind Kill and phase, as the matrix gets it. */
static StereoTick matrixInput (const StageGains& gains, float kill, StereoTick dry) noexcept
{
    return { gains.phase1 * (kill * dry.left), gains.phase2 * (kill * dry.right) };
}

/** What the envelope's detector adds for the first count samples, in their order. */
static float detect (StereoTick dry, int count) noexcept
{
    const Floats magnitude = absolute (dry.right) + absolute (dry.left);
    float sum = 0.0f;

    for (int n = 0; n < count; ++n)
        sum += magnitude[n];

    return sum;
}

/** Levels, panners, wet and dry, and the clip at the end of it all. */
static StereoTick outputStage (const StageGains& gains, Floats output1, Floats output2,
                               StereoTick dry) noexcept
{
    const Floats out1 = output1 * gains.level1;
    const Floats out2 = output2 * gains.level2;
    const Floats wetLeft = out1 * gains.left1 + out2 * gains.left2;
    const Floats wetRight = out1 * gains.right1 + out2 * gains.right2;
    return { hardClip (gains.wet * wetLeft + gains.dry * dry.left),
             hardClip (gains.wet * wetRight + gains.dry * dry.right) };
}

// --- sample by sample ------------------------------------------------------------------------------------------

/** The tick's samples through all nodes, any wiring. The order defines the feedback: whatever crosses the matrix is one
    sample old, except the inputs. Returns what stood at the outputs of the matrix. */
template <typename Heads>
static StereoTick runSamples (BlockLanes& lanes, const SignalMatrix& matrix, StereoTick in,
                              int count) noexcept
{
    Heads heads (lanes.delays);
    MorphState<Doubles> filterState = lanes.filters.state;  // local copies stay in registers
    DestLanes dests = lanes.dests;
    Floats made = lanes.made;
    auto& [ofInputs, ofFilters, ofOutputs] = dests.lanes;
    float inputs[2 * ControlTick], outputs[2 * ControlTick] = {};
    store (inputs, -interleaveLow (in.left, in.right));
    store (inputs + 4, -interleaveHigh (in.left, in.right));

    for (int n = 0; n < count; ++n)
    {
        float* const negatives = lanes.negatives[n];
        storePair (negatives + sourceInputL, loadPair (inputs + 2 * n));
        store (negatives + sourceDelay1, -made);
        storeUpperPair (negatives + sourceSaturation1,
                        -saturation (lanes.satKOfFilters, ofFilters));
        signal_matrix_dsp (matrix, negatives, dests);

        const Floats feedback = feedbackShape (lanes.feedbackOfInputs, ofInputs);
        const Floats ofDelays = heads.dsp (n, ofInputs + upperPair (feedback));
        made = pairs (ofDelays, filter_pair_dsp (lanes.filters, filterState, ofFilters));
        storePair (outputs + 2 * n, ofOutputs);
    }

    lanes.dests = dests;
    lanes.made = made;
    lanes.filters.state = filterState;
    heads.finish();
    const Floats early = load (outputs);
    const Floats late = load (outputs + 4);
    return { firstOfPairs (early, late), secondOfPairs (early, late) };
}

// --- either form -------------------------------------------------------------------------------------------

static void takeByNode (BlockLanes& lanes) noexcept
{
    if (lanes.isByNode)
        return;

    NodeTicks& t = lanes.ticks;

    for (int d = 0; d < kNumSignalDests; ++d)
        t.dests[d] = splat (lanes.dests.lanes[d / 4][d % 4]);

    for (int i = 0; i < 2; ++i)
    {
        t.delayOut[i] = splat (lanes.made[i]);
        t.filterOut[i] = splat (lanes.made[2 + i]);
    }

    lanes.isByNode = true;
}

static void takeBySample (BlockLanes& lanes) noexcept
{
    if (! lanes.isByNode)
        return;

    const NodeTicks& t = lanes.ticks;

    for (int d = 0; d < kNumSignalDests; ++d)
        lanes.dests.lanes[d / 4][d % 4] = t.dests[d][3];

    lanes.made =
        Floats { t.delayOut[0][3], t.delayOut[1][3], t.filterOut[0][3], t.filterOut[1][3] };
    lanes.isByNode = false;
}

// --- either way ------------------------------------------------------------------------------------------------

static StereoTick runTick (BlockLanes& lanes, const SignalMatrix& matrix, StereoTick in,
                           int count) noexcept
{
    const bool isPaired = lanes.delays.canBePaired && headsAreInside (lanes.delays);
    const bool isSteady = isPaired && count == ControlTick && headsAreSteady (lanes.delays);

    if (isSteady && matrix.stages.order != StagePlan::Order::none)
    {
        takeByNode (lanes);
        return runNodes (lanes, matrix.stages, in);
    }

    takeBySample (lanes);

    if (isSteady)
        return runSamples<SteadyHeads> (lanes, matrix, in, ControlTick);

    return isPaired ? runSamples<MovingHeads> (lanes, matrix, in, count)
                    : runSamples<SingleHeads> (lanes, matrix, in, count);
}

// --- the block -------------------------------------------------------------------------------------------------

static LfoBlock lfoBlockOf (const VelkorEngine& engine, int numSamples,
                            const Transport& transport) noexcept
{
    return { static_cast<double> (numSamples) * (1.0 / engine.sampleRate),
             numSamples < ControlTick ? 1 : numSamples / ControlTick, transport.tempo,
             transport.position };
}

static void setDelayTimes (VelkorEngine& engine, double tempo) noexcept
{
    const BlockValues& b = engine.block;
    delay_fad_set_time (engine.delay1, b.delaySync1, b.mult1, b.delayTimeNorm1, b.delayTime1,
                        tempo);
    delay_fad_set_time (engine.delay2, b.delaySync2, b.mult2, b.delayTimeNorm2, b.delayTime2,
                        tempo);
}

/** Zeroes some of what a runaway has left in the delay buffers, in proportion to the block. A buffer of 13 s is done
    with after 0.4 s; until then the lines run one by one. */
static void sweepDelays (VelkorEngine& engine, int numSamples) noexcept
{
    constexpr std::uint64_t kSamplesPerPage = 32;

    for (auto* line : { &engine.delay1, &engine.delay2 })
        if (delay_fad_is_stale (*line)) [[unlikely]]
            delay_fad_sweep (*line, 1 + static_cast<std::uint64_t> (numSamples) / kSamplesPerPage);
}

/** Puts the records' state into lanes. */
static void beginBlock (VelkorEngine& engine, BlockLanes& lanes, const LfoBlock& lfoBlock) noexcept
{
    const BlockValues& b = engine.block;
    const auto& dests = engine.signal.signalDests;
    lanes.plan1 = b.lfoSync1 ? gen_LFO_plan_synced (lfoBlock, b.lfoRateNorm1)
                             : gen_LFO_plan_free (lfoBlock, b.lfoRate1, b.lfoPhase1);
    lanes.plan2 = b.lfoSync2 ? gen_LFO_plan_synced (lfoBlock, b.lfoRateNorm2)
                             : gen_LFO_plan_free (lfoBlock, b.lfoRate2, b.lfoPhase2);
    lanes.filtersRate = 0.0f;
    lanes.dests = { { load (dests.data()), load (dests.data() + 4), loadPair (dests.data() + 8) } };
    lanes.feedbackOfInputs = Floats { 0.0f, 0.0f, b.feedback1, b.feedback2 };
    lanes.satKOfFilters = Floats { 0.0f, 0.0f, b.satK1, b.satK2 };
    lanes.gains.input = splat (b.inputGain);
    lanes.gains.phase1 = splat (b.phaseSign1);
    lanes.gains.phase2 = splat (b.phaseSign2);
    lanes.gains.wet = splat (b.wetGain);
    lanes.gains.dry = splat (b.dryGain);
    beginControls (lanes, b);
    delay_pair_take (lanes.delays, engine.delay1, engine.delay2);
    filter_pair_take (lanes.filters, engine.filter1, engine.filter2,
                      gFilterRenormal.load (std::memory_order_relaxed));

    lanes.made =
        Floats { engine.delay1.out, engine.delay2.out, engine.filter1.out, engine.filter2.out };
}

/** Puts the state back into the records; the last tick had count samples. */
static void endBlock (VelkorEngine& engine, BlockLanes& lanes, int count) noexcept
{
    auto& signal = engine.signal;

    for (std::size_t s = 0; s < kNumSignalSources; ++s)
        signal.signalSources[s] =
            lanes.isByNode ? lanes.ticks.sources[s][3] : -lanes.negatives[count - 1][s];

    takeBySample (lanes);
    store (signal.signalDests.data(), lanes.dests.lanes[0]);
    store (signal.signalDests.data() + 4, lanes.dests.lanes[1]);
    storePair (signal.signalDests.data() + 8, lanes.dests.lanes[2]);

    engine.delay1.out = lanes.made[0];
    engine.delay2.out = lanes.made[1];
    engine.filter1.out = lanes.made[2];
    engine.filter2.out = lanes.made[3];
    delay_pair_give_back (lanes.delays);
    filter_pair_give_back (lanes.filters, engine.filter1, engine.filter2);
    router_panner_1to2_dsp (engine.panner1, lanes.dests.lanes[2][0] * lanes.gains.level1[0]);
    router_panner_1to2_dsp (engine.panner2, lanes.dests.lanes[2][1] * lanes.gains.level2[0]);
    engine.block.lfoPhase1 = lanes.plan1.phase;
    engine.block.lfoPhase2 = lanes.plan2.phase;
}

/** One tick of count samples, in place; returns which of its results are not finite, as a mask. */
static Ints tickInPlace (VelkorEngine& engine, BlockLanes& lanes, float* left, float* right,
                         int count) noexcept
{
    engine.antiDenormalOffset = -engine.antiDenormalOffset;
    setTick (engine, lanes);
    const float kill = rampTick (engine.killRamp, engine.block.killTarget);

    const TickLock::ScopedLockType lock (engine.signal.connectionLock);
    const StereoTick in { finiteOrZero (loadSome (left, count)),
                          finiteOrZero (loadSome (right, count)) };
    const StereoTick dry = inputStage (engine, lanes.gains, in);
    const StereoTick wet =
        runTick (lanes, engine.signal, matrixInput (lanes.gains, kill, dry), count);

    // On one channel both are the same memory, and the right side stays.
    const StereoTick out = outputStage (lanes.gains, wet.left, wet.right, dry);
    storeSome (left, out.left, count);
    storeSome (right, out.right, count);

    engine.modulation.modSources.getRawDataPointer()[modSourceEnvelope] =
        envelope_follower_dsp (engine.envelope, detect (dry, count)) * engine.block.envSensitivity;
    return ~(isFinite (loadSome (left, count)) & isFinite (loadSome (right, count)));
}

VELKOR_SAMPLE_LOOP void engine_dsp_block (VelkorEngine& engine, float* left, float* right,
                                          int numSamples, const Transport& transport) noexcept
{
    if (numSamples < 1)
        return;

    setDelayTimes (engine, transport.tempo);
    sweepDelays (engine, numSamples);

    BlockLanes lanes;
    beginBlock (engine, lanes, lfoBlockOf (engine, numSamples, transport));
    Ints notFinite {};
    int count = 0;

    for (int start = 0; start < numSamples; start += ControlTick)
    {
        count = std::min (ControlTick, numSamples - start);
        notFinite |= tickInPlace (engine, lanes, left + start, right + start, count);
    }

    endBlock (engine, lanes, count);

    if (any (notFinite) || ! signalStateIsFinite (engine))
    {
        silenceNonFinite (left, numSamples);
        silenceNonFinite (right, numSamples);
        recoverFromRunaway (engine);
    }
}
