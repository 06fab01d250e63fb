// SPDX-License-Identifier: AGPL-3.0-or-later
#include "duel.h"

#include "engine/engine_globals.h"

#include <algorithm>
#include <bit>
#include <gtest/gtest.h>
#include <utility>

juce::Optional<juce::AudioPlayHead::PositionInfo> FakePlayHead::getPosition() const
{
    if (! answers)
        return {};

    PositionInfo info;

    if (tempo)
        info.setBpm (*tempo);

    if (position)
        info.setPpqPosition (*position);

    return info;
}

/** Brings the process's rate to what the reference's is, before an engine is built on it. */
static VelkorAudioProcessor atRate (double rate)
{
    setAudioSamplingRate (rate);
    gFilterRenormal.store (1.0e-15f);
    return VelkorAudioProcessor();
}

Duel::Duel (double rateBefore) : product (atRate (rateBefore))
{
    useBareDefaults (product);
    globals.setRate (rateBefore);
    engine.emplace (globals);
    product.setPlayHead (&playHead);
}

void Duel::prepare (double rate)
{
    product.prepareToPlay (rate, 512);
    engine->prepare (rate);
}

void Duel::set (NumericalParamID id, float realValue)
{
    setParameter (product, id, realValue);
}

void Duel::set (NumericalParamID first, NumericalParamID second, float realValue)
{
    set (first, realValue);
    set (second, realValue);
}

void Duel::connect (int source, int destination, bool on)
{
    product.setSignalConnection (source, destination, on);
    engine->connect (source, destination, on);
}

void Duel::route (int source, int dest, bool on)
{
    product.setModConnection (source, dest, on);
    engine->route (source, dest, on);
}

void Duel::connectAll (bool on)
{
    for (int destination = 0; destination < kNumSignalDests; ++destination)
        for (int source = 0; source < kNumSignalSources; ++source)
            connect (source, destination, on);
}

void Duel::midi (std::uint8_t status, std::uint8_t data1, std::uint8_t data2)
{
    const std::uint8_t bytes[] = { status, data1, data2 };
    events.addEvent (bytes, 3, eventPlace++);
    isMidiUsed |= engine->midi (status, data1, data2);
}

static std::optional<std::size_t> firstDifference (std::span<const float> a,
                                                   std::span<const float> b)
{
    for (std::size_t i = 0; i < a.size(); ++i)
        if (std::bit_cast<std::uint32_t> (a[i]) != std::bit_cast<std::uint32_t> (b[i]))
            return i;

    return std::nullopt;
}

bool Duel::process (std::vector<float>& left, std::vector<float>& right, int channels)
{
    std::vector<float> wantLeft = left;
    std::vector<float> wantRight = right;
    const auto numSamples = static_cast<int> (left.size());

    float* pointers[] = { left.data(), right.data() };
    juce::AudioBuffer<float> buffer (pointers, channels > 1 ? 2 : 1, numSamples);
    product.processBlock (buffer, events);
    events.clear();
    eventPlace = 0;
    EXPECT_EQ (product.midiActivity.exchange (false), std::exchange (isMidiUsed, false));

    float values[reference::kNumParams];
    readValues (product, values);
    const juce::ScopedNoDenormals flush;
    const bool transport = playHead.answers;
    engine->process (values, transport ? playHead.tempo : std::nullopt,
                     transport ? playHead.position : std::nullopt, wantLeft.data(),
                     channels > 1 ? wantRight.data() : nullptr, numSamples);

    const std::span<const float> got[] = { left, right };
    const std::span<const float> want[] = { wantLeft, wantRight };

    for (int channel = 0; channel < channels; ++channel)
        if (const auto at = firstDifference (got[channel], want[channel]))
        {
            ADD_FAILURE() << "channel " << channel << " differs from sample " << *at << " of "
                          << numSamples << ": " << got[channel][*at] << ", reference "
                          << want[channel][*at];
            return false;
        }

    return true;
}

float Duel::run (Noise& noise, int blocks, int length)
{
    float peak = 0.0f;

    for (bool isSame = true; isSame && blocks > 0; --blocks)
    {
        auto left = noise.samples (length, 0.5f);
        auto right = noise.samples (length, 0.5f);
        isSame = process (left, right);
        peak = std::ranges::max (left);
    }

    return peak;
}

void readValues (const VelkorAudioProcessor& processor, float (&values)[reference::kNumParams])
{
    for (std::size_t i = 0; i < reference::kNumParams; ++i)
        values[i] = processor.paramValues[i]->load();
}

void useBareDefaults (VelkorAudioProcessor& processor)
{
    for (auto* parameter : processor.getParameters())
        parameter->setValueNotifyingHost (parameter->getDefaultValue());

    constexpr SignalPair kConnections[] = {
        { sourceInputL, destDelay1 },    { sourceInputR, destDelay2 },
        { sourceDelay1, destFeedback1 }, { sourceDelay2, destFeedback2 },
        { sourceDelay1, destOutput1 },   { sourceDelay2, destOutput2 }
    };
    engine_replace_connections (*processor.engine, kConnections);
    mod_router_replace (processor.engine->modulation, {});
}

void setParameter (VelkorAudioProcessor& processor, NumericalParamID id, float realValue)
{
    auto* const parameter = processor.parameterTree.getParameter (paramMapper[id].name);
    parameter->setValueNotifyingHost (parameter->convertTo0to1 (realValue));
}

std::uint32_t Noise::bits() noexcept
{
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    return state;
}

std::vector<float> Noise::samples (int n, float level)
{
    std::vector<float> result (static_cast<std::size_t> (n));
    std::generate (result.begin(), result.end(), [&] { return level * (*this)(); });
    return result;
}
