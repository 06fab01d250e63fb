// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/preset_listing.h"

#include "browser/browser_strings.h"
#include "state/document_guard.h"

// --- dialects ------------------------------------------------------------------------------------------

static juce::String nameIn (const juce::XmlElement& document, const juce::String& pluginName)
{
    if (pluginName == "Gantry 2" || pluginName == "Corvid" || pluginName == "Mulberry2")
    {
        const auto* const pluginState = findChild (document, "PluginState");
        return pluginState != nullptr ? pluginState->getStringAttribute ("PresetName")
                                      : juce::String();
    }

    return document.getStringAttribute (document.hasAttribute ("presetName") ? "presetName"
                                                                             : "PresetName");
}

static bool holdsAudio (const juce::XmlElement& document, const juce::String& pluginName)
{
    if (document.hasAttribute ("Sample"))
        return true;

    if (pluginName != "Tansy")
        return false;

    const auto* const audio = findChild (document, "AudioData");
    return audio != nullptr && audio->getFirstChildElement() != nullptr;
}

KnownPreset readPresetFile (const juce::File& file, const juce::String& pluginName)
{
    const auto document = parseDocument (file);

    if (document == nullptr)
        return { {}, kPresetNode };

    return { nameIn (*document, pluginName),
             holdsAudio (*document, pluginName) ? kSampleNode : kPresetNode };
}

juce::String relativePresetPath (const juce::File& file, const juce::File& presetFolder)
{
    const auto path = file.getRelativePathFrom (presetFolder);
    return juce::File::getSeparatorChar() == '/'
               ? path
               : path.replaceCharacter (juce::File::getSeparatorChar(), '/');
}
