// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <memory>

class zb_AudioProcessor;

/** The document of the present sound as the text of a preset file: what goes to the clipboard and what the
    browser keeps for its way back. Message thread. */
void getStateAsText (zb_AudioProcessor& processor, juce::String& text);

/** Loads a text; one that doesn't parse changes nothing. Message thread. */
void setStateFromText (zb_AudioProcessor& processor, const juce::String& text);

/** Names the preset after the file and writes it there, whole or not at all; then the program list is
    refreshed and the host told. False if the file was not written: the name has changed all the same.
    Message thread. */
bool saveStateToFile (zb_AudioProcessor& processor, const juce::File& file);

/** Loads a file. Where that is no regular file, or not XML, the preset's name becomes "Error Loading Preset"
    until the next load or save, and nothing else changes. Message thread. */
void setStateFromFile (zb_AudioProcessor& processor, const juce::File& file);

/** The document in a host's chunk; empty if its frame or its text is none. The frame is that of
    AudioProcessor::copyXmlToBinary; a length beyond the data is cut to them. Any thread. */
std::unique_ptr<juce::XmlElement> readChunk (const void* data, int sizeInBytes);
