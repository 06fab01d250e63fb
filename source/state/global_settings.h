// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

/** What belongs to the machine rather than to a session or a preset, with the values of a machine that has
    no file of them yet. */
struct GlobalSettings
{
    int uiWidth = 900;            ///< editor, pixels
    int uiHeight = 300;           ///< editor, pixels; kept, but the width alone decides
    bool saveAudio = false;       ///< read and not written: a switch of other products of the frame
    bool toolTips = true;         ///< whether the editor shows tooltips
    bool animationPlayer = true;  ///< kept for other products of the frame
    bool glowRenderer = true;     ///< kept for other products of the frame
};

/** The settings file beside a preset folder, there or not. Any thread. */
juce::File globalSettingsFile (const juce::File& presetFolder);

/** Reads the settings, or writes the given ones if there is no file. A file that cannot be parsed changes
    nothing; one that can replaces everything, what it lacks becoming 0 and off. Any thread. */
void readGlobalSettings (const juce::File& file, GlobalSettings& settings);

/** Writes the file whole; a failure leaves the old one and is not told. Any thread. */
void writeGlobalSettings (const juce::File& file, const GlobalSettings& settings);
