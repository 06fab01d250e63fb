// SPDX-License-Identifier: AGPL-3.0-or-later
#include "ui/MidiLed.h"

#include "ui/image_strip.h"

MidiLed::MidiLed (const juce::Image& strip)
    : unlitImage (stripFrame (strip, 0, 2)), litImage (stripFrame (strip, 1, 2))
{
    setTitle ("MIDI");
    setDescription ("Lamp: lit while notes or the mod wheel arrive");
}

void MidiLed::paint (juce::Graphics& g)
{
    drawStretched (g, lit ? litImage : unlitImage, getLocalBounds().toFloat());
}
