// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/folder_snapshot.h"

#include "state/folder_listing.h"
#include "state/whole_file.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#if JUCE_LINUX
#include <sys/stat.h>
#include <sys/vfs.h>
#endif

namespace fs = std::filesystem;

/** Two changes within this time may get the same stamp from a coarse clock, ns. */
static constexpr std::int64_t kClockStep = 2'000'000'000;

// --- stamps --------------------------------------------------------------------------------------

FolderSnapshot::Stamp FolderSnapshot::stampOf (const fs::path& folder)
{
#if JUCE_LINUX
    struct stat status
    {
    };

    if (stat (folder.c_str(), &status) == 0)
    {
        const auto nanoseconds = [] (const timespec& time)
        { return std::int64_t { time.tv_sec } * 1'000'000'000 + time.tv_nsec; };

        return { status.st_dev, status.st_ino, nanoseconds (status.st_mtim),
                 nanoseconds (status.st_ctim) };
    }
#else
    juce::ignoreUnused (folder);  // never settled: each walk reads every folder
#endif

    return {};
}

/** Whether a change in a folder always shows in its stamp: not on every network or FUSE file
    system. */
static bool hasReliableStamps (const fs::path& folder)
{
#if JUCE_LINUX
    struct statfs system
    {
    };

    if (statfs (folder.c_str(), &system) != 0)
        return false;

    switch (static_cast<std::uint32_t> (system.f_type))  // statfs(2) has these numbers
    {
    case 0x0000ef53:  // ext2 to ext4
    case 0x58465342:  // XFS
    case 0x9123683e:  // Btrfs
    case 0xf2f52010:  // F2FS
    case 0x2fc12fc1:  // ZFS
    case 0x01021994:  // tmpfs
    case 0x794c7630:  // overlayfs
        return true;
    default:
        return false;
    }
#else
    juce::ignoreUnused (folder);
    return false;
#endif
}

static std::int64_t nanosecondsNow()
{
    using namespace std::chrono;
    return duration_cast<nanoseconds> (system_clock::now().time_since_epoch()).count();
}

// --- names ---------------------------------------------------------------------------------------

/** Folds names so that their bytes compare as comesBefore does. */
class NameFolder
{
public:
    NameFolder()
    {
        for (std::size_t i = 0; i < ascii.size(); ++i)
            ascii[i] = juce::CharacterFunctions::toUpperCase (static_cast<juce::juce_wchar> (i));
    }

    std::string folded (const juce::String& name) const
    {
        std::string text;
        text.reserve (name.getNumBytesAsUTF8());

        for (auto c = name.getCharPointer(); ! c.isEmpty();)
        {
            const juce::juce_wchar character = *c;
            ++c;
            append (text, character < kAscii ? ascii[static_cast<unsigned char> (character)]
                                             : juce::CharacterFunctions::toUpperCase (character));
        }

        return text;
    }

private:
    static constexpr juce::juce_wchar kAscii = 128;

    static void append (std::string& text, juce::juce_wchar character)
    {
        if (character < kAscii)
        {
            text += static_cast<char> (character);
            return;
        }

        // The order of UTF-8 is that of the code points.
        std::array<char, 4> bytes {};
        juce::CharPointer_UTF8 end (bytes.data());
        end.write (character);
        text.append (bytes.data(), static_cast<std::size_t> (end.getAddress() - bytes.data()));
    }

    std::array<juce::juce_wchar, static_cast<std::size_t> (kAscii)> ascii {};
};

static bool isPresetName (const juce::String& name)
{
    return std::string_view (name.toRawUTF8()).ends_with (kPresetExtension) ||
           name.endsWithIgnoreCase (kPresetExtension);
}

static bool areSame (const std::vector<FolderSnapshot::Entry>& a,
                     const std::vector<FolderSnapshot::Entry>& b)
{
    return std::equal (a.begin(), a.end(), b.begin(), b.end(),
                       [] (const FolderSnapshot::Entry& x, const FolderSnapshot::Entry& y)
                       {
                           return x.isFolder == y.isFolder && x.name == y.name &&
                                  (x.contents == nullptr) == (y.contents == nullptr);
                       });
}

// --- walk ----------------------------------------------------------------------------------------

FolderSnapshot::FolderSnapshot (const juce::File& folder) : FolderSnapshot (filesystemPath (folder))
{
}

FolderSnapshot::FolderSnapshot (fs::path folder) : path (std::move (folder)) {}

int FolderSnapshot::countPresets() const
{
    int count = ownPresets;

    for (const auto& entry : entries)
        if (entry.contents != nullptr)
            count += entry.contents->countPresets();

    return count;
}

void FolderSnapshot::refresh()
{
    static std::atomic<int> lastVersion { 0 };
    std::error_code failure;
    Trail trail { fs::canonical (path, failure) };
    bool isNew = version == 0;

    if (! failure)
        isNew = refresh (trail) || isNew;
    else
    {
        ownPresets = 0;
        isSettled = false;
        isNew = ! std::exchange (entries, {}).empty() || isNew;
    }

    if (isNew)
        version = ++lastVersion;
}

bool FolderSnapshot::refresh (Trail& trail)
{
    const auto now = stampOf (path);
    bool isNew = false;

    if (! isSettled || now != stamp)
    {
        stamp = now;
        isSettled = now.inode != 0 &&
                    nanosecondsNow() - std::max (now.modified, now.changed) > kClockStep &&
                    hasReliableStamps (path);
        isNew = read (trail);
    }

    for (const auto& entry : entries)
        if (auto* const below = entry.contents.get())
        {
            trail.push_back (below->place.empty() ? trail.back() / below->path.filename()
                                                  : below->place);
            isNew = below->refresh (trail) || isNew;
            trail.pop_back();
        }

    return isNew;
}

bool FolderSnapshot::read (const Trail& trail)
{
    static const NameFolder fold;
    std::vector<std::pair<std::string, Entry>> found;
    ownPresets = 0;

    forEachEntry (path,
                  [&] (const juce::String& name, bool isFolder, bool isLink)
                  {
                      const bool isPreset = ! isFolder && isPresetName (name);
                      ownPresets += isPreset ? 1 : 0;

                      // What a link leads to may change without a change of the folder that holds
                      // it.
                      isSettled = isSettled && ! isLink;

                      if (isFolder)
                          found.emplace_back (fold.folded (name),
                                              Entry { name, true, below (name, isLink, trail) });
                      else if (isPreset && ! name.startsWithChar ('.'))
                          found.emplace_back (fold.folded (name), Entry { name, false, nullptr });
                  });

    std::sort (found.begin(), found.end(),
               [] (const auto& a, const auto& b)
               {
                   const int order = a.first.compare (b.first);
                   return order != 0 ? order < 0 : a.second.name < b.second.name;
               });

    std::vector<Entry> before (found.size());
    std::transform (found.begin(), found.end(), before.begin(),
                    [] (auto& pair) { return std::move (pair.second); });
    entries.swap (before);
    return ! keepContents (before) || ! areSame (before, entries);
}

/** The contents of a folder right in this one; nullptr if it is a link that leads back up. */
std::unique_ptr<FolderSnapshot> FolderSnapshot::below (const juce::String& name, bool isLink,
                                                       const Trail& trail) const
{
    std::unique_ptr<FolderSnapshot> contents (new FolderSnapshot (path / fileNamed (name)));

    if (isLink)
    {
        std::error_code failure;
        contents->place = fs::canonical (contents->path, failure);

        if (failure || std::find (trail.begin(), trail.end(), contents->place) != trail.end())
            return nullptr;
    }

    return contents;
}

/** Takes over what is known of folders that are still here; whether they are the same, their
    stamps tell. False if a folder has other contents than before. */
bool FolderSnapshot::keepContents (std::vector<Entry>& before)
{
    auto start = before.begin();
    bool isAllKept = true;

    for (auto& entry : entries)
    {
        if (entry.contents == nullptr)
            continue;

        const auto old = std::find_if (start, before.end(),
                                       [&] (const Entry& other)
                                       {
                                           return other.contents != nullptr &&
                                                  other.name == entry.name &&
                                                  other.contents->place == entry.contents->place;
                                       });

        if (old == before.end())
        {
            isAllKept = false;
            continue;
        }

        std::swap (entry.contents, old->contents);
        start = old + 1;  // both are in the same order
    }

    return isAllKept;
}
