// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/gen_LFO.h"

#include "engine/engine_globals.h"
#include "engine/sync_beats.h"

#include <array>
#include <cmath>

/** sin (pi/2 * i/128) to six decimals; the rounding is part of the sound. */
static constexpr std::array<float, 128> quarterSine {
    // clang-format off
    0.000000f, 0.012272f, 0.024541f, 0.036807f, 0.049068f, 0.061321f, 0.073565f, 0.085797f,
    0.098017f, 0.110222f, 0.122411f, 0.134581f, 0.146730f, 0.158858f, 0.170962f, 0.183040f,
    0.195090f, 0.207111f, 0.219101f, 0.231058f, 0.242980f, 0.254866f, 0.266713f, 0.278520f,
    0.290285f, 0.302006f, 0.313682f, 0.325310f, 0.336890f, 0.348419f, 0.359895f, 0.371317f,
    0.382683f, 0.393992f, 0.405241f, 0.416430f, 0.427555f, 0.438616f, 0.449611f, 0.460539f,
    0.471397f, 0.482184f, 0.492898f, 0.503538f, 0.514103f, 0.524590f, 0.534998f, 0.545325f,
    0.555570f, 0.565732f, 0.575808f, 0.585798f, 0.595699f, 0.605511f, 0.615232f, 0.624859f,
    0.634393f, 0.643832f, 0.653173f, 0.662416f, 0.671559f, 0.680601f, 0.689541f, 0.698376f,
    0.707107f, 0.715731f, 0.724247f, 0.732654f, 0.740951f, 0.749136f, 0.757209f, 0.765167f,
    0.773010f, 0.780737f, 0.788346f, 0.795837f, 0.803208f, 0.810457f, 0.817585f, 0.824589f,
    0.831470f, 0.838225f, 0.844854f, 0.851355f, 0.857729f, 0.863973f, 0.870087f, 0.876070f,
    0.881921f, 0.887640f, 0.893224f, 0.898674f, 0.903989f, 0.909168f, 0.914210f, 0.919114f,
    0.923880f, 0.928506f, 0.932993f, 0.937339f, 0.941544f, 0.945607f, 0.949528f, 0.953306f,
    0.956940f, 0.960431f, 0.963776f, 0.966976f, 0.970031f, 0.972940f, 0.975702f, 0.978317f,
    0.980785f, 0.983105f, 0.985278f, 0.987301f, 0.989177f, 0.990903f, 0.992480f, 0.993907f,
    0.995185f, 0.996313f, 0.997290f, 0.998118f, 0.998795f, 0.999322f, 0.999699f, 0.999925f,
    // clang-format on
};

static constexpr int kTableSize = 512;

static void shape (GenLFO& lfo) noexcept
{
    switch (lfo.kind)
    {
    case lfoSine:
        lfo.shapeA = lfo.skew > 0.5f ? (lfo.skew - 0.5f) * -0.4f : (0.5f - lfo.skew) * 0.4f;
        break;

    case lfoSquare:
    case lfoTriangle:
        lfo.shapeA = 2.0f / lfo.skew;
        lfo.shapeB = 2.0f / (1.0f - lfo.skew);
        break;

    case lfoRandom:
        lfo.shapeA = 0.0f;
        lfo.shapeB = 1.0f / lfo.skew;
        break;

    default:
        break;
    }
}

void gen_LFO_init (GenLFO& lfo) noexcept
{
    lfo = {};

    // The second quarter repeats the first one's last entry, so the table never holds exactly 1.
    for (std::size_t i = 0; i < 128; ++i)
    {
        lfo.table[i] = quarterSine[i];
        lfo.table[255 - i] = quarterSine[i];
        lfo.table[256 + i] = -quarterSine[i];
        lfo.table[511 - i] = -quarterSine[i];
    }
}

void gen_LFO_set_kind (GenLFO& lfo, std::uint16_t kind) noexcept
{
    if (kind == lfo.kind)
        return;

    lfo.kind = kind;
    shape (lfo);
}

void gen_LFO_set_skew (GenLFO& lfo, float skewParameter) noexcept
{
    const float skew = skewParameter * 0.998f + 0.001f;

    if (skew == lfo.skew)
        return;

    lfo.skew = skew;
    shape (lfo);
}

/** x as an integer, toward zero; 0 for what is too far out to have a phase at all. */
static std::int64_t truncated (float x) noexcept
{
    return std::abs (x) < 1.0e18f ? static_cast<std::int64_t> (x) : 0;
}

static float sineAt (const GenLFO& lfo, float p) noexcept
{
    if (lfo.shapeA != 0.0f)
    {
        // The warp bends the sine towards one end of the cycle; it wraps, and keeps 16 bits of phase.
        const auto i = truncated (p * 512.0f) & (kTableSize - 1);
        const float t = (lfo.shapeA * lfo.table[i] + p) * 65536.0f;
        p = static_cast<float> (truncated (t) & 0xffff) * (1.0f / 65536.0f);
    }

    p = p * 512.0f;
    const std::int64_t whole = truncated (p);
    const float f = p - static_cast<float> (whole);
    const auto i = whole & (kTableSize - 1);
    return f * lfo.table[(i + 1) & (kTableSize - 1)] + (1.0f - f) * lfo.table[i];
}

static float randomAt (GenLFO& lfo, float p) noexcept
{
    if (lfo.lastPhase > p)  // the phase went back: a new cycle, a new value
    {
        lfo.randomStart = lfo.randomTarget;
        lfo.randomState = (lfo.randomState * 3877 + 29573) % 139968;
        lfo.randomTarget = 2.0f * static_cast<float> (lfo.randomState) / -139968.0f + 1.0f;
        lfo.shapeA = (lfo.randomTarget - lfo.randomStart) * lfo.shapeB;
    }

    lfo.lastPhase = p;
    return lfo.skew > p ? lfo.shapeA * p + lfo.randomStart : lfo.randomTarget;
}

float gen_LFO_dsp_phasor (GenLFO& lfo, double phase) noexcept
{
    const auto p = static_cast<float> (phase);

    switch (lfo.kind)
    {
    case lfoSine:
        lfo.output = sineAt (lfo, p);
        break;

    case lfoSquare:
        lfo.output = lfo.skew > p ? 1.0f : -1.0f;
        break;

    case lfoTriangle:
        lfo.output = lfo.skew > p ? p * lfo.shapeA - 1.0f : (1.0f - p) * lfo.shapeB - 1.0f;
        break;

    case lfoRandom:
        lfo.output = randomAt (lfo, p);
        break;

    case lfoPlainSquare:
        lfo.output = p < 0.5f ? 1.0f : -1.0f;
        break;

    case lfoPlainTriangle:
        lfo.output = p < 0.5f ? 2.0f * p - 1.0f : 1.0f - 2.0f * p;
        break;

    default:
        break;
    }

    return lfo.output;
}

static double finiteOrZero (double x) noexcept
{
    return std::isfinite (x) ? x : 0.0;
}

LfoPlan gen_LFO_plan_free (const LfoBlock& block, float rateHz, double phase) noexcept
{
    const double increment =
        2.0 * static_cast<double> (rateHz) * block.seconds / static_cast<double> (block.ticks);
    return { phase, finiteOrZero (increment) };
}

LfoPlan gen_LFO_plan_synced (const LfoBlock& block, float rateNorm) noexcept
{
    const auto index = static_cast<std::size_t> (syncBeatIndex (1.0f - rateNorm));
    const float b = gBeatMults[index] > 0.000001f ? gBeatMults[index] : 0.000001f;
    const double beats = block.tempo / 60.0 * block.seconds;
    const auto divisor = static_cast<double> (b * static_cast<float> (block.ticks));
    return { finiteOrZero (block.position / static_cast<double> (b)),
             finiteOrZero (beats / divisor) };
}

double gen_LFO_reduce (double phase) noexcept
{
    return phase > 1.0 ? phase - (std::ceil (phase) - 1.0) : phase;
}
