// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "parameters/parameter_table.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <cstdint>
#include <optional>
#include <vector>

/** What a host does in one block: sets parameters, then hands over samples, MIDI and transport. */
struct SessionBlock
{
    struct Change
    {
        NumericalParamID id;
        float value;  ///< 0 to 1, which is how hosts keep it
    };

    int numSamples = 0;
    std::vector<Change> changes;
    juce::MidiBuffer midi;
    std::optional<double> tempo;     ///< beats per minute, no more than a 32-bit float can hold
    std::optional<double> position;  ///< quarter notes
    bool isPlaying = false;
    std::int64_t time = 0;  ///< samples since the start
};

/** A piece of work for a host: a sound file, cut into blocks of odd and changing sizes. */
struct Session
{
    double sampleRate = 0.0;
    int maxBlock = 0;
    juce::MemoryBlock
        state;  ///< the processor's chunk, loaded before the first block; empty for none
    juce::AudioBuffer<float> input;
    std::vector<SessionBlock> blocks;
};

/** Three seconds of a stereo sound file that is written to the home folder and read back, with some
    hundred blocks in which every parameter moves, notes and the wheel come and go, and the transport plays,
    stops and is missing; from a state in which all of that is heard. The same for the same numbers. */
Session makeSession (double sampleRate, std::int64_t seed);

/** The same sound and block sizes and nothing else. */
Session withoutEvents (Session session);
