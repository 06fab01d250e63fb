// SPDX-License-Identifier: AGPL-3.0-or-later
#include "reference_engine.h"
#include "reference_helpers.h"

#include <algorithm>
#include <cmath>

namespace reference
{
// Delay line

void delay_fad_dsp (DelayFad& line, float in)
{
    const auto D = static_cast<float> (line.delaySamples);
    const auto S = static_cast<float> (line.bufferSize);
    const auto size = line.bufferSize;
    auto& buffer = line.buffer;

    float r = line.readPos;
    float w = line.writePos;
    float ratio = 1.0f;

    if (line.resetPending)
    {
        if (! line.reverse)
        {
            r = w - D + 1.0f;

            if (r < 0.0f)
                r += S;
        }
        else
        {
            r = D + w - 1.0f;

            if (r >= S)
                r -= S;
        }

        line.resetPending = false;
    }
    else
    {
        std::int64_t g = truncated ((line.reverse ? r - w : w - r) + 1.0f);

        if (g < 0)
            g += static_cast<std::int64_t> (size);

        ratio = D / static_cast<float> (g);  // infinite for a g of 0
    }

    if (line.reverse != line.reverseRequest)
    {
        line.reverse = line.reverseRequest;
        std::swap (r, w);
    }

    const float readStep = line.rate / ratio;

    if (! line.reverse)
    {
        r += readStep;

        if (r >= S)
            r -= S;
    }
    else
    {
        r -= readStep;

        if (r < 0.0f)
            r += S;
    }

    line.readPos = r;

    // A position outside the buffer reads its first slot.
    const bool isInside = r >= 0.0f && r < S;
    const std::size_t i = isInside ? static_cast<std::size_t> (truncated (r)) : 0;
    const float f = isInside ? r - static_cast<float> (i) : 0.0f;

    // Under loop the slot is read as it stands at each write, which may be its own.
    const auto written = [&] (float a)
    {
        float v = ((1.0f - line.thru) * in - line.lastIn) * a + line.lastIn;

        if (line.loop)
            v = clipped (v + buffer[i]);

        return v;
    };

    float a = 0.0f;

    if (! line.reverse)
    {
        const std::size_t j = (i + 1) % size;
        line.out = (1.0f - f) * buffer[i] + f * buffer[j];

        const std::int64_t start = truncated (std::floor (w));
        w += line.rate;
        const float share =
            std::min (1.0f, 1.0f / (std::floor (w) - static_cast<float> (start) + 1.0f));

        for (std::int64_t c = start; w > static_cast<float> (c); ++c)
        {
            a += share;
            buffer[wrapped (c, size)] = written (a);
        }

        if (w >= S)
            w -= S;
    }
    else
    {
        const std::size_t j = i == 0 ? size - 1 : i - 1;
        line.out = (1.0f - f) * buffer[i] + f * buffer[j] + line.thru * in;

        const std::int64_t start = truncated (std::ceil (w));
        w -= line.rate;
        const float share =
            std::min (1.0f, 1.0f / (static_cast<float> (start) - std::ceil (w) + 1.0f));
        std::int64_t c = truncated (w);

        for (std::int64_t left = start - c; left > 0; --left)
        {
            if (c < 1)
                c = static_cast<std::int64_t> (size);

            a += share;
            buffer[wrapped (c - 1, size)] = written (a);
            --c;
        }

        if (w < 0.0f)
            w += S;
    }

    line.lastIn = in;
    line.writePos = w;
}

// Filter

void ReferenceEngine::setFrequency (FilterMultimode& filter, float freq) const
{
    const auto twiceRate = static_cast<double> (globals.rate + globals.rate);
    filter.coef = std::min (0.25, 2.0 * std::sin (kPi * static_cast<double> (freq) / twiceRate));
    filter.damp = std::min (std::min (2.0, -0.5 * filter.coef + 2.0 / filter.coef),
                            2.0 * (1.0 - std::pow (filter.q, 0.25)));
}

void ReferenceEngine::filter_multimode_dsp_morph (FilterMultimode& filter, float in)
{
    const auto x = static_cast<double> ((in + globals.renormal) * 0.5f);
    globals.renormal = -globals.renormal;
    const auto renormal = static_cast<double> (globals.renormal);

    const double low1 = (filter.coef * filter.band + renormal) + filter.low;
    const double notch1 = x - filter.damp * filter.band;
    const double high1 = notch1 - low1;
    const double band1 = filter.coef * high1 + filter.band;

    const double notch2 = 0.0 - filter.damp * band1;
    const double low2 = filter.coef * band1 + low1;
    const double high2 = notch2 - low2;
    const double band2 = filter.coef * high2 + band1;

    filter.low = low2;
    filter.high = high2;
    filter.band = band2;
    filter.notch = notch2;

    const auto lowMix = static_cast<double> (filter.lowMix);
    const auto bandMix = static_cast<double> (filter.bandMix);
    const auto highMix = static_cast<double> (filter.highMix);
    const auto notchMix = static_cast<double> (filter.notchMix);

    const double y1 = lowMix * low1 + bandMix * band1 + highMix * high1 + notchMix * notch1;
    const double y2 = lowMix * low2 + bandMix * band2 + highMix * high2 + notchMix * notch2;
    const double y = y1 + y2;
    filter.out = static_cast<float> (y / (1.0 + 0.28 * y * y));
}

// LFO

namespace
{
std::array<float, 512> sineTable()
{
    std::array<float, 512> table {};

    for (std::size_t i = 0; i < 128; ++i)
    {
        const double sine = std::sin (kPi / 2.0 * static_cast<double> (i) / 128.0);
        const auto sixPlaces = static_cast<float> (std::round (sine * 1e6) / 1e6);
        table[i] = sixPlaces;
        table[255 - i] = sixPlaces;
        table[256 + i] = -sixPlaces;
        table[511 - i] = -sixPlaces;
    }

    return table;
}

float sineValue (const GenLFO& lfo, float p)
{
    static const auto table = sineTable();

    if (lfo.shapeA != 0.0f)
    {
        const float bend = lfo.shapeA * table[wrapped (truncated (p * 512.0f), 512)];
        const float t = (bend + p) * 65536.0f;
        const auto low16 = static_cast<std::uint16_t> (truncated (t));
        p = static_cast<float> (low16) * (1.0f / 65536.0f);
    }

    p *= 512.0f;
    const std::int64_t i = truncated (p);
    const float f = p - static_cast<float> (i);
    return f * table[wrapped (i + 1, 512)] + (1.0f - f) * table[wrapped (i, 512)];
}

float randomValue (GenLFO& lfo, float p)
{
    if (lfo.lastPhase > p)
    {
        lfo.randomStart = lfo.randomTarget;
        lfo.randomState = (lfo.randomState * 3877 + 29573) % 139968;
        lfo.randomTarget = 2.0f * static_cast<float> (lfo.randomState) / -139968.0f + 1.0f;
        lfo.shapeA = (lfo.randomTarget - lfo.randomStart) * lfo.shapeB;
    }

    lfo.lastPhase = p;
    return lfo.skew > p ? lfo.shapeA * p + lfo.randomStart : lfo.randomTarget;
}
}  // namespace

float gen_LFO_dsp_phasor (GenLFO& lfo, double phase)
{
    const auto p = static_cast<float> (phase);

    switch (lfo.kind)
    {
    case 0:
        return sineValue (lfo, p);
    case 1:
        return lfo.skew > p ? 1.0f : -1.0f;
    case 2:
        return lfo.skew > p ? p * lfo.shapeA - 1.0f : (1.0f - p) * lfo.shapeB - 1.0f;
    default:
        return randomValue (lfo, p);
    }
}
}  // namespace reference
