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
    for (Side& side : sides)
        constructDelay (side.delay);

    setRampCount (killRamp);
    setRampCount (gateRamp);

    for (std::size_t i = 0; i < 1024; ++i)
    {
        const auto place = static_cast<double> (i);
        freqTable[i] =
            static_cast<float> (40.0 * std::exp2 (place / 1023.0 * kLn450 / 0.6931471805599453));
        const auto position = static_cast<double> (static_cast<float> (i) / 1023.0f);
        const auto s = static_cast<float> (std::sin (position * kPi * 0.5));
        panTable[i] = s * s;
    }

    freqTable[1024] = freqTable[1023];
    panTable[1024] = panTable[1023];

    constexpr int kConnections[][2] = {
        { 0, 0 }, { 1, 1 }, { 2, 2 }, { 3, 3 }, { 2, 8 }, { 3, 9 }
    };

    for (const auto& [source, destination] : kConnections)
        connect (source, destination, true);
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

    for (Side& side : sides)
        resizeDelay (side.delay);

    for (RampGenerator* ramp : { &killRamp, &gateRamp })
    {
        setRampCount (*ramp);
        const auto target = static_cast<double> (ramp->target);

        if (ramp->value != target)
        {
            ramp->remaining = ramp->count;
            ramp->step = (target - ramp->value) / static_cast<double> (ramp->count);
        }
    }

    clearSignalState();
}

void ReferenceEngine::setRampCount (RampGenerator& ramp) const
{
    const auto count = static_cast<std::uint64_t> (truncated (0.001f * globals.rate));
    ramp.count = count == 0 ? 1 : count;
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
    }
}

void ReferenceEngine::clearSignalState()
{
    for (Side& side : sides)
    {
        DelayFad& line = side.delay;
        std::fill (line.buffer.begin(), line.buffer.end(), 0.0f);
        line.readPos = 0.0f;
        line.writePos = static_cast<float> (line.delaySamples) - 1.0f;

        FilterMultimode& filter = side.filter;
        filter.out = 0.0f;
        filter.low = filter.high = filter.band = filter.notch = 0.0;
        side.lfoPhase = 0.0;
    }

    envState = 0.0f;
    gate = 0.0f;
    signalSources.fill (0.0f);
    signalDests.fill (0.0f);
    held.fill (false);
    heldCount = 0;
}

// Helpers of the tick

float tableLookup (const std::array<float, 1025>& table, float x)
{
    const float p = 1023.0f * x;
    const auto i = static_cast<std::size_t> (truncated (p));
    const float f = p - static_cast<float> (i);
    const double first = (1.0 - static_cast<double> (f)) * static_cast<double> (table[i]);
    const float second = f * table[i + 1];
    return static_cast<float> (first + static_cast<double> (second));
}

float rampTick (RampGenerator& ramp, float x)
{
    const auto wide = static_cast<double> (x);

    if (x != ramp.target)
    {
        ramp.target = x;

        if (ramp.value != wide)
            ramp.remaining = ramp.count;

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

int syncBeatIndex (float t)
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

bool ReferenceEngine::midi (std::uint8_t b0, std::uint8_t b1, std::uint8_t b2)
{
    const int status = b0 & 0xF0;

    if (status == 0x90 && b2 != 0)
    {
        if (b1 >= 0x80 || held[b1])
            return true;

        ++heldCount;
        held[b1] = true;
        gate = 1.0f;
        noteValue = b1 < 36 ? -1.0f : static_cast<float> (std::min (b1 - 36, 48)) / 24.0f - 1.0f;
    }
    else if (status == 0x80 || status == 0x90)
    {
        if (b1 >= 0x80 || ! held[b1])
            return true;

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
    else
    {
        return false;
    }

    return true;
}
}  // namespace reference
