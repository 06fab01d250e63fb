// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/folder_listing.h"

#include "state/utf8.h"
#include "state/whole_file.h"

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#if ! JUCE_WINDOWS
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#endif

namespace fs = std::filesystem;

static juce::String textOf (const std::u8string& path)
{
    return juce::String::fromUTF8 (reinterpret_cast<const char*> (path.data()),
                                   static_cast<int> (path.size()));
}

#if JUCE_WINDOWS

void forEachEntry (const fs::path& folder, const VisitEntry& visit)
{
    std::error_code failure;

    for (fs::directory_iterator
             entry (folder, fs::directory_options::skip_permission_denied, failure),
         end;
         ! failure && entry != end; entry.increment (failure))
    {
        std::error_code unknown;
        visit (textOf (entry->path().filename().u8string()), entry->is_directory (unknown),
               entry->is_symlink (unknown));
    }
}

#else

// The standard library's iterator makes several paths of each entry, which takes twice as long as
// all the rest.
void forEachEntry (const fs::path& folder, const VisitEntry& visit)
{
    const std::unique_ptr<DIR, int (*) (DIR*)> directory (opendir (folder.c_str()), closedir);

    if (directory == nullptr)
        return;

    while (const auto* const entry = readdir (directory.get()))
    {
        const std::string_view name (entry->d_name);

        if (name == "." || name == ".." || ! isUtf8 (name))
            continue;

        int type = entry->d_type;
        struct stat status
        {
        };

        // The system is asked only where the folder itself doesn't tell.
        if (type == DT_UNKNOWN &&
            fstatat (dirfd (directory.get()), entry->d_name, &status, AT_SYMLINK_NOFOLLOW) == 0)
            type = S_ISLNK (status.st_mode) ? DT_LNK : S_ISDIR (status.st_mode) ? DT_DIR : DT_REG;

        const bool isLink = type == DT_LNK;
        const bool isFolder =
            isLink ? fstatat (dirfd (directory.get()), entry->d_name, &status, 0) == 0 &&
                         S_ISDIR (status.st_mode)
                   : type == DT_DIR;
        visit (juce::String::fromUTF8 (name.data(), static_cast<int> (name.size())), isFolder,
               isLink);
    }
}

#endif

fs::path fileNamed (const juce::String& name)
{
    const auto* const begin = reinterpret_cast<const char8_t*> (name.toRawUTF8());
    return fs::path (begin, begin + name.getNumBytesAsUTF8());
}

juce::File childOf (const juce::File& folder, const juce::String& path)
{
    return folder.getChildFile ("./" + path);
}

std::vector<FolderEntry> listEntries (const juce::File& folder)
{
    std::vector<FolderEntry> entries;
    forEachEntry (filesystemPath (folder),
                  [&] (const juce::String& name, bool isFolder, bool) {
                      entries.push_back ({ childOf (folder, name), isFolder });
                  });
    return entries;
}

/** Adds what is in a folder and in those below it. The trail holds the real places of the
    folders on the way. */
static void addEntriesBelow (const fs::path& folder, std::vector<fs::path>& trail,
                             std::vector<FolderEntry>& entries)
{
    forEachEntry (folder,
                  [&] (const juce::String& name, bool isFolder, bool isLink)
                  {
                      std::error_code failure;
                      const auto path = folder / fileNamed (name);
                      auto place = ! isFolder ? fs::path()
                                   : isLink   ? fs::canonical (path, failure)
                                              : trail.back() / path.filename();

                      if (failure || std::find (trail.begin(), trail.end(), place) != trail.end())
                          return;

                      entries.push_back ({ juce::File (textOf (path.u8string())), isFolder });

                      if (! isFolder)
                          return;

                      trail.push_back (std::move (place));
                      addEntriesBelow (path, trail, entries);
                      trail.pop_back();
                  });
}

std::vector<FolderEntry> listEntriesBelow (const juce::File& folder)
{
    std::vector<FolderEntry> entries;
    std::error_code failure;
    const auto top = filesystemPath (folder);
    std::vector<fs::path> trail { fs::canonical (top, failure) };

    if (! failure)
        addEntriesBelow (top, trail, entries);

    return entries;
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
