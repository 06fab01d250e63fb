// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/folder_listing.h"

#include "state/utf8.h"
#include "state/whole_file.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>

namespace fs = std::filesystem;

static bool isNameable (const fs::path& name)
{
    const auto bytes = name.u8string();
    return isUtf8 ({ reinterpret_cast<const char*> (bytes.data()), bytes.size() });
}

/** Calls visit with each entry of a folder that a File can name. */
template <typename Visit>
static void forEachEntry (const fs::path& folder, Visit&& visit)
{
    std::error_code failure;

    for (fs::directory_iterator
             entry (folder, fs::directory_options::skip_permission_denied, failure),
         end;
         ! failure && entry != end; entry.increment (failure))
    {
        std::error_code unknown;

        if (isNameable (entry->path().filename()))
            visit (*entry, entry->is_directory (unknown));
    }
}

static juce::String textOf (const std::u8string& path)
{
    return juce::String::fromUTF8 (reinterpret_cast<const char*> (path.c_str()));
}

static juce::String nameOf (const fs::directory_entry& entry)
{
    return textOf (entry.path().filename().u8string());
}

juce::File childOf (const juce::File& folder, const juce::String& path)
{
    return folder.getChildFile ("./" + path);
}

std::vector<FolderEntry> listEntries (const juce::File& folder)
{
    std::vector<FolderEntry> entries;
    forEachEntry (filesystemPath (folder),
                  [&] (const fs::directory_entry& entry, bool isFolder) {
                      entries.push_back ({ childOf (folder, nameOf (entry)), isFolder });
                  });
    return entries;
}

/** Calls visit with each entry of a folder and of those below it. The trail holds the real places of the
    folders on the way. */
template <typename Visit>
static void forEachBelow (const fs::path& folder, std::vector<fs::path>& trail, Visit& visit)
{
    forEachEntry (folder,
                  [&] (const fs::directory_entry& entry, bool isFolder)
                  {
                      if (! isFolder)
                      {
                          visit (entry, false);
                          return;
                      }

                      std::error_code failure;
                      auto place = entry.is_symlink (failure)
                                       ? fs::canonical (entry.path(), failure)
                                       : trail.back() / entry.path().filename();

                      if (failure || std::find (trail.begin(), trail.end(), place) != trail.end())
                          return;

                      visit (entry, true);
                      trail.push_back (std::move (place));
                      forEachBelow (entry.path(), trail, visit);
                      trail.pop_back();
                  });
}

template <typename Visit>
static void forEachBelow (const juce::File& folder, Visit&& visit)
{
    std::error_code failure;
    const auto top = filesystemPath (folder);
    std::vector<fs::path> trail { fs::canonical (top, failure) };

    if (! failure)
        forEachBelow (top, trail, visit);
}

std::vector<FolderEntry> listEntriesBelow (const juce::File& folder)
{
    std::vector<FolderEntry> entries;
    forEachBelow (
        folder,
        [&] (const fs::directory_entry& entry, bool isFolder) {
            entries.push_back ({ juce::File (textOf (entry.path().u8string())), isFolder });
        });
    return entries;
}

int countFilesBelow (const juce::File& folder, juce::StringRef extension)
{
    int count = 0;
    forEachBelow (folder,
                  [&] (const fs::directory_entry& entry, bool isFolder) {
                      count += ! isFolder && nameOf (entry).endsWithIgnoreCase (extension) ? 1 : 0;
                  });
    return count;
}

/** Whether file, which is below folder, is hidden or in a hidden folder. */
static bool isOutOfSight (juce::File file, const juce::File& folder)
{
    for (; file != folder && ! file.isRoot(); file = file.getParentDirectory())
        if (file.isHidden())
            return true;

    return false;
}

juce::Array<juce::File> listPresetsBelow (const juce::File& folder)
{
    juce::Array<juce::File> presets;

    for (const auto& [file, isFolder] : listEntriesBelow (folder))
        if (! isFolder && file.hasFileExtension (kPresetExtension) && ! isOutOfSight (file, folder))
            presets.add (file);

    std::sort (presets.begin(), presets.end(), comesBefore);
    return presets;
}

bool comesBefore (const juce::File& a, const juce::File& b)
{
    const auto& pathA = a.getFullPathName();
    const auto& pathB = b.getFullPathName();
    const int order = pathA.compareIgnoreCase (pathB);
    return order != 0 ? order < 0 : pathA < pathB;
}

static bool deleteTree (const fs::path& path)
{
    std::error_code failure;
    bool isEmpty = true;

    if (fs::is_directory (fs::symlink_status (path, failure)))
        for (fs::directory_iterator entry (path, failure), end; ! failure && entry != end;
             entry.increment (failure))
            isEmpty = deleteTree (entry->path()) && isEmpty;

    if (isEmpty)
        fs::remove (path, failure);

    return isEmpty && ! failure;
}

bool deleteFolder (const juce::File& folder)
{
    return deleteTree (filesystemPath (folder));
}
