// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

/** 1000 words each to make up names of presets from: lower case, no word twice. */
extern const juce::StringArray presetAdjectives;
extern const juce::StringArray presetNouns;
