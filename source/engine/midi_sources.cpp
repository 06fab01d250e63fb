// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/midi_sources.h"

#include <algorithm>

static void noteOn (MidiSources& midi, std::uint8_t note) noexcept
{
    if (note >= 128 ||
        midi.held[note])  // a repeated note on changes nothing, the note value neither
        return;

    ++midi.heldCount;
    midi.held[note] = true;
    midi.gate = 1.0f;
    midi.noteValue =
        note < 36 ? -1.0f : static_cast<float> (std::min (note - 36, 48)) / 24.0f - 1.0f;
}

static void noteOff (MidiSources& midi, std::uint8_t note) noexcept
{
    if (note >= 128 || ! midi.held[note])
        return;

    midi.held[note] = false;

    if (midi.heldCount-- <= 1)
    {
        midi.heldCount = 0;
        midi.gate = 0.0f;
    }
}

bool midi_sources_event (MidiSources& midi, std::uint8_t status, std::uint8_t data1,
                         std::uint8_t data2) noexcept
{
    switch (status & 0xf0)
    {
    case 0x90:
        if (data2 != 0)
            noteOn (midi, data1);
        else
            noteOff (midi, data1);

        return true;

    case 0x80:
        noteOff (midi, data1);
        return true;

    case 0xb0:
        if (data1 != 1)
            return false;

        midi.modWheel = static_cast<float> (data2) / 127.0f;
        return true;

    default:
        return false;
    }
}

void midi_sources_clear (MidiSources& midi) noexcept
{
    midi.gate = 0.0f;
    midi.held.fill (false);
    midi.heldCount = 0;
}
