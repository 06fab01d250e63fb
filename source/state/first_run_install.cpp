// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/first_run_install.h"

#include "state/document_guard.h"
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

/** Start of the name of a folder that an install unpacks to; the maker's process number follows. */
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
    for (const auto& folder : presetFolder.findChildFiles (juce::File::findDirectories, false,
                                                           juce::String (kStagingPrefix) + "*"))
        if (isAbandoned (folder))
            folder.deleteRecursively();
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

/** Moves what was unpacked into place, "User" at the end and as a whole. */
static void moveIntoPlace (const juce::File& staging, const juce::File& presetFolder)
{
    const auto user = staging.getChildFile (kUserFolder);

    for (const auto& file : staging.findChildFiles (juce::File::findFiles, true))
    {
        if (file.isAChildOf (user))
            continue;

        const auto target = presetFolder.getChildFile (file.getRelativePathFrom (staging));

        if (! target.getParentDirectory().createDirectory() || ! moveOver (file, target))
            return;
    }

    // Where another process was first, its folder isn't empty and this fails: both hold the same.
    moveOver (user, presetFolder.getChildFile (kUserFolder));
}

// -------------------------------------------------------------------------------------------------------

void installFirstRunContent (const juce::File& presetFolder, const void* archive,
                             std::size_t numBytes)
{
    if (presetFolder.getChildFile (kUserFolder).exists())
        return;

    presetFolder.createDirectory();
    removeAbandonedStaging (presetFolder);

    juce::MemoryInputStream stream (archive, numBytes, false);
    juce::ZipFile zip (stream);
    const auto staging =
        presetFolder.getChildFile (kStagingPrefix + processWord() + "-" + uniqueWord());

    if (unpackAll (zip, staging))
        moveIntoPlace (staging, presetFolder);

    staging.deleteRecursively();
    presetFolder.getChildFile (kResourceForks).deleteRecursively();
}

std::unique_ptr<juce::XmlElement> readDefaultPreset (const juce::File& presetFolder)
{
    return parseDocument (presetFolder.getChildFile (kDefaultPreset));
}
