// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/archive_export.h"

#include "browser/preset_listing.h"
#include "state/folder_listing.h"
#include "state/whole_file.h"

#include <filesystem>
#include <memory>
#include <system_error>

static constexpr int kCompressionLevel = 9;

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

/** Writes an archive to a new file; false, with that file left behind, if it doesn't get there whole. */
static bool writeArchive (const juce::ZipFile::Builder& builder, const juce::File& fresh)
{
    juce::FileOutputStream out (fresh);

    if (! out.openedOk() || ! builder.writeToStream (out, nullptr))
        return false;

    out.flush();  // a last write that comes up short shows only here
    return out.getStatus().wasOk();
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

juce::File exportFolder (const juce::File& folder)
{
    juce::ZipFile::Builder builder;

    // Not the framework's listing, which goes forty levels down a link that leads back up.
    for (const auto& [file, isFolder] : listEntriesBelow (folder))
        addTo (builder, file, isFolder, relativePresetPath (file, folder));

    // Not into the archive itself: others may have put a link of that name into a folder that all share.
    const auto fresh = juce::File::getSpecialLocation (juce::File::tempDirectory)
                           .getChildFile ("." + uniqueWord() + ".tmp");
    juce::File archive;

    if (writeArchive (builder, fresh))
        archive = giveName (fresh, folder.getFileName() + ".zip");

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

    const auto fresh = target.getSiblingFile ("." + uniqueWord() + ".tmp");

    if (file.copyFileTo (fresh) && fresh.getSize() == file.getSize() && moveOver (fresh, target))
        return true;

    fresh.deleteFile();
    return false;
}
