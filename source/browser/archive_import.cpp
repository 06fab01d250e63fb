// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/archive_import.h"

#include "state/folder_listing.h"
#include "state/utf8.h"
#include "state/whole_file.h"

#include <algorithm>
#include <memory>

// The framework's own ZipFile::uncompressTo refuses paths that leave the folder and files behind links. But it
// gives up at the first of them, makes the links that an archive holds, follows one that stands where a file
// goes, believes an entry's data over its length, and cuts a file that is there before it knows whether the
// new one can be read. So the entries are taken one by one.

/** Bytes read at once. */
static constexpr int kBlockBytes = 1 << 16;

/** Whether an entry's path is one that could be meant, and leads down from where it starts. The others cost more
    the deeper they go: the folders of each level are looked at and made from the top. */
static bool isWithinReason (const juce::String& path)
{
    if (path.isEmpty() || path.getNumBytesAsUTF8() > kMaxPathBytes ||
        (juce::File::isAbsolutePath (path) && ! path.startsWithChar ('~')))
        return false;

    const auto parts = juce::StringArray::fromTokens (path, "/", {});
    return parts.size() <= kMaxPathParts &&
           std::all_of (parts.begin(), parts.end(),
                        [] (const juce::String& part)
                        { return part.getNumBytesAsUTF8() <= kMaxNameBytes; });
}

/** Whether anything from file, which is in folder, up to folder is a link. */
static bool leadsThroughLink (juce::File file, const juce::File& folder)
{
    for (; file != folder && ! file.isRoot(); file = file.getParentDirectory())
        if (file.isSymbolicLink())
            return true;

    return false;
}

/** Copies exactly numBytes; false if there are fewer, or more, or they can't be written. */
static bool copyExactly (juce::InputStream& in, juce::OutputStream& out, juce::int64 numBytes)
{
    juce::HeapBlock<char> block (static_cast<std::size_t> (kBlockBytes));

    for (juce::int64 left = numBytes; left > 0;)
    {
        const int wanted = static_cast<int> (std::min<juce::int64> (left, kBlockBytes));
        const int got = in.read (block.get(), wanted);

        if (got <= 0 || ! out.write (block.get(), static_cast<std::size_t> (got)))
            return false;

        left -= got;
    }

    return in.read (block.get(), 1) <= 0;
}

/** Writes an entry's file through a hidden one beside it. */
static bool writeEntry (juce::InputStream& in, juce::int64 numBytes, const juce::File& target)
{
    const auto fresh = target.getSiblingFile ("." + uniqueWord() + ".tmp");
    bool complete = false;

    {
        juce::FileOutputStream out (fresh);

        if (out.openedOk())
        {
            // Not flushed: that waits for the disk, which takes ten times as long as all the rest.
            complete = copyExactly (in, out, numBytes) && out.getStatus().wasOk();
        }
    }

    // The stream does not tell when its last write came up short.
    if (complete && fresh.getSize() == numBytes && moveOver (fresh, target))
        return true;

    fresh.deleteFile();
    return false;
}

static bool unpackEntry (juce::ZipFile& zip, int index, const juce::File& folder)
{
    const auto& entry = *zip.getEntry (index);

    if (entry.isSymbolicLink || entry.filename.getNumBytesAsUTF8() > kMaxPathBytes)
        return false;

    const auto path = textOfBytes (entry.filename.toRawUTF8()).replaceCharacter ('\\', '/');

    if (! isWithinReason (path))
        return false;

    const auto target = childOf (folder, path);

    if (! target.isAChildOf (folder))
        return false;

    const bool isFolder = path.endsWithChar ('/');
    const auto parent = isFolder ? target : target.getParentDirectory();

    if (leadsThroughLink (parent, folder) || ! parent.createDirectory() || isFolder)
        return false;

    const std::unique_ptr<juce::InputStream> in (zip.createStreamForEntry (index));
    return in != nullptr && writeEntry (*in, entry.uncompressedSize, target);
}

/** Whether what the archive says that it holds may be unpacked. What it holds beyond that is never read. */
static bool isWithinLimits (const juce::ZipFile& zip, juce::int64 archiveBytes,
                            const juce::File& folder)
{
    juce::int64 bytes = 0;

    for (int i = 0; i < zip.getNumEntries(); ++i)
        bytes += zip.getEntry (i)->uncompressedSize;

    auto existing = folder;

    while (! existing.isDirectory() && existing != existing.getParentDirectory())
        existing = existing.getParentDirectory();

    return bytes <= std::max (kSmallContents, kMaxExpansion * archiveBytes) &&
           bytes <= existing.getBytesFreeOnVolume() - kSpareBytes;
}

int unpackArchive (const juce::File& archive, const juce::File& folder,
                   const std::function<bool()>& goOn)
{
    if (! isRegularFile (archive) || archive.getSize() > kMaxArchiveBytes)
        return 0;

    // One stream for all entries: opening the archive again for each costs more than the entry does.
    juce::FileInputStream file (archive);

    if (! file.openedOk())
        return 0;

    juce::BufferedInputStream in (file, kBlockBytes);
    juce::ZipFile zip (in);
    int written = 0;

    if (isWithinLimits (zip, archive.getSize(), folder))
        for (int i = 0; i < zip.getNumEntries() && (goOn == nullptr || goOn()); ++i)
            written += unpackEntry (zip, i, folder) ? 1 : 0;

    return written;
}

juce::File folderForArchive (const juce::File& archive, const juce::File& parent)
{
    const auto folder = childOf (parent, archive.getFileNameWithoutExtension());
    return folder.getParentDirectory() == parent && folder != parent ? folder : juce::File();
}
