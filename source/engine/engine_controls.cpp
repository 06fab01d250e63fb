// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/block_lanes.h"
#include "engine/limits.h"

#include <limits>

// The control work of a block: everything between the parameters and the sample loop.

void beginControls (BlockLanes& lanes, const BlockValues& b) noexcept
{
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    constexpr float kNever = std::numeric_limits<float>::quiet_NaN();
    Controls& c = lanes.controls;

    // Delays and LFOs.
    c.base[0] = Floats { b.fine1, b.fine2, b.lfoRate1, b.lfoRate2 };
    c.depth[0] = Floats { b.delayMod1, b.delayMod2, b.lfoMod1, b.lfoMod2 };
    c.low[0] = Floats { 0.5f, 0.5f, 0.01f, 0.01f };
    c.high[0] = Floats { 1.5f, 1.5f, kInfinity, kInfinity };

    // Filters and pans.
    c.base[1] = Floats { b.filterFreqNorm1, b.filterFreqNorm2, b.pan1, b.pan2 };
    c.depth[1] = Floats { b.filterMod1, b.filterMod2, b.panMod1, b.panMod2 };
    c.low[1] = splat (0.0f);
    c.high[1] = splat (1.0f);

    // Levels.
    c.base[2] = Floats { b.level1, b.level2, 0.0f, 0.0f };
    c.depth[2] = Floats { b.levelMod1, b.levelMod2, 0.0f, 0.0f };
    c.low[2] = splat (0.0f);
    c.high[2] = splat (kInfinity);

    lanes.wasModulated = true;

    // A value that equals none, so that the first tick counts all as changed.
    for (auto& value : c.value)
        value = splat (kNever);
}

/** Moves both phases on by their increments. LFO 2 starts over when LFO 1 does, if it is asked to, and once
    more on the next tick if LFO 1 landed within a sample of its start. */
static void stepPhases (LfoPlan& plan1, LfoPlan& plan2, bool lfo2Reset, double sampleRate) noexcept
{
    const double next1 = plan1.phase + plan1.increment;
    const bool wraps = next1 > 1.0;

    if (lfo2Reset && (wraps || plan1.phase <= 1.0 / sampleRate))
        plan2.phase = 0.0;
    else
        plan2.phase = gen_LFO_reduce (plan2.phase + plan2.increment);

    plan1.phase = wraps ? gen_LFO_reduce (next1) : next1;
}

/** Returns whether any route is there. */
static bool updateModulation (VelkorEngine& engine, BlockLanes& lanes) noexcept
{
    stepPhases (lanes.plan1, lanes.plan2, engine.block.lfo2Reset, engine.sampleRate);

    // The envelope's source was set at the end of the previous tick.
    float* const sources = engine.modulation.modSources.getRawDataPointer();
    sources[modSourceLfo1] = gen_LFO_dsp_phasor (engine.lfo1, lanes.plan1.phase);
    sources[modSourceLfo2] = gen_LFO_dsp_phasor (engine.lfo2, lanes.plan2.phase);
    sources[modSourceNote] = engine.midi.noteValue;
    sources[modSourceGate] = rampTick (engine.gateRamp, engine.midi.gate);
    sources[modSourceWheel] = engine.midi.modWheel;
    return mod_router_dsp (engine.modulation, lanes.wasModulated);
}

/** Brings one vector of controls up to date with the modulation that reaches it. Returns which lanes changed, lane 0
    in the lowest bit. */
static int updateControls (Controls& c, int vector, Floats modulation) noexcept
{
    const Floats wanted = c.base[vector] + c.depth[vector] * modulation;
    // In this order of arguments a NaN comes out as the lower limit, so that no index made from it can be wrong.
    const Floats limited = smaller (larger (wanted, c.low[vector]), c.high[vector]);
    const int changed = topBits (limited != c.value[vector]);
    c.value[vector] = limited;
    return changed;
}

static void setSpeed (DelayFad& line, float speed) noexcept
{
    line.readRate = speed;
    line.writeRate = speed;
}

static void setFilter (FilterMultimode& filter, const FreqLookup& scale, float position) noexcept
{
    // Without memory for the table the cut-off stays.
    setCoef (filter, scale.table != nullptr ? tableLookup (scale.size, scale.table, position)
                                            : filter.freq);
    setDamp (filter);
}

static void setSpeeds (VelkorEngine& engine, BlockLanes& lanes, Floats speeds) noexcept
{
    setSpeed (engine.delay1, speeds[0]);
    setSpeed (engine.delay2, speeds[1]);
    delay_pair_take_rates (lanes.delays);
    gen_LFO_set_rate (engine.lfo1, speeds[2]);
    gen_LFO_set_rate (engine.lfo2, speeds[3]);
}

static void setFiltersAndPans (VelkorEngine& engine, BlockLanes& lanes, Floats places,
                               int changed) noexcept
{
    if (changed & 1)
        setFilter (engine.filter1, engine.freqLookup, places[0]);

    if (changed & 2)
        setFilter (engine.filter2, engine.freqLookup, places[1]);

    if (changed & 3)
    {
        if (engine.freqLookup.table != nullptr)
            engine.freqLookup.output = engine.filter2.freq;

        filter_pair_take_coefs (lanes.filters, engine.filter1, engine.filter2);
    }

    if (changed & 12)
    {
        router_panner_1to2_set (engine.panner1, places[2]);
        router_panner_1to2_set (engine.panner2, places[3]);
        lanes.gains.left1 = splat (engine.panner1.gainL);
        lanes.gains.right1 = splat (engine.panner1.gainR);
        lanes.gains.left2 = splat (engine.panner2.gainL);
        lanes.gains.right2 = splat (engine.panner2.gainR);
    }
}

void setTick (VelkorEngine& engine, BlockLanes& lanes) noexcept
{
    const bool isModulated = updateModulation (engine, lanes);
    int changed = 0;

    // Without routes, the tick before included, every control stays what it is.
    if (isModulated || lanes.wasModulated)
    {
        Controls& c = lanes.controls;
        const float* const dests = engine.modulation.modDests.getRawDataPointer();
        changed = updateControls (c, 1, load (dests + 4));

        if (updateControls (c, 0, load (dests)) != 0)
            setSpeeds (engine, lanes, c.value[0]);

        if (updateControls (c, 2, loadPair (dests + 8)) != 0)
        {
            lanes.gains.level1 = splat (c.value[2][0]);
            lanes.gains.level2 = splat (c.value[2][1]);
        }
    }

    lanes.wasModulated = isModulated;

    if (const float rate = loadRelaxed (gAudioSamplingRate); rate != lanes.filtersRate)
    {
        lanes.filtersRate =
            rate;  // another instance may be prepared at any time, and the rate is all instances'
        changed |= 3;
    }

    if (changed != 0)
        setFiltersAndPans (engine, lanes, lanes.controls.value[1], changed);
}
