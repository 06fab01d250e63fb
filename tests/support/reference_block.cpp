// SPDX-License-Identifier: AGPL-3.0-or-later
#include "reference_engine.h"
#include "reference_helpers.h"

#include <algorithm>
#include <cmath>

namespace reference
{
// The block

void ReferenceEngine::process (const float (&params)[kNumParams], std::optional<double> tempo,
                               std::optional<double> ppq, float* ch0, float* ch1OrNull, int n)
{
    float* const ch1 = ch1OrNull != nullptr ? ch1OrNull : ch0;
    const double bpm = tempo.has_value() && *tempo > 0.0 ? *tempo : 120.0;
    const double position = ppq.has_value() && std::isfinite (*ppq) ? *ppq : 0.0;

    writeSnapshot (params);

    if (n == 0)
        return;

    for (Side& side : sides)
    {
        setDelayTime (side, bpm);
        side.plan = planned (side, bpm, position, n);
    }

    for (int done = 0; done < n;)
    {
        const int m = std::min (4, n - done);
        tick();
        envSum = 0.0f;

        for (int i = 0; i < m; ++i)
            sample (ch0[done + i], ch1[done + i]);

        updateEnvelope();
        done += m;
    }

    for (Side& side : sides)
        side.lfoPhase = side.plan.phase;

    bool finite = signalStateIsFinite();

    for (float* channel : { ch0, ch1 })
        for (int i = 0; i < n; ++i)
            if (! std::isfinite (channel[i]))
            {
                channel[i] = 0.0f;
                finite = false;
            }

    if (! finite)
    {
        ++nonFiniteRescues;
        clearSignalState();

        for (Side& side : sides)
            for (float* value : { &side.delay.out, &side.delay.lastIn })
                *value = std::isfinite (*value) ? *value : 0.0f;

        // The other sources are made anew by each tick.
        modSources[0] = std::isfinite (modSources[0]) ? modSources[0] : 0.0f;
    }
}

bool ReferenceEngine::signalStateIsFinite() const
{
    bool finite = std::isfinite (envState);

    for (const Side& s : sides)
        for (const double value :
             { s.filter.low, s.filter.high, s.filter.band, s.filter.notch, double { s.filter.out },
               double { s.delay.out }, double { s.delay.lastIn } })
            finite = finite && std::isfinite (value);

    const auto isFinite = [] (float value) { return std::isfinite (value); };
    return finite && std::ranges::all_of (signalSources, isFinite) &&
           std::ranges::all_of (signalDests, isFinite);
}

namespace
{
float satKOf (float a)
{
    const float b = a < 0.99f ? a : 0.99f;
    return 2.0f * b / (1.0f - b);
}

float filterFreqNormOf (float a)
{
    return static_cast<float> (std::log (static_cast<double> (a) / 40.0) / kLn450);
}

float lfoRateNormOf (float a)
{
    return std::log (a / 0.01f) / 6.9077554f;
}

void setFilterBlock (FilterMultimode& filter, float reso, float m)
{
    filter.q = static_cast<double> (reso) * 0.1;
    filter.notchMix = filter.lowMix = filter.bandMix = filter.highMix = 0.0f;

    if (m < 0.33333334f)
    {
        filter.notchMix = 1.0f - 3.0f * m;
        filter.lowMix = 3.0f * m;
    }
    else if (m < 0.6666667f)
    {
        filter.lowMix = 2.0f - 3.0f * m;
        filter.bandMix = 3.0f * m - 1.0f;
    }
    else
    {
        filter.bandMix = 3.0f - 3.0f * m;
        filter.highMix = 3.0f * m - 2.0f;
    }
}

void recomputeShape (GenLFO& lfo)
{
    switch (lfo.kind)
    {
    case 0:
        lfo.shapeA = lfo.skew > 0.5f ? (lfo.skew - 0.5f) * -0.4f : (0.5f - lfo.skew) * 0.4f;
        break;
    case 1:
    case 2:
        lfo.shapeA = 2.0f / lfo.skew;
        lfo.shapeB = 2.0f / (1.0f - lfo.skew);
        break;
    case 3:
        lfo.shapeA = 0.0f;
        lfo.shapeB = 1.0f / lfo.skew;
        break;
    default:
        break;
    }
}

void setLfoBlock (GenLFO& lfo, float wave, float skew)
{
    const std::uint16_t kind = lfoWaveGen[choice (wave)];

    if (kind != lfo.kind)
    {
        lfo.kind = kind;
        recomputeShape (lfo);
    }

    const float s = skew * 0.998f + 0.001f;

    if (s != lfo.skew)
    {
        lfo.skew = s;
        recomputeShape (lfo);
    }
}
}  // namespace

float ReferenceEngine::envelopeCoef (float time) const
{
    const float samples = time * 0.5f * globals.rate;
    return static_cast<float> (std::exp (-1.0 / static_cast<double> (samples)));
}

void ReferenceEngine::writeSnapshot (const float (&p)[kNumParams])
{
    inputGain = p[48];
    mono = isOn (p[49]);
    killTarget = isOn (p[50]) ? 0.0f : 1.0f;
    wetGain = p[51];
    dryGain = p[52];
    lfo2Reset = isOn (p[44]);
    envSensitivity = p[45];
    attackCoef = envelopeCoef (p[46]);
    decayCoef = envelopeCoef (p[47]);

    // What there is two of stands side by side in the catalogue.
    writeSide (sides[0], p);
    writeSide (sides[1], p + 1);
}

void ReferenceEngine::writeSide (Side& side, const float* p) const
{
    side.phaseSign = isOn (p[55]) ? -1.0f : 1.0f;
    side.level = p[53];
    side.levelMod = p[38];
    side.pan = p[40];
    side.panMod = p[42];

    side.delayTime = p[0];
    side.delayTimeNorm = (p[0] - 2.0f) / 998.0f;
    side.mult = multTable[choice (p[16])];
    side.delaySync = isOn (p[6]);
    side.fine = limited (0.5f, 1.5f, p[2]);
    side.delayMod = p[4];
    side.delay.reverseRequest = isOn (p[10]);
    side.delay.loop = isOn (p[8]);
    side.delay.thru = isOn (p[12]) ? 1.0f : 0.0f;
    side.feedback = isOn (p[8]) ? 0.0f : p[14];
    side.satK = satKOf (p[36]);

    side.filterFreqNorm = filterFreqNormOf (p[28]);
    side.filterMod = 0.5f * p[30];
    setFilterBlock (side.filter, p[32], p[34]);

    side.lfoRate = p[18];
    side.lfoRateNorm = lfoRateNormOf (p[18]);
    side.lfoSync = isOn (p[22]);
    setLfoBlock (side.lfo, p[24], p[26]);
}

void ReferenceEngine::setDelayTime (Side& side, double bpm) const
{
    DelayFad& line = side.delay;
    float t = 0.0f;

    if (side.delaySync)
    {
        const auto msPerBeat = static_cast<float> (60000.0 / bpm);
        const float beat = gBeatMults[syncBeatIndex (side.delayTimeNorm)];
        t = static_cast<float> (side.mult) * beat * msPerBeat;
    }
    else
    {
        t = static_cast<float> (side.mult) * side.delayTime;
    }

    t = t < 12000.0f ? t : 12000.0f;

    if (t < 2.0f)
        t = 2.0f;

    line.timeMs = t;
    const auto n = static_cast<std::uint64_t> (truncated (t * globals.samplesPerMillisecond));

    if (n != line.delaySamples)
    {
        line.delaySamples = n;

        if (side.delaySync)
            line.resetPending = true;
    }
}

PhasePlan ReferenceEngine::planned (const Side& side, double bpm, double ppq, int n) const
{
    const double length = static_cast<double> (n) * (1.0 / sampleRate);
    const int ticks = n < 4 ? 1 : n / 4;

    if (! side.lfoSync)
        return { 2.0 * static_cast<double> (side.lfoRate) * length / static_cast<double> (ticks),
                 side.lfoPhase };

    const double beats = bpm / 60.0 * length;
    const float beat = gBeatMults[syncBeatIndex (1.0f - side.lfoRateNorm)];
    const float b = beat > 0.000001f ? beat : 0.000001f;
    const float beatTicks = b * static_cast<float> (ticks);
    return { beats / static_cast<double> (beatTicks), ppq / static_cast<double> (b) };
}

// The tick

namespace
{
double reducedPhase (double phase)
{
    if (! std::isfinite (phase) || phase > 1e15)
        return 0.0;  // the loop would not end

    while (phase > 1.0)
        phase -= 1.0;

    return phase;
}
}  // namespace

void ReferenceEngine::stepPhases()
{
    PhasePlan& plan1 = sides[0].plan;
    PhasePlan& plan2 = sides[1].plan;
    double candidate = 0.0;

    if (! (lfo2Reset && plan1.phase <= 1.0 / sampleRate))
        candidate = reducedPhase (plan2.phase + plan2.increment);

    const double sum = plan1.phase + plan1.increment;
    const bool isWrapping = sum > 1.0;
    plan1.phase = reducedPhase (sum);
    plan2.phase = isWrapping && lfo2Reset ? 0.0 : candidate;
}

void ReferenceEngine::tick()
{
    antiDenormalOffset = -antiDenormalOffset;

    stepPhases();
    modSources[1] = gen_LFO_dsp_phasor (sides[0].lfo, sides[0].plan.phase);
    modSources[2] = gen_LFO_dsp_phasor (sides[1].lfo, sides[1].plan.phase);
    modSources[3] = noteValue;
    modSources[4] = rampTick (gateRamp, gate);
    modSources[5] = modWheel;

    modDests.fill (0.0f);

    for (const ModRoute& r : routes)
        modDests[static_cast<std::size_t> (r.dest)] +=
            modSources[static_cast<std::size_t> (r.source)];

    modulate (sides[0], 0);
    modulate (sides[1], 1);
    kill = rampTick (killRamp, killTarget);
}

void ReferenceEngine::modulate (Side& side, std::size_t which) const
{
    // The destinations 2 and 3, the LFOs' rates, reach nothing.
    side.delay.rate = limited (0.5f, 1.5f, side.fine + side.delayMod * modDests[which]);
    const float x =
        limited (0.0f, 1.0f, side.filterFreqNorm + side.filterMod * modDests[4 + which]);
    setFrequency (side.filter, tableLookup (freqTable, x));
    const float pan = limited (0.0f, 1.0f, side.pan + side.panMod * modDests[6 + which]);
    side.gainR = tableLookup (panTable, pan);
    side.gainL = 1.0f - side.gainR;
    side.outputLevel = atLeast (0.0f, side.level + side.levelMod * modDests[8 + which]);
}

void ReferenceEngine::updateEnvelope()
{
    const float x = envSum;
    const float c = x <= envState ? decayCoef : attackCoef;
    envState = x + (envState - x) * c;
    modSources[0] = envState * envSensitivity;
}

// The sample

namespace
{
float feedbackShaped (float feedback, float x)
{
    if (x > 1.0f)
        return feedback * 0.76f;

    if (x < -1.0f)
        return feedback * -0.76f;

    return (feedback * 0.38f) * (3.0f * x - x * x * x);
}

float saturated (float satK, float x)
{
    return (satK + 1.0f) * x / (1.0f + satK * std::fabs (x));
}
}  // namespace

void ReferenceEngine::sample (float& ch0, float& ch1)
{
    for (std::size_t k = 0; k < 2; ++k)
    {
        signalSources[2 + k] = sides[k].delay.out;
        signalSources[4 + k] = sides[k].filter.out;
        signalSources[6 + k] = saturated (sides[k].satK, signalDests[6 + k]);
    }

    const float in0 = std::isfinite (ch0) ? ch0 : 0.0f;
    const float in1 = std::isfinite (ch1) ? ch1 : 0.0f;
    float l = inputGain * in0 + antiDenormalOffset;
    float r = inputGain * in1 + antiDenormalOffset;

    if (mono)
    {
        const float sum = 0.707f * r + 0.707f * l;
        l = sum;
        r = sum;
    }

    envSum += std::fabs (l) + std::fabs (r);
    signalSources[0] = sides[0].phaseSign * (kill * l);
    signalSources[1] = sides[1].phaseSign * (kill * r);

    const auto count = static_cast<std::size_t> (connectionCount);

    for (std::size_t i = 0; i < count; ++i)
        signalDests[static_cast<std::size_t> (connDest[i])] = 0.0f;

    for (std::size_t i = 0; i < count; ++i)
        signalDests[static_cast<std::size_t> (connDest[i])] +=
            signalSources[static_cast<std::size_t> (connSource[i])];

    for (std::size_t k = 0; k < 2; ++k)
    {
        delay_fad_dsp (sides[k].delay,
                       signalDests[k] + feedbackShaped (sides[k].feedback, signalDests[2 + k]));
        filter_multimode_dsp_morph (sides[k].filter, signalDests[4 + k]);
    }

    const float p1 = signalDests[8] * sides[0].outputLevel;
    const float p2 = signalDests[9] * sides[1].outputLevel;
    const float wetL = p1 * sides[0].gainL + p2 * sides[1].gainL;
    const float wetR = p1 * sides[0].gainR + p2 * sides[1].gainR;

    // In this order: in a one-channel buffer both are one sample, and the right side stays.
    ch0 = clipped (wetGain * wetL + dryGain * l);
    ch1 = clipped (wetGain * wetR + dryGain * r);
}
}  // namespace reference
