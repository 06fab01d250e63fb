// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "state/folder_listing.h"
#include "state/name_cache.h"

#include <juce_core/juce_core.h>

/** Name and type that a preset file tells, in the dialect of the product of that name; an empty name if the
    file tells none or can't be read. Opens the file. Any thread. */
KnownPreset readPresetFile (const juce::File& file, const juce::String& pluginName);

/** Path below the preset folder, with "/" between on every system. Any thread. */
juce::String relativePresetPath (const juce::File& file, const juce::File& presetFolder);
