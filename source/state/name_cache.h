// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <map>
#include <optional>

/** Orders texts without regard to case. */
struct IgnoringCase
{
    bool operator() (const juce::String& a, const juce::String& b) const noexcept
    {
        return a.compareIgnoreCase (b) < 0;
    }
};

/** Display names of presets by path, relative to the preset folder with "/" between. */
using PresetNames = std::map<juce::String, juce::String, IgnoringCase>;

/** The file of names that the browser keeps in a preset folder, there or not. Any thread. */
juce::File nameCacheFile (const juce::File& presetFolder);

/** Reads the file of names in a preset folder, whatever its version; empty if there is none that can be
    read. Any thread. */
PresetNames readNameCache (const juce::File& presetFolder);

/** What the browser shows of a preset without opening it. */
struct KnownPreset
{
    juce::String name;  ///< display name; may be empty
    int type =
        2;  ///< index in the browser's list of node types: 2 a preset, 3 one that holds audio

    bool operator== (const KnownPreset&) const = default;
};

/** Known presets by path, relative to the preset folder with "/" between; in the order of the code points. */
using KnownPresets = std::map<juce::String, KnownPreset>;

/** What a file of names holds. */
struct NameCacheContents
{
    int version = 0;
    int fileCount = -1;
    juce::String pluginName;
    KnownPresets presets;
};

/** Reads the bytes of a file of names; empty if they are none. Any thread. */
std::optional<NameCacheContents> readNameCacheContents (const juce::MemoryBlock& bytes);

/** The file of names in a preset folder, with what it held when it was last read: the same
    bytes need no second parse. One thread at a time. */
class NameCache
{
public:
    enum class Freshness
    {
        stale,    ///< the names are what they were
        same,     ///< the file holds just the names that were known
        replaced  ///< the names are now those of the file
    };

    /** Replaces known by the file's names if the file is current: it is if it has the present
        version, and if its count is that of the preset files on disk. Opens no preset. */
    Freshness read (const juce::File& presetFolder, int filesOnDisk, KnownPresets& known);

    /** Writes the file, unless the last read found just this in it; false if that failed, with
        the old file as it was. */
    bool write (const juce::File& presetFolder, const juce::String& pluginName,
                const KnownPresets& known) const;

private:
    juce::MemoryBlock bytes;  ///< of the file at the last read
    std::optional<NameCacheContents>
        contents;  ///< what they mean; empty if they are no file of names
};
