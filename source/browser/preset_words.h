// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

/** 1000 words each to make up names of presets from: lower case, no word twice. Any adjective may meet any noun
    and be shown to anyone, so people, bodies, beliefs, parties and weapons are not among the nouns, nor most
    animals and food. */
extern const juce::StringArray presetAdjectives;
extern const juce::StringArray presetNouns;
