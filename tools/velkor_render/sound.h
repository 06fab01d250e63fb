// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

class VelkorAudioProcessor;

/** A sound as a document. */
struct Sound
{
    /** A preset's path as the user wrote it, or the title of a factory preset; empty for a new instance's. */
    std::string preset;
    std::unique_ptr<juce::XmlElement> document;
};

/** Finds what --preset names: a factory preset by its name, title or number, else a file. Without a preset it
    is the default that is shipped, not the one that the user may have saved over it. Fails if there is no such
    thing or if it isn't a well-formed document. */
Sound readSound (const std::optional<std::string>& preset);

/** Loads it as the plug-in loads it for a host. Fails if the document is none of the plug-in's. Not while a
    block runs. */
void loadSound (VelkorAudioProcessor& processor, const Sound& sound);

/** Writes the present patch to a preset file, whole or not at all, and names the preset after the file. Makes
    the folder if it is missing. Fails if that can't be done. Not while a block runs. */
void savePreset (VelkorAudioProcessor& processor, const std::filesystem::path& path);
