// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "engine/engine_globals.h"

#include <cstdint>

/** Generator kinds. The last two stay in the evaluator although no choice of wave selects them. */
enum LfoKind : std::uint16_t
{
    lfoSine = 0,
    lfoSquare = 1,
    lfoTriangle = 2,
    lfoRandom = 3,
    lfoPlainSquare = 71,
    lfoPlainTriangle = 72
};

/** The generator kind of each choice of LFO N Wave: triangle, sine, square, random. */
inline constexpr std::int32_t lfoWaveGen[4] = { lfoTriangle, lfoSine, lfoSquare, lfoRandom };

/** The waveform of a low-frequency oscillator: turns a phase into a value. It owns no phase; the block's
    plan (LfoPlan) says where the phase starts and how far it moves per tick. */
struct GenLFO
{
    float freq = 0.0f;  ///< four times the modulated rate in hertz; no phase arithmetic reads it
    std::uint16_t kind = lfoSine;
    float skew = 0.001f;          ///< in use, 0.001 to 0.999
    float shapeA = 0.1996f;       ///< sine: phase warp; triangle: rising slope; random: glide slope
    float shapeB = 0.0f;          ///< triangle: falling slope; random: 1 / skew
    float phase = 0.0f;           ///< zeroed, never used
    float phaseIncrement = 0.0f;  ///< freq over the sample rate; written, never read
    float table[512] = {};        ///< one cycle of sine
    std::int64_t randomState = 3321;
    float lastPhase = 999.0f;   ///< random: the last phase; a first evaluation always draws
    float randomTarget = 0.0f;  ///< random: the value held
    float randomStart = 0.0f;   ///< random: the value that the present glide started from
    float output = 0.0f;        ///< the latest value
};

/** Builds the table and sets the record to its start: every LFO draws the same random sequence. Any thread, before
    the first block. */
void gen_LFO_init (GenLFO& lfo) noexcept;

/** Takes a generator kind; a new one recomputes the shape. Audio thread, at the start of a block. */
void gen_LFO_set_kind (GenLFO& lfo, std::uint16_t kind) noexcept;

/** Takes the skew parameter, 0 to 1; a new one recomputes the shape. Audio thread, at the start of a block. */
void gen_LFO_set_skew (GenLFO& lfo, float skewParameter) noexcept;

/** Notes the modulated rate in hertz, at least 0.01. This reaches nothing that sounds: the increments come
    from the rate parameter alone, and presets rely on it. Audio thread, once per tick. */
inline void gen_LFO_set_rate (GenLFO& lfo, float rateHz) noexcept
{
    const float freq = 4.0f * rateHz;

    if (freq == lfo.freq)
        return;

    lfo.freq = freq;
    lfo.phaseIncrement = freq * loadRelaxed (gAudioSamplingRateReciprocal);
}

/** The waveform at a phase, 0 to 1 being one cycle, -1 to +1; also left in lfo.output. A negative phase, as
    in a pre-roll, is taken as it is, but for the sine's table index, which wraps. Audio thread. */
float gen_LFO_dsp_phasor (GenLFO& lfo, double phase) noexcept;

/** Where one LFO's phase starts in a block and how far it moves on each tick, in cycles. */
struct LfoPlan
{
    double phase;
    double increment;
};

/** What the plans of both LFOs share. */
struct LfoBlock
{
    double seconds;   ///< length of the block
    int ticks;        ///< planned control ticks, at least 1
    double tempo;     ///< beats per minute
    double position;  ///< of the song, in quarter notes
};

/** The plan of a free-running LFO of rateHz that stands at phase. It makes two cycles per second and hertz;
    the display shows the parameter, and both are to stay. Any thread: no state. */
LfoPlan gen_LFO_plan_free (const LfoBlock& block, float rateHz, double phase) noexcept;

/** The plan of a synced LFO: a cycle lasts the beat length at the reverse of rateNorm, 0 to 1, and the
    phase follows the host's position. Any thread: no state. */
LfoPlan gen_LFO_plan_synced (const LfoBlock& block, float rateNorm) noexcept;

/** A phase after taking 1 away as long as it is above 1, in constant time: each subtraction is exact, so the
    result is the closed form's to the bit. Negative phases stay as they are. Any thread: no state. */
double gen_LFO_reduce (double phase) noexcept;
