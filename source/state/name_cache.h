// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <map>

/** Orders texts without regard to case. */
struct IgnoringCase
{
    bool operator() (const juce::String& a, const juce::String& b) const noexcept
    {
        return a.compareIgnoreCase (b) < 0;
    }
};

/** Display names of presets by path, relative to the preset folder with "/" between. */
using PresetNames = std::map<juce::String, juce::String, IgnoringCase>;

/** The file of names that the browser keeps in a preset folder, there or not. Any thread. */
juce::File nameCacheFile (const juce::File& presetFolder);

/** Reads the file of names in a preset folder, whatever its version; empty if there is none that can be
    read. Any thread. */
PresetNames readNameCache (const juce::File& presetFolder);

/** What the browser shows of a preset without opening it. */
struct KnownPreset
{
    juce::String name;  ///< display name; may be empty
    int type =
        2;  ///< index in the browser's list of node types: 2 a preset, 3 one that holds audio
};

/** Known presets by path, relative to the preset folder with "/" between; in the order of the code points. */
using KnownPresets = std::map<juce::String, KnownPreset>;

/** Replaces known by the file of names in a preset folder. False, with known as it was, unless the file is
    of the present version and its count is that of the preset files on disk: the one test of whether it is
    current. Opens no preset. Any thread. */
bool readCurrentNameCache (const juce::File& presetFolder, KnownPresets& known);

/** Writes the file of names; false if that failed, with the old file as it was. Any thread. */
bool writeNameCache (const juce::File& presetFolder, const juce::String& pluginName,
                     const KnownPresets& known);
