// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>

/** The three modulation sources that MIDI feeds. Values change at block boundaries. */
struct MidiSources
{
    float noteValue = 0.0f;  ///< -1 (note 36 and below) to +1 (84 and above): the latest note on
    float gate = 0.0f;       ///< 1 while any note is held; gateRamp smooths it
    float modWheel = 0.0f;   ///< 0 to 1
    std::array<bool, 128> held {};
    std::int32_t heldCount = 0;
};

/** One MIDI event: its status byte and the two bytes behind it, 0 where it is shorter. The channel is
    ignored. Returns true for a note on, a note off and a mod wheel message, which light the panel's lamp
    even where they change nothing. Audio thread. */
bool midi_sources_event (MidiSources& midi, std::uint8_t status, std::uint8_t data1,
                         std::uint8_t data2) noexcept;

/** Lets go of all notes. Note value and wheel stay. Audio thread, or any thread while no block runs. */
void midi_sources_clear (MidiSources& midi) noexcept;
