// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <vector>

/** What lies in the preset folder and below it, from one walk of the disk. The next walk reads
    only those folders again that may have changed. Any thread, one at a time. */
class FolderSnapshot
{
public:
    /** A folder, or a visible preset file. */
    struct Entry
    {
        juce::String name;
        bool isFolder = false;  ///< a folder, or a link to one

        /** What is in the folder; nullptr if that is left out, as a link that leads back up is. */
        std::unique_ptr<FolderSnapshot> contents;
    };

    /** Reads nothing yet. */
    explicit FolderSnapshot (const juce::File& folder);

    /** Looks at the disk. */
    void refresh();

    /** A number that is another one after each refresh that found other entries; no two
        snapshots share one. */
    int getVersion() const { return version; }

    /** Folders, hidden ones included, and visible preset files; in the order of comesBefore. */
    const std::vector<Entry>& getEntries() const { return entries; }

    /** Number of preset files here and below, hidden ones included; the extension's case is
        ignored, and links that lead back up are left out. */
    int countPresets() const;

private:
    /** When a folder was changed last, and which one it is. Times in nanoseconds since 1970. */
    struct Stamp
    {
        std::uint64_t device = 0, inode = 0;
        std::int64_t modified = 0, changed = 0;

        bool operator== (const Stamp&) const = default;
    };

    using Trail = std::vector<std::filesystem::path>;

    explicit FolderSnapshot (std::filesystem::path folder);
    static Stamp stampOf (const std::filesystem::path& folder);
    bool refresh (Trail& trail);
    bool read (const Trail& trail);
    std::unique_ptr<FolderSnapshot> below (const juce::String& name, bool isLink,
                                           const Trail& trail) const;
    bool keepContents (std::vector<Entry>& before);

    std::filesystem::path path;
    std::filesystem::path place;  ///< real one, where path is a link; else empty
    Stamp stamp;                  ///< of the moment before entries were read
    bool isSettled = false;       ///< a later change must show in the stamp
    int version = 0;              ///< of the top folder
    int ownPresets = 0;           ///< preset files right here, hidden ones included
    std::vector<Entry> entries;
};
