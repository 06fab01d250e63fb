// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "processor/VelkorAudioProcessor.h"

/** A transport that goes on by itself: LV2 hosts tell it only when it changes, and the framework's client
    forgets it after each block. Audio thread. */
class ContinuedPlayHead : public juce::AudioPlayHead
{
public:
    juce::Optional<PositionInfo> getPosition() const override { return position; }

    /** Takes over what is told at the start of a block; keeps its own count if that is nothing. */
    void hear (const juce::Optional<PositionInfo>& told);

    /** Moves on by a block. */
    void advance (int numSamples, double sampleRate);

private:
    juce::Optional<PositionInfo> position;
};

/** The processor as the LV2 client wants it: with a transport for every block, and with no MIDI left in the
    buffer, which that client would send to the host. */
class Lv2AudioProcessor : public VelkorAudioProcessor
{
public:
    Lv2AudioProcessor() = default;

    /** Not beside a block. */
    void setPlayHead (juce::AudioPlayHead* client) override;

    void processBlock (juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi) override;
    void processBlockBypassed (juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi) override;
    using VelkorAudioProcessor::processBlock;
    using VelkorAudioProcessor::processBlockBypassed;

private:
    void hearTransport();

    juce::AudioPlayHead* clientPlayHead = nullptr;  ///< not owned
    ContinuedPlayHead continued;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (Lv2AudioProcessor)
};
