// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/archive_export.h"

#include "browser/preset_listing.h"
#include "state/folder_listing.h"
#include "state/whole_file.h"

#include <memory>

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

juce::File exportFolder (const juce::File& folder)
{
    const auto archive = juce::File::getSpecialLocation (juce::File::tempDirectory)
                             .getChildFile (folder.getFileName() + ".zip");
    juce::ZipFile::Builder builder;

    // Not the framework's listing, which goes forty levels down a link that leads back up.
    for (const auto& [file, isFolder] : listEntriesBelow (folder))
        addTo (builder, file, isFolder, relativePresetPath (file, folder));

    // Not into the archive itself: others may have put a link of that name into a folder that all share.
    const auto fresh = archive.getSiblingFile ("." + uniqueWord() + ".tmp");
    bool complete = false;

    {
        juce::FileOutputStream out (fresh);
        complete = out.openedOk() && builder.writeToStream (out, nullptr);
        out.flush();  // a last write that comes up short shows only here
        complete = complete && out.getStatus().wasOk();
    }

    if (complete && moveOver (fresh, archive))
        return archive;

    fresh.deleteFile();
    return {};
}

bool copyInto (const juce::File& file, const juce::File& folder)
{
    const auto target = folder.getChildFile (file.getFileName());

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
