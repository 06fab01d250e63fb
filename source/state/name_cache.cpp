// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/name_cache.h"

#include "state/document_guard.h"
#include "state/folder_listing.h"
#include "state/whole_file.h"

#include <algorithm>

// Stored: never edit.
static constexpr auto kCacheFile = "preset_info.xml";
static constexpr auto kCacheTag = "PresetCache";
static constexpr auto kPresetTag = "Preset";
static constexpr auto kPath = "path";
static constexpr auto kName = "name";
static constexpr auto kType = "type";
static constexpr auto kVersion = "version";
static constexpr auto kPluginName = "pluginName";
static constexpr auto kFileCount = "fileCount";
static constexpr int kPresentVersion = 2;

/** Of the file of names, which has four names for each preset and some hundred bytes: it must not count as none
    with a large collection. This is room for 130,000 presets. */
static constexpr DocumentLimits kCacheLimits { 32u << 20, 1 << 19 };

juce::File nameCacheFile (const juce::File& presetFolder)
{
    return presetFolder.getChildFile (kCacheFile);
}

PresetNames readNameCache (const juce::File& presetFolder)
{
    PresetNames names;
    const auto cache = parseDocument (nameCacheFile (presetFolder), kCacheLimits);

    if (cache == nullptr || ! hasTag (*cache, kCacheTag))
        return names;

    for (const auto* preset : cache->getChildIterator())
        if (hasTag (*preset, kPresetTag))
            names[preset->getStringAttribute (kPath)] = preset->getStringAttribute (kName);

    return names;
}

bool readCurrentNameCache (const juce::File& presetFolder, KnownPresets& known)
{
    const auto cache = parseDocument (nameCacheFile (presetFolder), kCacheLimits);

    if (cache == nullptr || ! hasTag (*cache, kCacheTag) ||
        cache->getIntAttribute (kVersion) != kPresentVersion ||
        cache->getIntAttribute (kFileCount, -1) != countFilesBelow (presetFolder, kPresetExtension))
        return false;

    known.clear();

    // The file is in the map's order, so that each entry goes to the end.
    for (const auto* preset : cache->getChildIterator())
        if (hasTag (*preset, kPresetTag))
            known.insert_or_assign (known.end(), preset->getStringAttribute (kPath),
                                    KnownPreset { preset->getStringAttribute (kName),
                                                  preset->getIntAttribute (kType, 2) });

    return true;
}

bool writeNameCache (const juce::File& presetFolder, const juce::String& pluginName,
                     const KnownPresets& known)
{
    juce::XmlElement cache (kCacheTag);
    cache.setAttribute (kVersion, kPresentVersion);
    cache.setAttribute (kPluginName, pluginName);
    cache.setAttribute (kFileCount, static_cast<int> (known.size()));

    // From the end: an element finds its last child by walking past all the others.
    std::for_each (known.rbegin(), known.rend(),
                   [&cache] (const KnownPresets::value_type& entry)
                   {
                       auto* const preset = new juce::XmlElement (kPresetTag);
                       cache.prependChildElement (preset);
                       preset->setAttribute (kPath, entry.first);
                       preset->setAttribute (kName, entry.second.name);
                       preset->setAttribute (kType, entry.second.type);
                   });

    return replaceWithDocument (nameCacheFile (presetFolder), cache, Durable::no);
}
