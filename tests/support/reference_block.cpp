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

    setDelayTime (delay1, delaySync1, mult1, delayTimeNorm1, delayTime1, bpm);
    setDelayTime (delay2, delaySync2, mult2, delayTimeNorm2, delayTime2, bpm);

    plan1 = planned (lfoSync1, lfoRate1, lfoRateNorm1, lfoPhase1, bpm, position, n);
    plan2 = planned (lfoSync2, lfoRate2, lfoRateNorm2, lfoPhase2, bpm, position, n);

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

    lfoPhase1 = plan1.phase;
    lfoPhase2 = plan2.phase;

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

        for (DelayFad* line : { &delay1, &delay2 })
        {
            line->out = std::isfinite (line->out) ? line->out : 0.0f;
            line->lastIn = std::isfinite (line->lastIn) ? line->lastIn : 0.0f;
        }
    }
}

bool ReferenceEngine::signalStateIsFinite() const
{
    bool finite = std::isfinite (envelope.envState);

    for (const FilterMultimode* f : { &filter1, &filter2 })
        finite = finite && std::isfinite (f->low) && std::isfinite (f->high) &&
                 std::isfinite (f->band) && std::isfinite (f->notch) && std::isfinite (f->out);

    for (const DelayFad* line : { &delay1, &delay2 })
        finite = finite && std::isfinite (line->out) && std::isfinite (line->lastIn);

    for (const float value : signalSources)
        finite = finite && std::isfinite (value);

    for (const float value : signalDests)
        finite = finite && std::isfinite (value);

    return finite;
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
    filter.notchMix = 0.0f;
    filter.lowMix = 0.0f;
    filter.bandMix = 0.0f;
    filter.highMix = 0.0f;

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

void ReferenceEngine::writeSnapshot (const float (&p)[kNumParams])
{
    inputGain = p[48];
    mono = isOn (p[49]);
    killTarget = isOn (p[50]) ? 0.0f : 1.0f;
    phaseSign1 = isOn (p[55]) ? -1.0f : 1.0f;
    phaseSign2 = isOn (p[56]) ? -1.0f : 1.0f;
    wetGain = p[51];
    dryGain = p[52];
    level1 = p[53];
    level2 = p[54];
    levelMod1 = p[38];
    levelMod2 = p[39];
    pan1 = p[40];
    pan2 = p[41];
    panMod1 = p[42];
    panMod2 = p[43];

    delayTime1 = p[0];
    delayTime2 = p[1];
    delayTimeNorm1 = (p[0] - 2.0f) / 998.0f;
    delayTimeNorm2 = (p[1] - 2.0f) / 998.0f;
    mult1 = multTable[choice (p[16])];
    mult2 = multTable[choice (p[17])];
    delaySync1 = isOn (p[6]);
    delaySync2 = isOn (p[7]);
    fine1 = limited (0.5f, 1.5f, p[2]);
    fine2 = limited (0.5f, 1.5f, p[3]);
    delayMod1 = p[4];
    delayMod2 = p[5];
    delay1.reverseRequest = isOn (p[10]);
    delay2.reverseRequest = isOn (p[11]);
    delay1.loop = isOn (p[8]);
    delay2.loop = isOn (p[9]);
    delay1.thru = isOn (p[12]) ? 1.0f : 0.0f;
    delay2.thru = isOn (p[13]) ? 1.0f : 0.0f;
    feedback1 = isOn (p[8]) ? 0.0f : p[14];
    feedback2 = isOn (p[9]) ? 0.0f : p[15];

    satK1 = satKOf (p[36]);
    satK2 = satKOf (p[37]);

    filterFreqNorm1 = filterFreqNormOf (p[28]);
    filterFreqNorm2 = filterFreqNormOf (p[29]);
    filterMod1 = 0.5f * p[30];
    filterMod2 = 0.5f * p[31];
    setFilterBlock (filter1, p[32], p[34]);
    setFilterBlock (filter2, p[33], p[35]);

    lfoRate1 = p[18];
    lfoRate2 = p[19];
    lfoRateNorm1 = lfoRateNormOf (p[18]);
    lfoRateNorm2 = lfoRateNormOf (p[19]);
    lfoSync1 = isOn (p[22]);
    lfoSync2 = isOn (p[23]);
    lfo2Reset = isOn (p[44]);
    setLfoBlock (lfo1, p[24], p[26]);
    setLfoBlock (lfo2, p[25], p[27]);

    envSensitivity = p[45];
    envelope.attackTime = p[46] * 0.5f;
    envelope.decayTime = p[47] * 0.5f;
    updateEnvelopeCoefs();
}

void ReferenceEngine::setDelayTime (DelayFad& line, bool sync, std::int32_t mult, float timeNorm,
                                    float time, double bpm) const
{
    float t = 0.0f;

    if (sync)
    {
        const auto msPerBeat = static_cast<float> (60000.0 / bpm);
        const float beat = gBeatMults[syncBeatIndex (timeNorm)];
        t = static_cast<float> (mult) * beat * msPerBeat;
    }
    else
    {
        t = static_cast<float> (mult) * time;
    }

    t = t < 12000.0f ? t : 12000.0f;

    if (t < 2.0f)
        t = 2.0f;

    line.timeMs = t;
    const auto n = static_cast<std::uint64_t> (truncated (t * globals.samplesPerMillisecond));

    if (n != line.delaySamples)
    {
        line.delaySamples = n;

        if (sync)
            line.resetPending = true;
    }
}

PhasePlan ReferenceEngine::planned (bool sync, float rate, float rateNorm, double lfoPhase,
                                    double bpm, double ppq, int n) const
{
    const double length = static_cast<double> (n) * (1.0 / sampleRate);
    const int ticks = n < 4 ? 1 : n / 4;

    if (! sync)
        return { 2.0 * static_cast<double> (rate) * length / static_cast<double> (ticks),
                 lfoPhase };

    const double beats = bpm / 60.0 * length;
    const float beat = gBeatMults[syncBeatIndex (1.0f - rateNorm)];
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
    double candidate = 0.0;

    if (! (lfo2Reset && plan1.phase <= 1.0 / sampleRate))
        candidate = reducedPhase (plan2.phase + plan2.increment);

    const double sum = plan1.phase + plan1.increment;
    const bool isWrapping = sum > 1.0;
    plan1.phase = reducedPhase (sum);
    plan2.phase = isWrapping && lfo2Reset ? 0.0 : candidate;
}

void ReferenceEngine::routeModulation()
{
    modDests.fill (0.0f);

    for (const ModRoute& r : routes)
        modDests[static_cast<std::size_t> (r.dest)] +=
            modSources[static_cast<std::size_t> (r.source)];
}

void ReferenceEngine::tick()
{
    antiDenormalOffset = -antiDenormalOffset;

    stepPhases();
    modSources[1] = gen_LFO_dsp_phasor (lfo1, plan1.phase);
    modSources[2] = gen_LFO_dsp_phasor (lfo2, plan2.phase);
    modSources[3] = noteValue;
    modSources[4] = rampTick (gateRamp, gate);
    modSources[5] = modWheel;

    routeModulation();

    outputLevel1 = atLeast (0.0f, level1 + levelMod1 * modDests[8]);
    outputLevel2 = atLeast (0.0f, level2 + levelMod2 * modDests[9]);

    setPan (panner1, limited (0.0f, 1.0f, pan1 + panMod1 * modDests[6]));
    setPan (panner2, limited (0.0f, 1.0f, pan2 + panMod2 * modDests[7]));

    const float x1 = limited (0.0f, 1.0f, filterFreqNorm1 + filterMod1 * modDests[4]);
    const float x2 = limited (0.0f, 1.0f, filterFreqNorm2 + filterMod2 * modDests[5]);
    setCoef (filter1, tableLookup (freqTable, x1));
    setDamp (filter1);
    setCoef (filter2, tableLookup (freqTable, x2));
    setDamp (filter2);

    delay1.readRate = limited (0.5f, 1.5f, fine1 + delayMod1 * modDests[0]);
    delay1.writeRate = delay1.readRate;
    delay2.readRate = limited (0.5f, 1.5f, fine2 + delayMod2 * modDests[1]);
    delay2.writeRate = delay2.readRate;

    // The destinations 2 and 3, the LFOs' rates, reach nothing.
    kill = rampTick (killRamp, killTarget);
}

void ReferenceEngine::updateEnvelope()
{
    const float x = envSum;
    const float c = x <= envelope.envState ? envelope.decayCoef : envelope.attackCoef;
    envelope.envState = x + (envelope.envState - x) * c;
    modSources[0] = envelope.envState * envSensitivity;
}

// The sample

void ReferenceEngine::sample (float& ch0, float& ch1)
{
    signalSources[6] = saturated (satK1, signalDests[6]);
    signalSources[7] = saturated (satK2, signalDests[7]);

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
    signalSources[0] = phaseSign1 * (kill * l);
    signalSources[1] = phaseSign2 * (kill * r);

    signalSources[2] = delay1.out;
    signalSources[3] = delay2.out;
    signalSources[4] = filter1.out;
    signalSources[5] = filter2.out;

    const auto count = static_cast<std::size_t> (connectionCount);

    for (std::size_t i = 0; i < count; ++i)
        signalDests[static_cast<std::size_t> (connDest[i])] = 0.0f;

    for (std::size_t i = 0; i < count; ++i)
        signalDests[static_cast<std::size_t> (connDest[i])] +=
            signalSources[static_cast<std::size_t> (connSource[i])];

    delay_fad_dsp (delay1, signalDests[0] + feedbackShaped (feedback1, signalDests[2]));
    delay_fad_dsp (delay2, signalDests[1] + feedbackShaped (feedback2, signalDests[3]));

    filter_multimode_dsp_morph (filter1, signalDests[4]);
    filter_multimode_dsp_morph (filter2, signalDests[5]);

    const float p1 = signalDests[8] * outputLevel1;
    panner1.outL = p1 * panner1.gainL;
    panner1.outR = p1 * panner1.gainR;
    const float p2 = signalDests[9] * outputLevel2;
    panner2.outL = p2 * panner2.gainL;
    panner2.outR = p2 * panner2.gainR;

    const float wetL = panner1.outL + panner2.outL;
    const float wetR = panner1.outR + panner2.outR;

    // In this order: in a one-channel buffer both are one sample, and the right side stays.
    ch0 = clipped (wetGain * wetL + dryGain * l);
    ch1 = clipped (wetGain * wetR + dryGain * r);
}

float ReferenceEngine::feedbackShaped (float feedback, float x)
{
    if (x > 1.0f)
        return feedback * 0.76f;

    if (x < -1.0f)
        return feedback * -0.76f;

    return (feedback * 0.38f) * (3.0f * x - x * x * x);
}

float ReferenceEngine::saturated (float satK, float x)
{
    return (satK + 1.0f) * x / (1.0f + satK * std::fabs (x));
}
}  // namespace reference
