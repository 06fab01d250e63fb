// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/name_cache.h"

#include "state/document_guard.h"

// Stored: never edit.
static constexpr auto kCacheFile = "preset_info.xml";
static constexpr auto kCacheTag = "PresetCache";
static constexpr auto kPresetTag = "Preset";
static constexpr auto kPath = "path";
static constexpr auto kName = "name";

juce::File nameCacheFile (const juce::File& presetFolder)
{
    return presetFolder.getChildFile (kCacheFile);
}

PresetNames readNameCache (const juce::File& presetFolder)
{
    PresetNames names;
    const auto cache = parseDocument (nameCacheFile (presetFolder));

    if (cache == nullptr || ! hasTag (*cache, kCacheTag))
        return names;

    for (const auto* preset : cache->getChildIterator())
        if (hasTag (*preset, kPresetTag))
            names[preset->getStringAttribute (kPath)] = preset->getStringAttribute (kName);

    return names;
}
