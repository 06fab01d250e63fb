// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/folder_listing.h"

#include "state/whole_file.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>

namespace fs = std::filesystem;

/** Calls visit with each entry of a folder. */
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
        visit (*entry, entry->is_directory (unknown));
    }
}

static juce::String textOf (const std::u8string& path)
{
    return juce::String::fromUTF8 (reinterpret_cast<const char*> (path.c_str()));
}

std::vector<FolderEntry> listEntries (const juce::File& folder)
{
    std::vector<FolderEntry> entries;
    forEachEntry (
        filesystemPath (folder),
        [&] (const fs::directory_entry& entry, bool isFolder)
        {
            entries.push_back (
                { folder.getChildFile (textOf (entry.path().filename().u8string())), isFolder });
        });
    return entries;
}

static bool hasExtension (const fs::path& file, juce::StringRef extension)
{
    return textOf (file.filename().u8string()).endsWithIgnoreCase (extension);
}

/** The trail holds the real places of the folders on the way. */
static int countBelow (const fs::path& folder, juce::StringRef extension,
                       std::vector<fs::path>& trail)
{
    int count = 0;
    forEachEntry (folder,
                  [&] (const fs::directory_entry& entry, bool isFolder)
                  {
                      if (! isFolder)
                      {
                          count += hasExtension (entry.path(), extension) ? 1 : 0;
                          return;
                      }

                      std::error_code failure;
                      auto place = entry.is_symlink (failure)
                                       ? fs::canonical (entry.path(), failure)
                                       : trail.back() / entry.path().filename();

                      if (failure || std::find (trail.begin(), trail.end(), place) != trail.end())
                          return;

                      trail.push_back (std::move (place));
                      count += countBelow (entry.path(), extension, trail);
                      trail.pop_back();
                  });
    return count;
}

int countFilesBelow (const juce::File& folder, juce::StringRef extension)
{
    std::error_code failure;
    const auto top = filesystemPath (folder);
    std::vector<fs::path> trail { fs::canonical (top, failure) };
    return failure ? 0 : countBelow (top, extension, trail);
}
