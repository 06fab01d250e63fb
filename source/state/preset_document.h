// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <memory>

struct VelkorEngine;

/** The document of a sound: <stateTag PresetName Version> with Parameters, SignalMatrix and ModMatrix. The
    signal matrix is ordered by destination, the modulation matrix by source first. Takes the store's lock;
    reads the matrices without theirs. Any thread but the audio thread. */
std::unique_ptr<juce::XmlElement> writePresetDocument (const juce::String& stateTag,
                                                       const juce::String& presetName,
                                                       juce::AudioProcessorValueTreeState& store,
                                                       const VelkorEngine& engine);

/** The name of the preset in a document's root; empty without one. Any thread. */
juce::String readPresetName (const juce::XmlElement& document);

/** Whether a document is one of ours: its root bears the tag, ignoring case, and it has parameters. Any
    thread. */
bool isPresetDocument (const juce::XmlElement& document, const juce::String& stateTag);

/** Puts the parameters of a preset document into the store, which sets each of them, and clears the store's
    undo history. Takes the store's lock. Any thread but the audio thread. */
void readPresetParameters (const juce::XmlElement& document,
                           juce::AudioProcessorValueTreeState& store);

/** Puts the connections and routes of a preset document in the place of the engine's; a matrix that the
    document lacks stays as it is. Takes connectionLock and then modLock, each for the exchange of finished
    lists. Any thread but the audio thread. */
void readPresetMatrices (const juce::XmlElement& document, VelkorEngine& engine);
