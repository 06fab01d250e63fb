// SPDX-License-Identifier: AGPL-3.0-or-later
#include "processor/VelkorAudioProcessor.h"

#include <cmath>
#include <cstdint>

void VelkorAudioProcessor::processBlock (juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi)
{
    const juce::ScopedNoDenormals noDenormals;
    const int numSamples = buffer.getNumSamples();

    for (int channel = getTotalNumInputChannels(); channel < getTotalNumOutputChannels(); ++channel)
        buffer.clear (channel, 0, numSamples);

    takeMidi (midi);
    const ParamSnapshot snapshot = readSnapshot (paramValues);
    const Transport transport = readTransport();
    bindSnapshot (snapshot, boundValues, *engine);

    if (numSamples == 0 || buffer.getNumChannels() == 0)
        return;

    // On one channel both sides are the same memory, and the right result is the one that stays.
    float* const left = buffer.getWritePointer (0);
    float* const right = buffer.getNumChannels() > 1 ? buffer.getWritePointer (1) : left;
    engine_dsp_block (*engine, left, right, numSamples, transport);
}

void VelkorAudioProcessor::processBlockBypassed (juce::AudioBuffer<float>& buffer,
                                                 juce::MidiBuffer& midi)
{
    takeMidi (midi);
    zb_AudioProcessor::processBlockBypassed (buffer, midi);
}

void VelkorAudioProcessor::takeMidi (const juce::MidiBuffer& midi) noexcept
{
    bool active = false;

    for (const auto event :
         midi)  // whatever their places in the block, all act at its first sample
    {
        const auto byteAt = [&event] (int i) -> std::uint8_t
        { return i < event.numBytes ? event.data[i] : std::uint8_t { 0 }; };

        if (midi_sources_event (engine->midi, byteAt (0), byteAt (1), byteAt (2)))
            active = true;
    }

    if (active)
        midiActivity.store (true);
}

Transport VelkorAudioProcessor::readTransport() const
{
    Transport transport;

    if (auto* const head = getPlayHead())
        if (const auto position = head->getPosition())
        {
            if (const auto bpm = position->getBpm(); bpm && *bpm > 0.0)
                transport.tempo = *bpm;

            if (const auto ppq = position->getPpqPosition(); ppq && std::isfinite (*ppq))
                transport.position = *ppq;
        }

    return transport;
}
