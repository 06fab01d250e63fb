// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/name_cache.h"

#include "state/document_guard.h"
#include "state/name_cache_scanner.h"
#include "state/whole_file.h"

#include <algorithm>
#include <utility>

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
    with a large collection. */
static constexpr int kMaxPresets = (1 << 17) - 1;
static constexpr DocumentLimits kCacheLimits { 32u << 20, 4 * (kMaxPresets + 1) };

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

/** The slow way: by the parser of documents, with all that it allows. */
static std::optional<NameCacheContents> parseNameCache (const juce::MemoryBlock& bytes)
{
    const auto cache = parseDocument (bytes, kCacheLimits);

    if (cache == nullptr || ! hasTag (*cache, kCacheTag))
        return {};

    NameCacheContents found { cache->getIntAttribute (kVersion),
                              cache->getIntAttribute (kFileCount, -1),
                              cache->getStringAttribute (kPluginName),
                              {} };

    // The file is in the map's order, so that each entry goes to the end.
    for (const auto* preset : cache->getChildIterator())
        if (hasTag (*preset, kPresetTag))
            found.presets.insert_or_assign (found.presets.end(), preset->getStringAttribute (kPath),
                                            KnownPreset { preset->getStringAttribute (kName),
                                                          preset->getIntAttribute (kType, 2) });

    return found;
}

std::optional<NameCacheContents> readNameCacheContents (const juce::MemoryBlock& bytes)
{
    auto scanned = scanNameCache ({ bytes.begin(), bytes.getSize() }, kMaxPresets);
    return scanned ? std::move (scanned) : parseNameCache (bytes);
}

// --- the file ------------------------------------------------------------------------------------

NameCache::Freshness NameCache::read (const juce::File& presetFolder, int filesOnDisk,
                                      KnownPresets& known)
{
    juce::MemoryBlock present;

    if (! readRegularFile (nameCacheFile (presetFolder), kCacheLimits.bytes, present))
        present.reset();

    if (present != bytes)
    {
        contents = readNameCacheContents (present);
        bytes.swapWith (present);
    }

    if (! contents || contents->version != kPresentVersion || contents->fileCount != filesOnDisk)
        return Freshness::stale;

    if (known == contents->presets)
        return Freshness::same;

    known = contents->presets;
    return Freshness::replaced;
}

bool NameCache::write (const juce::File& presetFolder, const juce::String& pluginName,
                       const KnownPresets& known) const
{
    if (contents && contents->version == kPresentVersion && contents->pluginName == pluginName &&
        contents->fileCount == static_cast<int> (known.size()) && contents->presets == known)
        return true;  // the file holds just this

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

    // The next read takes what is there then.
    return replaceWithDocument (nameCacheFile (presetFolder), cache, Durable::no);
}
