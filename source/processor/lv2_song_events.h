// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "processor/song_position.h"

// clang-format off
#include <juce_audio_processors/juce_audio_processors.h>
#include <juce_audio_processors/format_types/juce_LV2Common.h>  // needs the one above
// clang-format on

#include <array>
#include <cstdint>
#include <span>

/** Reads the time:Position events of a block from atom sequences. Made on the message thread; the
    rest is for the audio thread, lock-free. */
class Lv2SongEvents
{
public:
    explicit Lv2SongEvents (const LV2_URID_Map& map);

    /** Forgets the block before. */
    void clear() noexcept { numEvents = 0; }

    /** Adds the events of one port; nullptr is a port that isn't connected. */
    void add (const LV2_Atom_Sequence* sequence) noexcept;

    /** What was added, by offset, at one offset in the order of adding. */
    std::span<const SongEvent> get() const noexcept { return { events.data(), numEvents }; }

private:
    SongEvent readEvent (const LV2_Atom_Object& object, std::int64_t offset) const noexcept;
    std::optional<double> readNumber (const LV2_Atom& atom) const noexcept;
    void insert (const SongEvent& event) noexcept;

    const LV2_URID sequenceType, objectType, blankType, resourceType;
    const LV2_URID intType, longType, floatType, doubleType, boolType;
    const LV2_URID position, frame, speed, tempo, beatsPerBar, beatUnit, bar, barBeat, beat;
    std::array<SongEvent, 64> events {};  ///< the last one gives way if there are more
    std::size_t numEvents = 0;
};
