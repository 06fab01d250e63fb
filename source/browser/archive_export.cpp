// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/archive_export.h"

#include "browser/preset_listing.h"
#include "state/file_transfer.h"
#include "state/folder_listing.h"
#include "state/whole_file.h"

#include <filesystem>
#include <memory>
#include <system_error>
#include <vector>

static constexpr int kCompressionLevel = 9;

/** What the format's own fields can count: entries, and bytes. */
static constexpr std::size_t kMaxZipEntries = 0xffff;
static constexpr juce::int64 kMaxZipBytes = 0xffffffff;

/** Longest name of a file that file systems take, bytes of UTF-8. */
static constexpr std::size_t kMaxNameBytes = 255;

static void addTo (juce::ZipFile::Builder& builder, const juce::File& file, bool isFolder,
                   const juce::String& path)
{
    // The builder would read a folder as a file, and never come to its end.
    if (isFolder)
        builder.addEntry (new juce::MemoryInputStream (nullptr, 0, false), 0, path + "/",
                          file.getLastModificationTime());
    else if (! isRegularFile (file))
        return;
    else if (! file.isSymbolicLink())
        builder.addFile (file, kCompressionLevel, path);
    else if (auto contents = file.createInputStream())
        builder.addEntry (contents.release(), kCompressionLevel, path,
                          file.getLastModificationTime());
}

/** Hands on what is written and remembers a write that came up short, which the builder doesn't look at. */
class WatchedStream : public juce::OutputStream
{
public:
    explicit WatchedStream (juce::OutputStream& target) : out (target) {}

    void flush() override { out.flush(); }
    bool setPosition (juce::int64 position) override { return out.setPosition (position); }
    juce::int64 getPosition() override { return out.getPosition(); }

    bool write (const void* data, std::size_t numBytes) override
    {
        isComplete = out.write (data, numBytes) && isComplete;
        return isComplete;
    }

    bool isComplete = true;

private:
    juce::OutputStream& out;
};

/** Writes an archive to a new file; false, with that file left behind, if it doesn't get there whole. */
static bool writeArchive (const juce::ZipFile::Builder& builder, const juce::File& fresh)
{
    juce::int64 written = 0;

    {
        juce::FileOutputStream out (fresh);
        WatchedStream watched (out);

        if (! out.openedOk() || ! builder.writeToStream (watched, nullptr))
            return false;

        out.flush();
        written = out.getPosition();

        if (! watched.isComplete || out.getStatus().failed() || written > kMaxZipBytes)
            return false;
    }

    return fresh.getSize() == written;  // a last write that comes up short shows only here
}

/** Makes a folder that is nobody else's business; empty if it can't be made. */
static juce::File makePrivateFolder (const juce::File& parent)
{
    const auto folder = parent.getChildFile ("velkor-" + uniqueWord());
    std::error_code failure;

    if (! std::filesystem::create_directory (filesystemPath (folder), failure))
        return {};

    std::filesystem::permissions (filesystemPath (folder), std::filesystem::perms::owner_all,
                                  failure);
    return folder;
}

/** Gives an archive its name; in a folder of its own where somebody else has a file of that name, which in a
    folder that all share is not ours to replace. Empty if there is no way. */
static juce::File giveName (const juce::File& fresh, const juce::String& name)
{
    const auto archive = childOf (fresh.getParentDirectory(), name);

    if (moveOver (fresh, archive))
        return archive;

    const auto aside = makePrivateFolder (fresh.getParentDirectory());

    if (aside == juce::File())
        return {};

    const auto inside = childOf (aside, name);

    if (moveOver (fresh, inside))
        return inside;

    aside.deleteFile();
    return {};
}

/** The name of a folder's archive. Of a folder's name that leaves no room for the extension, the end goes. */
static juce::String archiveNameOf (const juce::File& folder)
{
    const juce::String extension (".zip");
    auto name = folder.getFileName();

    while (name.getNumBytesAsUTF8() + extension.getNumBytesAsUTF8() > kMaxNameBytes)
        name = name.dropLastCharacters (1);

    return name + extension;
}

/** Adds entries under their paths below folder. */
static void addTo (juce::ZipFile::Builder& builder, const std::vector<FolderEntry>& entries,
                   const juce::File& folder)
{
    bool hasSlash = false;
    bool hasBackslash = false;

    for (const auto& [file, isFolder] : entries)
    {
        const auto path = relativePresetPath (file, folder);
        addTo (builder, file, isFolder, path);
        hasSlash = hasSlash || isFolder;
        hasBackslash = hasBackslash || path.containsChar ('\\');
    }

    // Without any "/", a reader may take "\" in names for what separates them.
    if (hasBackslash && ! hasSlash)
        addTo (builder, folder, true, ".");
}

juce::File exportFolder (const juce::File& folder)
{
    juce::ZipFile::Builder builder;

    // Not the framework's listing, which goes forty levels down a link that leads back up.
    const auto entries = listEntriesBelow (folder);

    if (entries.size() >= kMaxZipEntries)
        return {};

    addTo (builder, entries, folder);

    // Not into the archive itself: others may have put a link of that name into a folder that all share.
    const auto fresh = juce::File::getSpecialLocation (juce::File::tempDirectory)
                           .getChildFile ("." + uniqueWord() + ".tmp");
    juce::File archive;

    if (writeArchive (builder, fresh))
        archive = giveName (fresh, archiveNameOf (folder));

    if (archive == juce::File())
        fresh.deleteFile();

    return archive;
}

bool copyInto (const juce::File& file, const juce::File& folder)
{
    const auto target = childOf (folder, file.getFileName());

    if (target == file)
        return true;

    if (! isRegularFile (file) || ! folder.isDirectory())
        return false;

    const auto fresh = hiddenSibling (target);

    if (copyToNewFile (file, fresh) && moveOver (fresh, target))
        return true;

    fresh.deleteFile();
    return false;
}
