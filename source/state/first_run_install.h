// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <memory>

/** The folder that holds factory and user presets: "Music/Zubrow Labs/Velkor/Presets" in the user's home, there
    or not. Any thread. */
juce::File defaultPresetFolder();

/** Unpacks the archive of presets into the folder unless that has a "User", be it folder or file: nothing
    else tells a first start from a later one. What is there under the name of a factory preset is replaced;
    other files stay. The files come into place whole, one by one, and "User" last, so whoever is
    interrupted, or runs out of disk, starts as if for the first time again; several may be at it at once.
    Nothing is reported. Any thread. */
void installFirstRunContent (const juce::File& presetFolder, const void* archive,
                             std::size_t numBytes);

/** Parses the preset that every new instance loads, "User/Default.zbpreset"; empty if there is none that can
    be parsed. Any thread. */
std::unique_ptr<juce::XmlElement> readDefaultPreset (const juce::File& presetFolder);
