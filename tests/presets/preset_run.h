// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "processor/VelkorAudioProcessor.h"
#include "sound_sources.h"

#include <memory>
#include <vector>

inline constexpr int kNumPresets = 64;

/** The preset files in the order of their numbers. */
juce::Array<juce::File> factoryFiles();

/** A factory preset as it is stored. */
struct Preset
{
    explicit Preset (int number);

    /** A copy with one stored value changed. */
    Preset with (const char* parameter, double value) const;
    Preset wetOnly() const { return with ("Dry Level", 0.0); }

    int number;
    juce::String fileName;
    std::shared_ptr<const juce::XmlElement> document;
};

/** How a preset is played. */
struct Playing
{
    struct Event
    {
        double seconds;
        juce::MidiMessage message;
    };

    double tempo = kSourceTempo;
    bool running = true;      ///< the transport
    std::vector<Event> midi;  ///< in order of time; takes effect at the next block of 256
    std::shared_ptr<const juce::XmlElement> before;  ///< a preset that plays until loadAt
    double loadAt = 0.0;                             ///< seconds
};

/** A held note for the whole time, and the wheel at one place. */
Playing withNote (int note, int wheel = 64);

/** Notes of half a second with rests of an eighth of one, and a wheel that goes up and down. */
Playing withMidiLine();

/** What comes out, as long as the input. A new instance for each call, at kSoundRate. */
Sound played (const Preset& preset, const Sound& input, const Playing& how = {});
