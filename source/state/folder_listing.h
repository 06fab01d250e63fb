// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <filesystem>
#include <functional>
#include <vector>

/** Extension of preset files, its dot included; compared without regard to case. Stored: never edit. */
inline constexpr auto kPresetExtension = ".zbpreset";

/** A file or a folder in a folder. */
struct FolderEntry
{
    juce::File file;
    bool isFolder = false;  ///< a folder, or a link to one
};

/** The file that a path below a folder names, whatever it begins with: the framework's getChildFile takes a name
    that begins with "~" for a user's home. A path with ".." may lead out of the folder. Any thread. */
juce::File childOf (const juce::File& folder, const juce::String& path);

/** Gets the name of an entry of a folder, whether it is a folder or a link to one, and whether
    it is a link. */
using VisitEntry = std::function<void (const juce::String& name, bool isFolder, bool isLink)>;

/** Calls visit with each entry of a folder that a File can name; hidden ones included, in no
    order. Any thread. */
void forEachEntry (const std::filesystem::path& folder, const VisitEntry& visit);

/** The name of an entry as a path. Any thread. */
std::filesystem::path fileNamed (const juce::String& name);

/** All files and folders right in a folder, hidden ones included, in no order; empty if it can't be read. Leaves
    out names that are no UTF-8: no File can have them, and the framework's own listing writes beyond its memory
    there. Asks the system about links alone, where that one asks about every file. Any thread. */
std::vector<FolderEntry> listEntries (const juce::File& folder);

/** The same of a folder and all folders below it, those behind links included; leaves out a link that leads
    back to a folder on the way to it. Any thread. */
std::vector<FolderEntry> listEntriesBelow (const juce::File& folder);

/** The preset files in a folder and below it, by the same rules but without those that are hidden or in a hidden
    folder, in the order of comesBefore. Any thread. */
juce::Array<juce::File> listPresetsBelow (const juce::File& folder);

/** The order in which presets and folders are shown: by path, ignoring case; case decides between those that differ
    in nothing else, which the system may tell apart. Any thread. */
bool comesBefore (const juce::File& a, const juce::File& b);

/** Deletes a folder with all that is in it, whatever the names; of a link, the link alone. What can't be deleted
    stays, with the folders on the way to it, and the answer is false then. Any thread. */
bool deleteFolder (const juce::File& folder);
