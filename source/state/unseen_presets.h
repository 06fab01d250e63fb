// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "state/name_cache.h"

/** Whether the browser passes over a file or folder of this name, and over all below it: hidden ones and the folders
    that archives made on a Mac carry along. Any thread. */
bool isPassedOver (const juce::String& name);

/** Enters the presets that the browser passes over, unopened and without a name. The file of names has to hold as many as there
    are on disk, or each start opens every preset. Presets below numLevels levels of folders, the preset folder
    being the first, stay out. Any thread. */
void addUnseenPresets (const juce::File& presetFolder, int numLevels, KnownPresets& known);
