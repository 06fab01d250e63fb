// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "velkor_render/audio_input.h"
#include "velkor_render/midi_events.h"

#include <array>
#include <functional>
#include <optional>
#include <vector>

class AudioOutput;
class VelkorAudioProcessor;

/** How a file is to be rendered. */
struct RenderSettings
{
    double tempo = 120.0;               ///< beats per minute, from the first frame to the last
    int block = 512;                    ///< frames
    std::optional<double> tailSeconds;  ///< nothing: until the sound is gone
    std::vector<MidiEvent> midi;        ///< in order of time, at the input's rate
};

/** What came out. */
struct RenderResult
{
    juce::int64 frames = 0;
    std::array<double, 2> peak {};  ///< per channel, 1 is full scale
    std::array<double, 2> rms {};
};

/** Prepares the processor for the input's rate and sends the input and its tail through it, block by
    block, into the output, which is left to be committed. progress gets 0 to 1. Fails if the input can't
    be read, the output can't be written, or the user interrupts. */
RenderResult render (VelkorAudioProcessor& processor, AudioInput& input,
                     const RenderSettings& settings, AudioOutput& output,
                     const std::function<void (double)>& progress);
