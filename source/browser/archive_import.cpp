// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/archive_import.h"

#include "state/folder_listing.h"
#include "state/unseen_presets.h"
#include "state/utf8.h"
#include "state/whole_file.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <set>
#include <string>
#include <vector>

#if ! JUCE_WINDOWS
#include <sys/statvfs.h>
#endif

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
    const auto fresh = hiddenSibling (target);
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

// --- what to unpack ------------------------------------------------------------------------------------

/** An entry that is to be unpacked. */
struct WantedEntry
{
    int index;             ///< in the archive
    juce::String path;     ///< below the folder, "/" at the end of a folder's
    juce::int64 numBytes;  ///< as the archive says
};

/** Whether "\" separates the names in an archive's paths, as in some from another system. Here it may be part of
    a name. So nothing else may separate them or tell of this system, and the folders have to show: in a path
    that ends with one, or in two that have all before the last in common. */
static bool separatesByBackslashes (const juce::ZipFile& zip)
{
    if (juce::File::getSeparatorChar() == '\\')
        return true;

    std::set<std::string> folders;
    bool foldersShow = false;

    for (int i = 0; i < zip.getNumEntries(); ++i)
    {
        const auto& entry = *zip.getEntry (i);
        const std::string path (entry.filename.toRawUTF8());  // which may be no UTF-8

        if (path.find ('/') != path.npos || (entry.externalFileAttributes >> 16) != 0)
            return false;

        if (const auto last = path.rfind ('\\'); last != path.npos)
            foldersShow = ! folders.insert (path.substr (0, last)).second ||
                          last + 1 == path.size() || foldersShow;
    }

    return foldersShow;
}

/** Whether the browser would pass over a path, so that nobody would miss it. */
static bool isOutOfSight (const juce::String& path)
{
    const auto names = juce::StringArray::fromTokens (path, "/", {});
    return std::any_of (names.begin(), names.end(), isPassedOver);
}

static std::vector<WantedEntry> listWanted (const juce::ZipFile& zip)
{
    const bool isForeign = separatesByBackslashes (zip);
    std::vector<WantedEntry> wanted;

    for (int i = 0; i < zip.getNumEntries(); ++i)
    {
        const auto& entry = *zip.getEntry (i);

        if (entry.isSymbolicLink || entry.filename.getNumBytesAsUTF8() > kMaxPathBytes)
            continue;

        auto path = textOfBytes (entry.filename.toRawUTF8());

        if (isForeign)
            path = path.replaceCharacter ('\\', '/');

        if (isWithinReason (path) && ! isOutOfSight (path))
            wanted.push_back ({ i, path, entry.uncompressedSize });
    }

    return wanted;
}

// --- limits --------------------------------------------------------------------------------------------

/** Whether what the archive says that it holds may be unpacked. What it holds beyond that is never read. */
static bool isWithinLimits (const juce::ZipFile& zip, juce::int64 archiveBytes)
{
    juce::int64 bytes = 0;

    for (int i = 0; i < zip.getNumEntries(); ++i)
        bytes += zip.getEntry (i)->uncompressedSize;

    return bytes <= std::max (kSmallContents, kMaxExpansion * archiveBytes);
}

/** The free room on a disk, and the size of the blocks that its files take, bytes. */
struct DiskRoom
{
    juce::int64 free = std::numeric_limits<juce::int64>::max();  ///< where the disk can't tell
    juce::int64 block = 4096;
};

static DiskRoom roomIn (juce::File folder)
{
    while (! folder.isDirectory() && folder != folder.getParentDirectory())
        folder = folder.getParentDirectory();

    DiskRoom room;
#if JUCE_WINDOWS
    room.free = folder.getBytesFreeOnVolume();
#else
    struct statvfs disk = {};

    if (statvfs (folder.getFullPathName().toRawUTF8(), &disk) == 0 && disk.f_blocks > 0 &&
        disk.f_frsize > 0)
    {
        room.block = static_cast<juce::int64> (disk.f_frsize);
        room.free = static_cast<juce::int64> (disk.f_bavail) * room.block;
    }
#endif
    return room;
}

/** Whether a disk has room for what is wanted, in whole blocks, and for the names. */
static bool fitsInto (const DiskRoom& room, const std::vector<WantedEntry>& wanted)
{
    juce::int64 bytes = kSpareBlocks * room.block;

    for (const auto& entry : wanted)
        bytes += (entry.numBytes + room.block - 1) / room.block * room.block + kBytesPerName;

    return bytes <= room.free;
}

// -------------------------------------------------------------------------------------------------------

static bool unpackEntry (juce::ZipFile& zip, const WantedEntry& wanted, const juce::File& folder)
{
    const auto target = childOf (folder, wanted.path);

    if (! target.isAChildOf (folder))
        return false;

    const bool isFolder = wanted.path.endsWithChar ('/');
    const auto parent = isFolder ? target : target.getParentDirectory();

    if (leadsThroughLink (parent, folder) || ! parent.createDirectory() || isFolder)
        return false;

    const std::unique_ptr<juce::InputStream> in (zip.createStreamForEntry (wanted.index));
    return in != nullptr && writeEntry (*in, wanted.numBytes, target);
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

    if (! isWithinLimits (zip, archive.getSize()))
        return 0;

    const auto wanted = listWanted (zip);

    if (! fitsInto (roomIn (folder), wanted))
        return 0;

    int written = 0;

    for (const auto& entry : wanted)
    {
        if (goOn != nullptr && ! goOn())
            break;

        written += unpackEntry (zip, entry, folder) ? 1 : 0;
    }

    return written;
}

juce::File folderForArchive (const juce::File& archive, const juce::File& parent)
{
    const auto folder = childOf (parent, archive.getFileNameWithoutExtension());
    return folder.getParentDirectory() == parent && folder != parent ? folder : juce::File();
}
