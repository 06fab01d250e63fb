// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/global_settings.h"

#include "state/document_guard.h"
#include "state/whole_file.h"

// Stored: never edit. The name says text though the content is XML.
static constexpr auto kSettingsFile = "Velkor_globals.txt";
static constexpr auto kSettingsTag = "VelkorGlobals";
static constexpr auto kUiWidth = "uiWidth";
static constexpr auto kUiHeight = "uiHeight";
static constexpr auto kSaveAudio = "saveAudio";
static constexpr auto kToolTips = "toolTips";
static constexpr auto kAnimationPlayer = "animationPlayer";
static constexpr auto kGlowRenderer = "glowRenderer";

juce::File globalSettingsFile (const juce::File& presetFolder)
{
    return presetFolder.getParentDirectory().getChildFile (kSettingsFile);
}

void readGlobalSettings (const juce::File& file, GlobalSettings& settings)
{
    if (! file.existsAsFile())
    {
        writeGlobalSettings (file, settings);
        return;
    }

    const auto document = parseDocument (file);

    if (document == nullptr)
        return;

    settings.uiWidth = document->getIntAttribute (kUiWidth);
    settings.uiHeight = document->getIntAttribute (kUiHeight);
    settings.saveAudio = document->getBoolAttribute (kSaveAudio);
    settings.toolTips = document->getBoolAttribute (kToolTips);
    settings.animationPlayer = document->getBoolAttribute (kAnimationPlayer);
    settings.glowRenderer = document->getBoolAttribute (kGlowRenderer);
}

void writeGlobalSettings (const juce::File& file, const GlobalSettings& settings)
{
    juce::XmlElement document (kSettingsTag);
    document.setAttribute (kUiWidth, settings.uiWidth);
    document.setAttribute (kUiHeight, settings.uiHeight);
    document.setAttribute (kToolTips, settings.toolTips ? 1 : 0);
    document.setAttribute (kAnimationPlayer, settings.animationPlayer ? 1 : 0);
    document.setAttribute (kGlowRenderer, settings.glowRenderer ? 1 : 0);
    replaceWithDocument (file, document,
                         Durable::no);  // called all the time while a window is dragged
}
