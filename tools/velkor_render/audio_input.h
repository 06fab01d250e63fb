// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include <filesystem>
#include <functional>

/** Stereo audio to be rendered, wherever it comes from. */
struct AudioInput
{
    double rate = 0.0;       ///< hertz
    juce::int64 length = 0;  ///< frames

    /** Fills the first count frames of a stereo buffer with those from position on, silence past the end.
        Positions are asked for without gaps, from 0 on. Fails if the source can't be read there. */
    std::function<void (juce::AudioBuffer<float>& frames, juce::int64 position, int count)> read;
};

/** Opens a file, whatever its extension. Mono counts as the same on both sides. Fails if there is no such
    file, if it isn't audio of a known format, or if it has more than two channels. */
AudioInput openAudioFile (const std::filesystem::path& path);

/** Audio that is there already. */
AudioInput inputFromMemory (juce::AudioBuffer<float> audio, double rate);
