// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "processor/VelkorAudioProcessor.h"
#include "session.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <cstdint>

/** A transport that says what the present block of the session says. */
class SessionPlayHead : public juce::AudioPlayHead
{
public:
    juce::Optional<PositionInfo> getPosition() const override;

    const SessionBlock* block = nullptr;  ///< not owned
};

/** Something that plays a session: the plug-in in one of its formats, or the processor itself. */
class SessionPlayer
{
public:
    virtual ~SessionPlayer() = default;

    /** Loads a chunk of the processor. */
    virtual void load (const juce::MemoryBlock& chunk) = 0;

    /** Sets a parameter from 0 to 1. */
    virtual void set (NumericalParamID id, float value) = 0;

    /** Replaces the samples by the result. The block's changes have been set. */
    virtual void process (juce::AudioBuffer<float>& samples, const SessionBlock& block) = 0;

    /** The whole session, block by block. */
    juce::AudioBuffer<float> play (const Session& session);
};

/** The processor in this process, with no format around it. */
class DirectPlayer : public SessionPlayer
{
public:
    /** As in a process that has worked at 44.1 kHz before. */
    DirectPlayer();

    void load (const juce::MemoryBlock& chunk) override;
    void set (NumericalParamID id, float value) override;
    void process (juce::AudioBuffer<float>& samples, const SessionBlock& block) override;

    juce::RangedAudioParameter& parameter (NumericalParamID id) const;

    VelkorAudioProcessor processor;
    SessionPlayHead playHead;
};

/** A state with a value of its own for each parameter. Every node is in the signal's way, and every
    modulation source reaches something that is heard. */
juce::MemoryBlock makeState (std::int64_t seed);

juce::MemoryBlock getState (juce::AudioProcessor& processor);
void setState (juce::AudioProcessor& processor, const juce::MemoryBlock& state);

/** Fails at the first sample whose bits differ. */
void expectSameSamples (const juce::AudioBuffer<float>& got, const juce::AudioBuffer<float>& want);

/** Whether any bit differs. */
bool differ (const juce::AudioBuffer<float>& a, const juce::AudioBuffer<float>& b);

/** Fails unless the output is finite, loud enough for a comparison to mean something, and no copy of the
    input. */
void expectWorthComparing (const juce::AudioBuffer<float>& output, const Session& session);
