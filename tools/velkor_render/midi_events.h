// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include <filesystem>
#include <vector>

/** A MIDI message and when it is due. */
struct MidiEvent
{
    juce::int64 frame;
    juce::MidiMessage message;
};

/** The messages of all tracks of a standard MIDI file, in order of time. Musical time runs at the given
    tempo, in beats per minute, not at the file's own; a file in SMPTE time is taken as it is. Fails if
    there is no such file or if it isn't a MIDI file. */
std::vector<MidiEvent> readMidiFile (const std::filesystem::path& path, double tempo, double rate);
