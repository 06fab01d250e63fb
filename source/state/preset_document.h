// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <memory>

class StoredParameters;
struct VelkorEngine;

/** The document of a sound: <stateTag PresetName Version> with Parameters, SignalMatrix and
    ModMatrix. The signal matrix is ordered by destination, the modulation matrix by source
    first. Reads the matrices without their locks. Any thread but the audio thread. */
std::unique_ptr<juce::XmlElement> writePresetDocument (const juce::String& stateTag,
                                                       const juce::String& presetName,
                                                       StoredParameters& parameters,
                                                       const VelkorEngine& engine);

/** The name of the preset in a document's root; empty without one. Any thread. */
juce::String readPresetName (const juce::XmlElement& document);

/** Whether a document is one of ours: its root bears the tag, ignoring case, and it has parameters. Any
    thread. */
bool isPresetDocument (const juce::XmlElement& document, const juce::String& stateTag);

/** Sets the parameters to those of a preset document. Any thread but the audio thread. */
void readPresetParameters (const juce::XmlElement& document, StoredParameters& parameters);

/** Puts the connections and routes of a preset document in the place of the engine's; a matrix that the
    document lacks stays as it is. Takes connectionLock and then modLock, each for the exchange of finished
    lists. Any thread but the audio thread. */
void readPresetMatrices (const juce::XmlElement& document, VelkorEngine& engine);
