// SPDX-License-Identifier: AGPL-3.0-or-later
#include "velkor_render/midi_events.h"

#include "velkor_render/failure.h"
#include "velkor_render/paths.h"

#include <cmath>

std::vector<MidiEvent> readMidiFile (const std::filesystem::path& path, double tempo, double rate)
{
    const auto stream = existingFile (path).createInputStream();
    juce::MidiFile file;

    if (stream == nullptr || ! file.readFrom (*stream, false) || file.getTimeFormat() == 0)
        fail (path.string() + ": is not a MIDI file");

    const int format = file.getTimeFormat();
    double framesPerTick = 60.0 / tempo * rate / format;

    if (format < 0)
    {
        file.convertTimestampTicksToSeconds();
        framesPerTick = rate;
    }

    juce::MidiMessageSequence all;

    for (int i = 0; i < file.getNumTracks(); ++i)
        all.addSequence (*file.getTrack (i), 0.0);

    std::vector<MidiEvent> events;

    for (const auto* event : all)
        if (! event->message.isMetaEvent())
            events.push_back (
                { std::llround (event->message.getTimeStamp() * framesPerTick), event->message });

    return events;
}
