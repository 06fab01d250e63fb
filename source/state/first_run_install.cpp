// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/first_run_install.h"

#include "state/document_guard.h"
#include "state/folder_listing.h"
#include "state/whole_file.h"

#if ! JUCE_WINDOWS
#include <cerrno>
#include <csignal>
#include <unistd.h>
#endif

// Stored: never edit.
static constexpr auto kPresetFolder = "Music/Zubrow Labs/Velkor/Presets";
static constexpr auto kUserFolder = "User";
static constexpr auto kDefaultPreset = "User/Default.zbpreset";
static constexpr auto kResourceForks = "__MACOSX";  ///< what archives made on a Mac may carry along

/** Start of the name of a folder that an install unpacks to, or of its "User" on the way; the maker's process
    number follows. */
static constexpr auto kStagingPrefix = ".installing-";

juce::File defaultPresetFolder()
{
    return juce::File::getSpecialLocation (juce::File::userHomeDirectory)
        .getChildFile (kPresetFolder);
}

// --- staging -------------------------------------------------------------------------------------------

#if JUCE_WINDOWS
static juce::String processWord()
{
    return "0";
}

static bool isAbandoned (const juce::File& staging)
{
    return staging.getLastModificationTime() <
           juce::Time::getCurrentTime() - juce::RelativeTime::days (1);
}
#else
static juce::String processWord()
{
    return juce::String (static_cast<int> (getpid()));
}

/** Whether the process that made a staging folder is gone. A wrong guess, as in a container with process
    numbers of its own, costs its maker the install, which is then ours. */
static bool isAbandoned (const juce::File& staging)
{
    const int process =
        staging.getFileName().fromFirstOccurrenceOf ("-", false, false).getIntValue();
    return process <= 0 || (kill (process, 0) != 0 && errno == ESRCH);
}
#endif

static void removeAbandonedStaging (const juce::File& presetFolder)
{
    for (const auto& [file, isFolder] : listEntries (presetFolder))
        if (isFolder && file.getFileName().startsWith (kStagingPrefix) && isAbandoned (file))
            deleteFolder (file);
}

/** Unpacks all of the archive into a new folder, which has a "User" then; false if anything did not get
    there whole. */
static bool unpackAll (juce::ZipFile& zip, const juce::File& staging)
{
    if (staging.exists() || ! staging.createDirectory())
        return false;

    // A loss of power may cost a factory preset, but not the file whose folder says that all is done:
    // waiting for the disk at each of them makes a first start ten times as long.
    const auto user = staging.getChildFile (kUserFolder);

    for (int i = 0; i < zip.getNumEntries(); ++i)
    {
        const auto& entry = *zip.getEntry (i);

        if (entry.filename.endsWithChar ('/') ||
            entry.filename.startsWith (juce::String (kResourceForks) + "/"))
            continue;

        const auto file = staging.getChildFile (entry.filename);
        const std::unique_ptr<juce::InputStream> in (zip.createStreamForEntry (i));
        juce::MemoryBlock bytes;

        if (! file.isAChildOf (staging) || in == nullptr || entry.isSymbolicLink)
            return false;

        in->readIntoMemoryBlock (bytes, static_cast<juce::pointer_sized_int> (kMaxDocumentBytes));

        if (static_cast<juce::int64> (bytes.getSize()) != entry.uncompressedSize ||
            ! file.getParentDirectory().createDirectory() ||
            ! writeNewFile (file, bytes.getData(), bytes.getSize(),
                            file.isAChildOf (user) ? Durable::yes : Durable::no))
            return false;
    }

    return user.isDirectory();
}

/** Moves what was unpacked into place, but for "User", which goes to a folder beside staging; whether all went. */
static bool moveAllButUser (const juce::File& staging, const juce::File& presetFolder,
                            const juce::File& freshUser)
{
    const auto user = staging.getChildFile (kUserFolder);

    for (const auto& file : staging.findChildFiles (juce::File::findFiles, true))
    {
        if (file.isAChildOf (user))
            continue;

        const auto target = presetFolder.getChildFile (file.getRelativePathFrom (staging));

        if (! target.getParentDirectory().createDirectory() || ! moveOver (file, target))
            return false;
    }

    return moveOver (user, freshUser);
}

// -------------------------------------------------------------------------------------------------------

void installFirstRunContent (const juce::File& presetFolder, const void* archive,
                             std::size_t numBytes)
{
    if (presetFolder.getChildFile (kUserFolder).exists())
        return;

    // Once "User" is there, no start looks for what another left behind. So its move into place is the last step
    // of all, after the cleaning: killed at any moment, this process leaves either no "User", and then the next
    // start removes the rest, or nothing else. Only what a second process that was at it at the same time leaves
    // when it is killed stays for good: one folder of some hundred kilobytes, which is hidden.
    presetFolder.createDirectory();
    removeAbandonedStaging (presetFolder);
    deleteFolder (presetFolder.getChildFile (kResourceForks));

    juce::MemoryInputStream stream (archive, numBytes, false);
    juce::ZipFile zip (stream);
    const auto staging =
        presetFolder.getChildFile (kStagingPrefix + processWord() + "-" + uniqueWord());

    const auto freshUser = staging.getSiblingFile (staging.getFileName() + "-" + kUserFolder);
    const bool isComplete =
        unpackAll (zip, staging) && moveAllButUser (staging, presetFolder, freshUser);
    deleteFolder (staging);

    // Where another process was first, its folder isn't empty and the move fails: both hold the same.
    if (! isComplete || ! moveOver (freshUser, presetFolder.getChildFile (kUserFolder)))
        deleteFolder (freshUser);
}

std::unique_ptr<juce::XmlElement> readDefaultPreset (const juce::File& presetFolder)
{
    return parseDocument (presetFolder.getChildFile (kDefaultPreset));
}
