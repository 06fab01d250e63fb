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

/** The file of names that the browser keeps in a preset folder. */
juce::File nameCacheFile (const juce::File& presetFolder);

/** Reads the file of names in a preset folder, whatever its version; empty if there is none that can be
    read. Any thread. */
PresetNames readNameCache (const juce::File& presetFolder);
