// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <optional>

// JUCE's names for a stored parameter; stored: never edit.
inline const juce::Identifier kParamType ("PARAM");
inline const juce::Identifier kParamId ("id");
inline const juce::Identifier kParamValue ("value");

/** The number that a value text says if it is one: decimal digits with at most one point and perhaps an
    exponent, or "inf"; blanks around it don't count. May be infinite, as what is too large is, never NaN.
    Empty for anything else. Any thread. */
std::optional<double> readValueText (const juce::String& text);

/** The tree that a store may be given for a document's element of parameters. It has the store's
    type and exact names, and exactly one child for each parameter of the store, with a legal
    value: of equal ids the last counts, a number outside the range ends at the range's end, and
    what is no number or is missing is the present value. Parameters that the document does not
    name stand at the end, in the store's own order. A value keeps its text, unless the store
    would read another number out of it. What the store does not know is kept as it is, as far as
    it is little: it is saved again, and what is saved has to stay below the limits of
    document_guard.h. But for elements of another name that bear a parameter's id: the store
    takes whatever bears one. presentTree holds the present values. Any thread but the audio
    thread. */
juce::ValueTree completeParameters (const juce::XmlElement& parameters,
                                    const juce::AudioProcessorValueTreeState& store,
                                    const juce::ValueTree& presentTree);

/** Replaces each value that is no number, which a host can set, by the parameter's default. Any
    thread but the audio thread. */
void replaceIllegalValues (juce::ValueTree& tree, const juce::AudioProcessorValueTreeState& store);
