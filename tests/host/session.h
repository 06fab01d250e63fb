// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "parameters/parameter_table.h"
#include "processor/VelkorAudioProcessor.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <cstdint>
#include <utility>
#include <vector>

/** What a host does in one block: sets parameters, then hands over samples, MIDI and transport. */
struct SessionBlock
{
    int numSamples = 0;
    std::vector<std::pair<NumericalParamID, float>>
        changes;  ///< 0 to 1, which is how hosts keep it
    juce::MidiBuffer midi;
    juce::AudioPlayHead::PositionInfo transport;  ///< a tempo is one that a 32-bit float can hold
};

/** A piece of work for a host: a sound, cut into blocks of odd and changing sizes of up to 1024. */
struct Session
{
    static constexpr int kMaxBlock = 1024;

    double sampleRate = 0.0;
    juce::MemoryBlock
        state;  ///< the processor's chunk, loaded before the first block; empty for none
    juce::AudioBuffer<float> input;
    std::vector<SessionBlock> blocks;
};

/** Three seconds of stereo sound in some hundred blocks in which every parameter moves, notes and the wheel come and
    go, and the transport plays, stops and is missing. The same for the same numbers. */
Session makeSession (double sampleRate, std::int64_t seed);

/** The same sound and block sizes and nothing else. */
Session withoutEvents (Session session);

/** The chunk of a state with a value of its own for each parameter. Every node is in the signal's way, and every
    modulation source reaches something that is heard. */
juce::MemoryBlock makeState (std::int64_t seed);

/** Something that plays a session: the plug-in in one of its formats, or the processor itself. */
class SessionPlayer : protected juce::AudioPlayHead
{
public:
    /** Loads a chunk of the processor. */
    virtual void load (const juce::MemoryBlock& chunk) = 0;

    /** Sets a parameter from 0 to 1. */
    virtual void set (NumericalParamID id, float value) = 0;

    /** Replaces the samples by the result. The block's changes have been set, and this is its play head. */
    virtual void process (juce::AudioBuffer<float>& samples, const SessionBlock& block) = 0;

    /** The whole session, block by block. */
    juce::AudioBuffer<float> play (const Session& session);

private:
    juce::Optional<PositionInfo> getPosition() const override { return transport; }

    PositionInfo transport;
};

/** The processor in this process, with no format around it. */
class DirectPlayer : public SessionPlayer
{
public:
    /** As in a process that has worked at 44.1 kHz before. */
    DirectPlayer();

    /** Prepared for sessions of that rate too. */
    explicit DirectPlayer (double sampleRate);

    void load (const juce::MemoryBlock& chunk) override;
    void set (NumericalParamID id, float value) override;
    void process (juce::AudioBuffer<float>& samples, const SessionBlock& block) override;

    juce::RangedAudioParameter& parameter (NumericalParamID id) const;

    VelkorAudioProcessor processor;
};

juce::MemoryBlock getState (juce::AudioProcessor& processor);
void setState (juce::AudioProcessor& processor, const juce::MemoryBlock& state);

/** Fails at the first sample whose bits differ. */
void expectSameSamples (const juce::AudioBuffer<float>& got, const juce::AudioBuffer<float>& want);

/** Fails unless the output is finite, loud enough for a comparison to mean something, and no copy of the
    input. */
void expectWorthComparing (const juce::AudioBuffer<float>& output, const Session& session);
