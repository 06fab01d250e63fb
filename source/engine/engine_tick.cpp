// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/engine.h"
#include "engine/engine_globals.h"
#include "engine/limits.h"
#include "engine/saturation.h"

#include <algorithm>
#include <bit>
#include <cmath>

// What changes per block, per tick and per sample stands apart: planBlock, setTick, runSample.

/** What a tick hands to its samples. */
struct TickValues
{
    float kill;            ///< gain of what enters the matrix, 0 to 1
    float level1, level2;  ///< of the two outputs of the matrix
};

// --- per block -----------------------------------------------------------------------------------------

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

// --- per tick ------------------------------------------------------------------------------------------

/** Moves both phases on by their increments. LFO 2 starts over when LFO 1 does, if it is asked to, and once
    more on the next tick if LFO 1 landed within a sample of its start. */
static void stepPhases (LfoPlan& plan1, LfoPlan& plan2, bool lfo2Reset, double sampleRate) noexcept
{
    const bool lfo1JustStarted = plan1.phase <= 1.0 / sampleRate;
    const double next1 = plan1.phase + plan1.increment;
    const bool wraps = next1 > 1.0;

    if (lfo2Reset && (lfo1JustStarted || wraps))
        plan2.phase = 0.0;
    else
        plan2.phase = gen_LFO_reduce (plan2.phase + plan2.increment);

    plan1.phase = wraps ? gen_LFO_reduce (next1) : next1;
}

static void updateModulation (VelkorEngine& engine, LfoPlan& plan1, LfoPlan& plan2) noexcept
{
    stepPhases (plan1, plan2, engine.block.lfo2Reset, engine.sampleRate);

    // The envelope's source was set at the end of the previous tick.
    float* const sources = engine.modulation.modSources.getRawDataPointer();
    sources[modSourceLfo1] = gen_LFO_dsp_phasor (engine.lfo1, plan1.phase);
    sources[modSourceLfo2] = gen_LFO_dsp_phasor (engine.lfo2, plan2.phase);
    sources[modSourceNote] = engine.midi.noteValue;
    sources[modSourceGate] = rampTick (engine.gateRamp, engine.midi.gate);
    sources[modSourceWheel] = engine.midi.modWheel;
    mod_router_dsp (engine.modulation);
}

static void setFilter (FilterMultimode& filter, FreqLookup& scale, float position) noexcept
{
    float freq = filter.freq;  // stays if there was no memory for the table

    if (scale.table != nullptr)
    {
        scale.output = tableLookup (scale.size, scale.table, limitTo (0.0f, 1.0f, position));
        freq = scale.output;
    }

    setCoef (filter, freq);
    setDamp (filter);
}

static void setSpeed (DelayFad& line, float speed) noexcept
{
    line.readRate = limitTo (0.5f, 1.5f, speed);
    line.writeRate = line.readRate;
}

static TickValues setTick (VelkorEngine& engine) noexcept
{
    const BlockValues& b = engine.block;
    const float* const dests = engine.modulation.modDests.getRawDataPointer();
    TickValues tick {};

    tick.level1 = atLeast (0.0f, b.level1 + b.levelMod1 * dests[modDestLevel1]);
    tick.level2 = atLeast (0.0f, b.level2 + b.levelMod2 * dests[modDestLevel2]);
    router_panner_1to2_set (engine.panner1,
                            limitTo (0.0f, 1.0f, b.pan1 + b.panMod1 * dests[modDestPan1]));
    router_panner_1to2_set (engine.panner2,
                            limitTo (0.0f, 1.0f, b.pan2 + b.panMod2 * dests[modDestPan2]));
    setFilter (engine.filter1, engine.freqLookup,
               b.filterFreqNorm1 + b.filterMod1 * dests[modDestFilter1]);
    setFilter (engine.filter2, engine.freqLookup,
               b.filterFreqNorm2 + b.filterMod2 * dests[modDestFilter2]);
    setSpeed (engine.delay1, b.fine1 + b.delayMod1 * dests[modDestDelay1]);
    setSpeed (engine.delay2, b.fine2 + b.delayMod2 * dests[modDestDelay2]);
    gen_LFO_set_rate (engine.lfo1, atLeast (0.01f, b.lfoRate1 + b.lfoMod1 * dests[modDestLfo1]));
    gen_LFO_set_rate (engine.lfo2, atLeast (0.01f, b.lfoRate2 + b.lfoMod2 * dests[modDestLfo2]));
    tick.kill = rampTick (engine.killRamp, b.killTarget);
    return tick;
}

// --- per sample ----------------------------------------------------------------------------------------

/** A left and a right value. */
struct StereoSample
{
    float left, right;
};

static StereoSample inputStage (const VelkorEngine& engine, float left, float right) noexcept
{
    const BlockValues& b = engine.block;
    const float l = b.inputGain * left + engine.antiDenormalOffset;
    const float r = b.inputGain * right + engine.antiDenormalOffset;

    if (! b.mono)
        return { l, r };

    const float sum = 0.707f * r + 0.707f * l;
    return { sum, sum };
}

static StereoSample outputStage (VelkorEngine& engine, const TickValues& tick,
                                 StereoSample dry) noexcept
{
    const BlockValues& b = engine.block;
    const auto& dests = engine.signal.signalDests;
    router_panner_1to2_dsp (engine.panner1, dests[destOutput1] * tick.level1);
    router_panner_1to2_dsp (engine.panner2, dests[destOutput2] * tick.level2);
    const float wetL = engine.panner1.outL + engine.panner2.outL;
    const float wetR = engine.panner1.outR + engine.panner2.outR;
    return { hardClip (b.wetGain * wetL + b.dryGain * dry.left),
             hardClip (b.wetGain * wetR + b.dryGain * dry.right) };
}

/** One sample through all nodes. The order defines the feedback: whatever crosses the matrix is one sample
    old, except the inputs. Returns what the envelope's detector adds. */
static float runSample (VelkorEngine& engine, const TickValues& tick, float renormal, float& left,
                        float& right) noexcept
{
    const BlockValues& b = engine.block;
    auto& sources = engine.signal.signalSources;
    const auto& dests = engine.signal.signalDests;

    sources[sourceSaturation1] = saturation (b.satK1, dests[destSaturation1]);
    sources[sourceSaturation2] = saturation (b.satK2, dests[destSaturation2]);

    const StereoSample in = inputStage (engine, left, right);
    sources[sourceInputL] = b.phaseSign1 * (tick.kill * in.left);
    sources[sourceInputR] = b.phaseSign2 * (tick.kill * in.right);
    sources[sourceDelay1] = engine.delay1.out;
    sources[sourceDelay2] = engine.delay2.out;
    sources[sourceFilter1] = engine.filter1.out;
    sources[sourceFilter2] = engine.filter2.out;

    signal_matrix_dsp (engine.signal);

    delay_fad_dsp (engine.delay1,
                   dests[destDelay1] + feedbackShape (b.feedback1, dests[destFeedback1]));
    delay_fad_dsp (engine.delay2,
                   dests[destDelay2] + feedbackShape (b.feedback2, dests[destFeedback2]));
    filter_multimode_dsp_morph (engine.filter1, dests[destFilter1], renormal);
    filter_multimode_dsp_morph (engine.filter2, dests[destFilter2], -renormal);

    const StereoSample out = outputStage (engine, tick, in);
    left =
        out.left;  // in this order: on one channel both are the same memory, and the right side stays
    right = out.right;
    return std::abs (in.right) + std::abs (in.left);
}

// --- numbers that are not finite ---------------------------------------------------------------------------

/** Whether all n values are finite. Written on the bits so that the compiler makes vector code of it. */
static bool allFinite (const float* values, int n) noexcept
{
    constexpr std::uint32_t kExponent = 0x7f800000u;
    std::uint32_t found = 0;

    for (int i = 0; i < n; ++i)
        found |= static_cast<std::uint32_t> (
            (std::bit_cast<std::uint32_t> (values[i]) & kExponent) == kExponent);

    return found == 0;
}

static void silenceNonFinite (float* values, int n) noexcept
{
    if (! allFinite (values, n))
        std::replace_if (
            values, values + n, [] (float x) { return ! std::isfinite (x); }, 0.0f);
}

static bool signalStateIsFinite (const VelkorEngine& engine) noexcept
{
    // A sum is finite only if every term is: infinities and NaNs survive it. Doubles, so that it can't
    // overflow by itself.
    double sum = static_cast<double> (engine.envelope.envState);

    for (const auto* line : { &engine.delay1, &engine.delay2 })
        sum += static_cast<double> (line->out) + static_cast<double> (line->lastIn);

    for (const auto* filter : { &engine.filter1, &engine.filter2 })
        sum += filter->low * 0.0 + filter->high * 0.0 + filter->band * 0.0 + filter->notch * 0.0 +
               static_cast<double> (filter->out);

    for (const float value : engine.signal.signalSources)
        sum += static_cast<double> (value);

    for (const float value : engine.signal.signalDests)
        sum += static_cast<double> (value);

    return std::isfinite (sum);
}

/** Brings an instance back whose patch has run away, so that it sounds again once the patch allows it. */
static void recover (VelkorEngine& engine) noexcept
{
    engine_clear (engine);

    for (auto* line : { &engine.delay1, &engine.delay2 })
    {
        silenceNonFinite (&line->out, 1);
        silenceNonFinite (&line->lastIn, 1);
    }

    silenceNonFinite (engine.modulation.modSources.getRawDataPointer(), kNumModSources);
}

// --- the block -------------------------------------------------------------------------------------------------

void engine_dsp_block (VelkorEngine& engine, float* left, float* right, int numSamples,
                       const Transport& transport) noexcept
{
    silenceNonFinite (left, numSamples);
    silenceNonFinite (right, numSamples);

    BlockValues& b = engine.block;
    const LfoBlock lfoBlock = lfoBlockOf (engine, numSamples, transport);
    setDelayTimes (engine, transport.tempo);
    LfoPlan plan1 = b.lfoSync1 ? gen_LFO_plan_synced (lfoBlock, b.lfoRateNorm1)
                               : gen_LFO_plan_free (lfoBlock, b.lfoRate1, b.lfoPhase1);
    LfoPlan plan2 = b.lfoSync2 ? gen_LFO_plan_synced (lfoBlock, b.lfoRateNorm2)
                               : gen_LFO_plan_free (lfoBlock, b.lfoRate2, b.lfoPhase2);

    const float renormal = gFilterRenormal.load (std::memory_order_relaxed);

    for (int start = 0; start < numSamples; start += ControlTick)
    {
        const int end = std::min (start + ControlTick, numSamples);
        engine.antiDenormalOffset = -engine.antiDenormalOffset;
        updateModulation (engine, plan1, plan2);
        const TickValues tick = setTick (engine);

        const juce::SpinLock::ScopedLockType lock (engine.signal.connectionLock);
        float detected = 0.0f;

        for (int n = start; n < end; ++n)
            detected += runSample (engine, tick, renormal, left[n], right[n]);

        engine.modulation.modSources.getRawDataPointer()[modSourceEnvelope] =
            envelope_follower_dsp (engine.envelope, detected) * b.envSensitivity;
    }

    b.lfoPhase1 = plan1.phase;
    b.lfoPhase2 = plan2.phase;

    if (! (allFinite (left, numSamples) && allFinite (right, numSamples) &&
           signalStateIsFinite (engine)))
    {
        silenceNonFinite (left, numSamples);
        silenceNonFinite (right, numSamples);
        recover (engine);
    }
}
