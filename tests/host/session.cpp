// SPDX-License-Identifier: AGPL-3.0-or-later
#include "session.h"

#include "engine/engine_globals.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <iterator>

namespace
{

/** Bursts of noise that fade, at other places on the left than on the right. */
juce::AudioBuffer<float> synthesise (double sampleRate, juce::Random& random)
{
    juce::AudioBuffer<float> sound (2, static_cast<int> (3.0 * sampleRate));

    for (int channel = 0; channel < 2; ++channel)
        for (int n = 0; n < sound.getNumSamples(); ++n)
        {
            const int age = (n + 4000 * channel) % 9000;
            const float level = 0.05f + 0.6f * std::exp (-0.0003f * static_cast<float> (age));
            sound.setSample (channel, n, level * (2.0f * random.nextFloat() - 1.0f));
        }

    return sound;
}

/** Makes one block after the other. */
class SessionWriter
{
public:
    SessionWriter (juce::Random& r, double rate) : random (r), sampleRate (rate) {}

    SessionBlock next (int numSamples, std::int64_t time)
    {
        SessionBlock block;
        block.numSamples = numSamples;

        // What silences everything, or freezes it, lasts one block: the comparison needs sound.
        for (const auto id : { Kill, Delay1Loop, Delay2Loop })
            block.changes.push_back ({ id, 0.0f });

        for (int i = random.nextInt (4); --i >= 0;)
            block.changes.push_back (
                { static_cast<NumericalParamID> (nextParameter++ % kNumParameters),
                  random.nextFloat() });

        for (int i = random.nextInt (3); --i >= 0;)
            block.midi.addEvent (anyMessage(), random.nextInt (std::max (1, numSamples)));

        tellTransport (block, time);
        return block;
    }

private:
    juce::MidiMessage anyMessage()
    {
        constexpr int kKinds[] = { 0x90, 0x80, 0xe0, 0xb0 };
        const int kind = kKinds[random.nextInt (4)], data = random.nextInt (128);
        return { kind + random.nextInt (16), kind == 0xb0 ? 1 : data, data };
    }

    void tellTransport (SessionBlock& block, std::int64_t time)
    {
        if (time == 0 || random.nextInt (20) == 0)
        {
            isPlaying = random.nextBool();
            tellsTempo = random.nextInt (4) > 0;
            tellsPosition = random.nextInt (4) > 0;
            tempo = 60.0 + 0.5 * random.nextInt (240);
        }

        block.transport.setTimeInSamples (time);
        block.transport.setIsPlaying (isPlaying);

        if (tellsTempo)
            block.transport.setBpm (tempo);

        if (tellsPosition)
            block.transport.setPpqPosition (quarterNotes);

        if (isPlaying)
            quarterNotes += block.numSamples / sampleRate * tempo / 60.0;
    }

    juce::Random& random;
    double sampleRate;
    int nextParameter = 0;  ///< every one gets its turn
    bool isPlaying = false, tellsTempo = false, tellsPosition = false;
    double tempo = 0.0, quarterNotes = 0.0;
};

VelkorAudioProcessor afterWorkAt44100()
{
    setAudioSamplingRate (44100.0);
    return VelkorAudioProcessor();
}

}  // namespace

Session makeSession (double sampleRate, std::int64_t seed)
{
    constexpr int kSizes[] = { 0, 1, 3, 4, 32, 61, 64, 127, 441, 512, 1021, Session::kMaxBlock };

    juce::Random random (seed);
    Session session { sampleRate, makeState (seed), synthesise (sampleRate, random), {} };
    SessionWriter writer (random, sampleRate);

    for (int start = 0; start < session.input.getNumSamples();)
    {
        const int size = std::min (kSizes[random.nextInt (static_cast<int> (std::size (kSizes)))],
                                   session.input.getNumSamples() - start);
        session.blocks.push_back (writer.next (size, start));
        start += size;
    }

    return session;
}

Session withoutEvents (Session session)
{
    session.state.reset();

    for (auto& block : session.blocks)
    {
        block.changes.clear();
        block.midi.clear();
    }

    return session;
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

    constexpr int kSources[kNumSignalDests] = {
        sourceInputL, sourceInputR,  sourceDelay1,  sourceDelay2,      sourceDelay1,
        sourceDelay2, sourceFilter1, sourceFilter2, sourceSaturation1, sourceSaturation2,
    };

    for (int dest = 0; dest < kNumSignalDests; ++dest)
        player.processor.setSignalConnection (kSources[dest], dest, true);

    for (int dest = 0; dest < kNumModDests; ++dest)
        for (const int source : { dest, dest + 3 })
            player.processor.setModConnection (source % kNumModSources, dest, true);

    return getState (player.processor);
}

juce::AudioBuffer<float> SessionPlayer::play (const Session& session)
{
    auto output = session.input;
    int start = 0;

    if (! session.state.isEmpty())
        load (session.state);

    for (const auto& block : session.blocks)
    {
        for (const auto& [id, value] : block.changes)
            set (id, value);

        float* const channels[] = { output.getWritePointer (0, start),
                                    output.getWritePointer (1, start) };
        juce::AudioBuffer<float> samples (channels, 2, block.numSamples);
        transport = block.transport;
        process (samples, block);
        start += block.numSamples;
    }

    return output;
}

DirectPlayer::DirectPlayer() : processor (afterWorkAt44100())
{
    processor.setPlayHead (this);
}

DirectPlayer::DirectPlayer (double sampleRate) : DirectPlayer()
{
    processor.prepareToPlay (sampleRate, Session::kMaxBlock);
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
    juce::MidiBuffer midi = block.midi;
    processor.processBlock (samples, midi);
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

void expectSameSamples (const juce::AudioBuffer<float>& got, const juce::AudioBuffer<float>& want)
{
    ASSERT_EQ (got.getNumSamples(), want.getNumSamples());

    const auto bits = [] (float sample) { return std::bit_cast<std::uint32_t> (sample); };

    for (int channel = 0; channel < 2; ++channel)
        for (int n = 0; n < want.getNumSamples(); ++n)
            ASSERT_EQ (bits (got.getSample (channel, n)), bits (want.getSample (channel, n)))
                << "channel " << channel << " differs from sample " << n << ": "
                << got.getSample (channel, n) << ", the processor alone gives "
                << want.getSample (channel, n);
}

void expectWorthComparing (const juce::AudioBuffer<float>& output, const Session& session)
{
    const int numSamples = output.getNumSamples();
    EXPECT_GT (numSamples, 2 * session.sampleRate);

    for (int channel = 0; channel < 2; ++channel)
    {
        const auto* samples = output.getReadPointer (channel);
        EXPECT_FALSE (
            std::equal (samples, samples + numSamples, session.input.getReadPointer (channel)));
        const float level = output.getRMSLevel (channel, 0, numSamples);
        EXPECT_TRUE (level > 0.01f && level < 10.0f) << level << " on channel " << channel;
    }
}
