// SPDX-License-Identifier: AGPL-3.0-or-later
#include "reference_engine.h"

#include "reference_helpers.h"

#include <algorithm>
#include <cmath>

namespace reference
{
void Globals::setRate (double newRate)
{
    rate = static_cast<float> (newRate);
    samplesPerMillisecond = 0.001f * rate;
}

// Construction, preparing

ReferenceEngine::ReferenceEngine (Globals& globalsOfTheProcess) : globals (globalsOfTheProcess)
{
    constructDelay (delay1);
    constructDelay (delay2);

    router_panner_1to2_init (panner1);
    router_panner_1to2_init (panner2);

    gen_LFO_init (lfo1);
    gen_LFO_init (lfo2);

    for (RampGenerator* ramp : { &killRamp, &gateRamp })
    {
        const auto count = static_cast<std::uint64_t> (truncated (0.001f * globals.rate));
        ramp->upCount = count == 0 ? 1 : count;
        ramp->downCount = ramp->upCount;
    }

    for (int i = 0; i < 1024; ++i)
        freqTable[static_cast<std::size_t> (i)] =
            static_cast<float> (40.0 * std::exp2 (i / 1023.0 * kLn450 / 0.6931471805599453));

    freqTable[1024] = freqTable[1023];

    connect (0, 0, true);
    connect (1, 1, true);
    connect (2, 2, true);
    connect (3, 3, true);
    connect (2, 8, true);
    connect (3, 9, true);
}

void ReferenceEngine::constructDelay (DelayFad& line) const
{
    const float s = globals.rate * 0.001f;
    line.bufferSize = 576000;
    line.buffer.assign (576000, 0.0f);
    line.maxTimeMs = static_cast<std::uint64_t> (truncated (576000.0f / s));
    line.timeMs = static_cast<float> (line.maxTimeMs >> 1);
    line.delaySamples =
        static_cast<std::uint64_t> (truncated (globals.rate * line.timeMs * 0.001f));
    line.readPos = 0.0f;
    line.writePos = static_cast<float> (line.delaySamples) - 1.0f;
}

void ReferenceEngine::prepare (double rate)
{
    sampleRate = rate;
    globals.setRate (rate);

    resizeDelay (delay1);
    resizeDelay (delay2);

    rampSetRate (killRamp);
    rampSetRate (gateRamp);

    updateEnvelopeCoefs();
    clearSignalState();
}

void ReferenceEngine::resizeDelay (DelayFad& line) const
{
    const float s = globals.samplesPerMillisecond;
    const auto n =
        static_cast<std::uint64_t> (truncated (static_cast<float> (line.maxTimeMs) * s + 1.0f));

    if (n != line.bufferSize)
    {
        line.bufferSize = n;
        line.buffer.resize (n);
        line.delaySamples = static_cast<std::uint64_t> (truncated (line.timeMs * s));
        line.writePos = static_cast<float> (line.delaySamples) - 1.0f;
        line.readPos = 0.0f;
        line.lastIn = 0.0f;
        line.readRate = 1.0f;
        line.writeRate = 1.0f;
    }
}

void ReferenceEngine::updateEnvelopeCoefs()
{
    const auto coefOf = [this] (float time)
    {
        const float samples = time * globals.rate;
        return static_cast<float> (std::exp (-1.0 / static_cast<double> (samples)));
    };

    envelope.attackCoef = coefOf (envelope.attackTime);
    envelope.decayCoef = coefOf (envelope.decayTime);
}

void ReferenceEngine::clearDelay (DelayFad& line) const
{
    std::fill (line.buffer.begin(), line.buffer.end(), 0.0f);
    line.readPos = 0.0f;
    line.writePos = static_cast<float> (line.delaySamples) - 1.0f;
}

void ReferenceEngine::clearSignalState()
{
    clearDelay (delay1);
    clearDelay (delay2);

    for (FilterMultimode* filter : { &filter1, &filter2 })
    {
        filter->out = 0.0f;
        filter->low = 0.0;
        filter->high = 0.0;
        filter->band = 0.0;
        filter->notch = 0.0;
    }

    envelope.envState = 0.0f;
    gate = 0.0f;
    signalSources.fill (0.0f);
    signalDests.fill (0.0f);
    lfoPhase1 = 0.0;
    lfoPhase2 = 0.0;
    held.fill (false);
    heldCount = 0;
}

// Helpers of the tick

float ReferenceEngine::tableLookup (const std::array<float, 1025>& table, float x)
{
    const float p = 1023.0f * x;
    const auto i = static_cast<std::size_t> (truncated (p));
    const float f = p - static_cast<float> (i);
    const double first = (1.0 - static_cast<double> (f)) * static_cast<double> (table[i]);
    const float second = f * table[i + 1];
    return static_cast<float> (first + static_cast<double> (second));
}

float ReferenceEngine::rampTick (RampGenerator& ramp, float x)
{
    const auto wide = static_cast<double> (x);

    if (x != ramp.target)
    {
        ramp.target = x;

        if (ramp.value > wide)
            ramp.remaining = ramp.downCount;
        else if (wide > ramp.value)
            ramp.remaining = ramp.upCount;

        // At rest on x already, this is 0 / 0; it isn't used before it is set anew.
        ramp.step = (wide - ramp.value) / static_cast<double> (ramp.remaining);
    }

    if (ramp.remaining != 0)
    {
        --ramp.remaining;
        ramp.value += ramp.step;
        ramp.output = static_cast<float> (ramp.value);
    }
    else
    {
        ramp.output = ramp.target;
    }

    return ramp.output;
}

void ReferenceEngine::rampSetRate (RampGenerator& ramp) const
{
    const auto countOf = [this] (float time)
    {
        const auto count = static_cast<std::uint64_t> (truncated (time * globals.rate));
        return count == 0 ? std::uint64_t { 1 } : count;
    };

    ramp.upCount = countOf (ramp.upTime);
    ramp.downCount = countOf (ramp.downTime);
    const auto target = static_cast<double> (ramp.target);

    if (ramp.value > target)
    {
        ramp.remaining = ramp.downCount;
        ramp.step = (target - ramp.value) / static_cast<double> (ramp.downCount);
    }
    else if (target > ramp.value)
    {
        ramp.remaining = ramp.upCount;
        ramp.step = (target - ramp.value) / static_cast<double> (ramp.upCount);
    }
}

int ReferenceEngine::syncBeatIndex (float t)
{
    const float u = t < 0.0f ? 0.0f : (t < 1.0f ? t : 1.0f) * 0.99f * 15.0f;
    return static_cast<int> (std::clamp<std::int64_t> (truncated (u), 0, 14));
}

// The two matrices

void ReferenceEngine::connect (int source, int destination, bool on)
{
    if (static_cast<unsigned> (destination) >= 10 || static_cast<unsigned> (source) >= 8)
        return;

    std::size_t place = 0;
    const auto count = static_cast<std::size_t> (connectionCount);

    while (place < count && (connSource[place] != source || connDest[place] != destination))
        ++place;

    if (on && place == count)
    {
        connSource[count] = source;
        connDest[count] = destination;
        ++connectionCount;
    }
    else if (! on && place < count)
    {
        --connectionCount;
        connSource[place] = connSource[count - 1];
        connDest[place] = connDest[count - 1];
    }
}

void ReferenceEngine::route (int source, int dest, bool on)
{
    if (static_cast<unsigned> (dest) >= 10 || static_cast<unsigned> (source) >= 6)
        return;

    const auto found =
        std::find_if (routes.begin(), routes.end(),
                      [=] (const ModRoute& r) { return r.source == source && r.dest == dest; });

    if (on && found == routes.end())
        routes.push_back ({ source, dest });
    else if (! on && found != routes.end())
        routes.erase (found);
}

// MIDI

void ReferenceEngine::midi (std::uint8_t b0, std::uint8_t b1, std::uint8_t b2)
{
    const int status = b0 & 0xF0;

    if (status == 0x90 && b2 != 0)
    {
        if (b1 >= 0x80 || held[b1])
            return;

        ++heldCount;
        held[b1] = true;
        gate = 1.0f;
        noteValue = b1 < 36 ? -1.0f : static_cast<float> (std::min (b1 - 36, 48)) / 24.0f - 1.0f;
    }
    else if (status == 0x80 || status == 0x90)
    {
        if (b1 >= 0x80 || ! held[b1])
            return;

        held[b1] = false;
        const bool wasLast = heldCount <= 1;
        --heldCount;

        if (wasLast)
        {
            heldCount = 0;
            gate = 0.0f;
        }
    }
    else if (status == 0xB0 && b1 == 1)
    {
        modWheel = static_cast<float> (b2) / 127.0f;
    }
}
}  // namespace reference
