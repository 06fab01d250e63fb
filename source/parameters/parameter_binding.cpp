// SPDX-License-Identifier: AGPL-3.0-or-later
#include "parameters/parameter_binding.h"

#include "engine/engine.h"
#include "engine/limits.h"
#include "engine/saturation.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

ParamSnapshot readSnapshot (const ParamPointers& pointers) noexcept
{
    ParamSnapshot snapshot {};

    for (std::size_t i = 0; i < snapshot.size(); ++i)
        snapshot[i] = pointers[i]->load (std::memory_order_relaxed);

    // By itself, so that the compiler makes vector code of it.
    for (float& value : snapshot)
        value = std::isnan (value) ? 0.0f : value;

    return snapshot;
}

ParamSnapshot noSnapshot() noexcept
{
    ParamSnapshot snapshot;
    snapshot.fill (std::numeric_limits<float>::quiet_NaN());
    return snapshot;
}

/** Whether two snapshots have the same bits. */
static bool areSame (const ParamSnapshot& a, const ParamSnapshot& b) noexcept
{
    std::uint32_t difference = 0;

    for (std::size_t i = 0; i < a.size(); ++i)
        difference |= std::bit_cast<std::uint32_t> (a[i]) ^ std::bit_cast<std::uint32_t> (b[i]);

    return difference == 0;
}

/** Whether a parameter's bits differ from those that were bound before. */
static bool differs (const ParamSnapshot& p, const ParamSnapshot& bound,
                     NumericalParamID id) noexcept
{
    return std::bit_cast<std::uint32_t> (p[id]) != std::bit_cast<std::uint32_t> (bound[id]);
}

static bool isOn (float value) noexcept
{
    return value > 0.5f;
}

/** A choice's index, 0 to 3. */
static std::size_t choiceOf (float value) noexcept
{
    return static_cast<std::size_t> (limitTo (0.0f, 3.0f, value));
}

/** The place of a delay time in milliseconds on the parameter's range. */
static float delayTimeNorm (float timeMs) noexcept
{
    return (timeMs - 2.0f) / 998.0f;
}

/** The place of a rate in hertz on the parameter's logarithmic range, 0.01 to 10 Hz. */
static float lfoRateNorm (float rateHz) noexcept
{
    return std::log (rateHz / 0.01f) / 6.9077554f;  // ln 1000
}

/** The place of a cut-off in hertz on the filter's logarithmic scale, 40 to 18000 Hz. */
static float filterFreqNorm (float freqHz) noexcept
{
    return static_cast<float> (std::log (static_cast<double> (freqHz) / 40.0) /
                               6.1092475827643655);  // ln 450
}

static void bindDelays (const ParamSnapshot& p, VelkorEngine& engine) noexcept
{
    BlockValues& b = engine.block;
    b.delayTime1 = p[Delay1Time];
    b.delayTime2 = p[Delay2Time];
    b.delayTimeNorm1 = delayTimeNorm (p[Delay1Time]);
    b.delayTimeNorm2 = delayTimeNorm (p[Delay2Time]);
    b.mult1 = multTable[choiceOf (p[Delay1Multiplier])];
    b.mult2 = multTable[choiceOf (p[Delay2Multiplier])];
    b.delaySync1 = isOn (p[Delay1Sync]);
    b.delaySync2 = isOn (p[Delay2Sync]);
    b.fine1 = limitTo (0.5f, 1.5f, p[Delay1Fine]);
    b.fine2 = limitTo (0.5f, 1.5f, p[Delay2Fine]);
    b.delayMod1 = p[Delay1Mod];
    b.delayMod2 = p[Delay2Mod];

    engine.delay1.reverseRequest = isOn (p[Delay1Reverse]);
    engine.delay2.reverseRequest = isOn (p[Delay2Reverse]);
    engine.delay1.loop = isOn (p[Delay1Loop]);
    engine.delay2.loop = isOn (p[Delay2Loop]);
    engine.delay1.thru = isOn (p[Delay1Bypass]) ? 1.0f : 0.0f;
    engine.delay2.thru = isOn (p[Delay2Bypass]) ? 1.0f : 0.0f;

    // A looping line recirculates by itself, at unity.
    b.feedback1 = engine.delay1.loop ? 0.0f : p[Delay1Feedback];
    b.feedback2 = engine.delay2.loop ? 0.0f : p[Delay2Feedback];
}

static void bindFilters (const ParamSnapshot& p, const ParamSnapshot& bound,
                         VelkorEngine& engine) noexcept
{
    BlockValues& b = engine.block;

    if (differs (p, bound, Filter1Freq))
        b.filterFreqNorm1 = filterFreqNorm (p[Filter1Freq]);

    if (differs (p, bound, Filter2Freq))
        b.filterFreqNorm2 = filterFreqNorm (p[Filter2Freq]);

    b.filterMod1 = 0.5f * p[Filter1Mod];
    b.filterMod2 = 0.5f * p[Filter2Mod];
    filter_multimode_set_response (engine.filter1, p[Filter1Reso], p[Filter1Mode]);
    filter_multimode_set_response (engine.filter2, p[Filter2Reso], p[Filter2Mode]);
}

static void bindModulators (const ParamSnapshot& p, const ParamSnapshot& bound,
                            VelkorEngine& engine) noexcept
{
    BlockValues& b = engine.block;
    b.lfoRate1 = p[LFO1Rate];
    b.lfoRate2 = p[LFO2Rate];
    b.lfoMod1 = p[LFO1Mod];
    b.lfoMod2 = p[LFO2Mod];
    b.lfoSync1 = isOn (p[LFO1Sync]);
    b.lfoSync2 = isOn (p[LFO2Sync]);
    b.lfo2Reset = isOn (p[LFO2Reset]);

    if (differs (p, bound, LFO1Rate))
        b.lfoRateNorm1 = lfoRateNorm (p[LFO1Rate]);

    if (differs (p, bound, LFO2Rate))
        b.lfoRateNorm2 = lfoRateNorm (p[LFO2Rate]);

    gen_LFO_set_kind (engine.lfo1, static_cast<std::uint16_t> (lfoWaveGen[choiceOf (p[LFO1Wave])]));
    gen_LFO_set_skew (engine.lfo1, p[LFO1Skew]);
    gen_LFO_set_kind (engine.lfo2, static_cast<std::uint16_t> (lfoWaveGen[choiceOf (p[LFO2Wave])]));
    gen_LFO_set_skew (engine.lfo2, p[LFO2Skew]);

    b.envSensitivity = p[EnvSensitivity];
}

static void bindLevels (const ParamSnapshot& p, VelkorEngine& engine) noexcept
{
    BlockValues& b = engine.block;
    b.inputGain = p[InputLevel];
    b.mono = isOn (p[MonoInput]);
    b.killTarget = isOn (p[Kill]) ? 0.0f : 1.0f;
    b.phaseSign1 = isOn (p[PhaseInvert1]) ? -1.0f : 1.0f;
    b.phaseSign2 = isOn (p[PhaseInvert2]) ? -1.0f : 1.0f;
    b.satK1 = saturationConstant (p[Saturation1]);
    b.satK2 = saturationConstant (p[Saturation2]);
    b.wetGain = p[WetLevel];
    b.dryGain = p[DryLevel];
    b.pan1 = p[Pan1];
    b.pan2 = p[Pan2];
    b.panMod1 = p[Pan1Mod];
    b.panMod2 = p[Pan2Mod];
    b.level1 = p[Output1Level];
    b.level2 = p[Output2Level];
    b.levelMod1 = p[Level1Mod];
    b.levelMod2 = p[Level2Mod];
}

void bindSnapshot (const ParamSnapshot& snapshot, ParamSnapshot& bound,
                   VelkorEngine& engine) noexcept
{
    if (! areSame (snapshot, bound))
    {
        bindDelays (snapshot, engine);
        bindFilters (snapshot, bound, engine);
        bindModulators (snapshot, bound, engine);
        bindLevels (snapshot, engine);
        bound = snapshot;
    }

    // In every block: its coefficients go with the rate too, which another instance may change.
    envelope_follower_set_times (engine.envelope, snapshot[EnvAttack], snapshot[EnvDecay]);
}
