// SPDX-License-Identifier: AGPL-3.0-or-later
#include "session_player.h"

#include "engine/engine_globals.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <optional>

juce::Optional<juce::AudioPlayHead::PositionInfo> SessionPlayHead::getPosition() const
{
    if (block == nullptr)
        return {};

    PositionInfo info;
    info.setTimeInSamples (block->time);
    info.setIsPlaying (block->isPlaying);

    if (block->tempo)
        info.setBpm (*block->tempo);

    if (block->position)
        info.setPpqPosition (*block->position);

    return info;
}

juce::AudioBuffer<float> SessionPlayer::play (const Session& session)
{
    auto output = session.input;
    auto* const left = output.getWritePointer (0);
    auto* const right = output.getWritePointer (1);
    int start = 0;

    if (! session.state.isEmpty())
        load (session.state);

    for (const auto& block : session.blocks)
    {
        for (const auto& change : block.changes)
            set (change.id, change.value);

        float* const channels[] = { left + start, right + start };
        juce::AudioBuffer<float> samples (channels, 2, block.numSamples);
        process (samples, block);
        start += block.numSamples;
    }

    return output;
}

static VelkorAudioProcessor afterWorkAt44100()
{
    setAudioSamplingRate (44100.0);
    return VelkorAudioProcessor();
}

DirectPlayer::DirectPlayer() : processor (afterWorkAt44100())
{
    processor.setPlayHead (&playHead);
}

juce::RangedAudioParameter& DirectPlayer::parameter (NumericalParamID id) const
{
    return *processor.parameterTree.getParameter (paramMapper[id].name);
}

void DirectPlayer::load (const juce::MemoryBlock& chunk)
{
    setState (processor, chunk);
}

void DirectPlayer::set (NumericalParamID id, float value)
{
    parameter (id).setValueNotifyingHost (value);
}

void DirectPlayer::process (juce::AudioBuffer<float>& samples, const SessionBlock& block)
{
    playHead.block = &block;
    juce::MidiBuffer midi = block.midi;
    processor.processBlock (samples, midi);
}

juce::MemoryBlock makeState (std::int64_t seed)
{
    juce::Random random (seed);
    DirectPlayer player;

    for (int number = 0; number < kNumParameters; ++number)
        player.set (static_cast<NumericalParamID> (number), random.nextFloat());

    for (const auto id : { Kill, Delay1Loop, Delay2Loop })
        player.set (id, 0.0f);

    for (const auto id : { InputLevel, WetLevel, DryLevel, Output1Level, Output2Level })
        player.set (id, 0.8f);

    constexpr int kConnections[][2] = {
        { sourceInputL, destDelay1 },       { sourceInputR, destDelay2 },
        { sourceDelay1, destFeedback1 },    { sourceDelay1, destFeedback2 },
        { sourceDelay1, destFilter1 },      { sourceDelay2, destFilter2 },
        { sourceFilter1, destSaturation1 }, { sourceFilter2, destSaturation2 },
        { sourceSaturation1, destOutput1 }, { sourceSaturation2, destOutput2 },
        { sourceDelay2, destOutput1 },      { sourceInputR, destOutput2 },
    };

    for (const auto& connection : kConnections)
        player.processor.setSignalConnection (connection[0], connection[1], true);

    constexpr int kRoutes[][2] = {
        { modSourceEnvelope, modDestDelay1 }, { modSourceEnvelope, modDestFilter1 },
        { modSourceLfo1, modDestDelay2 },     { modSourceLfo1, modDestFilter2 },
        { modSourceLfo2, modDestPan1 },       { modSourceLfo2, modDestLevel1 },
        { modSourceNote, modDestPan2 },       { modSourceNote, modDestLevel2 },
        { modSourceGate, modDestFilter1 },    { modSourceGate, modDestLevel1 },
        { modSourceWheel, modDestFilter2 },   { modSourceWheel, modDestLevel2 },
    };

    for (const auto& route : kRoutes)
        player.processor.setModConnection (route[0], route[1], true);

    return getState (player.processor);
}

juce::MemoryBlock getState (juce::AudioProcessor& processor)
{
    juce::MemoryBlock state;
    processor.getStateInformation (state);
    return state;
}

void setState (juce::AudioProcessor& processor, const juce::MemoryBlock& state)
{
    processor.setStateInformation (state.getData(), static_cast<int> (state.getSize()));
}

static std::optional<int> firstDifference (const juce::AudioBuffer<float>& a,
                                           const juce::AudioBuffer<float>& b, int channel)
{
    for (int n = 0; n < a.getNumSamples(); ++n)
        if (std::bit_cast<std::uint32_t> (a.getSample (channel, n)) !=
            std::bit_cast<std::uint32_t> (b.getSample (channel, n)))
            return n;

    return std::nullopt;
}

void expectSameSamples (const juce::AudioBuffer<float>& got, const juce::AudioBuffer<float>& want)
{
    ASSERT_EQ (got.getNumChannels(), want.getNumChannels());
    ASSERT_EQ (got.getNumSamples(), want.getNumSamples());

    for (int channel = 0; channel < want.getNumChannels(); ++channel)
        if (const auto at = firstDifference (got, want, channel))
            ADD_FAILURE() << "channel " << channel << " differs from sample " << *at << " of "
                          << want.getNumSamples() << ": " << got.getSample (channel, *at)
                          << ", the processor alone gives " << want.getSample (channel, *at);
}

bool differ (const juce::AudioBuffer<float>& a, const juce::AudioBuffer<float>& b)
{
    return firstDifference (a, b, 0) || firstDifference (a, b, 1);
}

void expectWorthComparing (const juce::AudioBuffer<float>& output, const Session& session)
{
    const int numSamples = output.getNumSamples();
    ASSERT_GT (numSamples, 2 * session.sampleRate) << "no sound file";
    EXPECT_TRUE (differ (output, session.input));

    for (int channel = 0; channel < 2; ++channel)
    {
        const auto* samples = output.getReadPointer (channel);
        EXPECT_TRUE (std::all_of (samples, samples + numSamples,
                                  [] (float sample) { return std::isfinite (sample); }));
        EXPECT_GT (output.getRMSLevel (channel, 0, numSamples), 0.01f) << "channel " << channel;
    }
}
