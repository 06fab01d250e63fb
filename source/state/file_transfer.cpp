// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/file_transfer.h"

#include "state/folder_listing.h"
#include "state/whole_file.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <system_error>

#if ! JUCE_WINDOWS
#include <fcntl.h>
#include <unistd.h>
#endif

namespace fs = std::filesystem;

// --- bytes ---------------------------------------------------------------------------------------------

#if JUCE_WINDOWS
static bool waitForDisk (const fs::path&)
{
    return true;
}
#else
/** Waits until the disk has a file's bytes, or all that was written to the file system of a folder: a wait for
    each of a thousand files would take minutes. False if the system could not get them there. */
static bool waitForDisk (const fs::path& path)
{
    const int handle = open (path.c_str(), O_RDONLY | O_CLOEXEC);

    if (handle < 0)
        return false;

#if JUCE_LINUX
    std::error_code failure;
    const bool done = (fs::is_directory (path, failure) ? syncfs (handle) : fsync (handle)) == 0;
#else
    const bool done = fsync (handle) == 0;
#endif

    close (handle);
    return done;
}
#endif

/** Copies what a file holds to a new file; false if a byte did not get there. */
static bool copyBytes (const fs::path& source, const fs::path& fresh)
{
    std::error_code failure;
    const auto size = fs::file_size (source, failure);
    std::ifstream in (source, std::ios::binary);
    std::ofstream out (fresh, std::ios::binary);

    if (failure || ! in || ! out)
        return false;

    if (size > 0)  // the operator takes nothing at all for a failure
        out << in.rdbuf();

    out.close();
    return out.good() && fs::file_size (fresh, failure) == size && ! failure;
}

bool copyToNewFile (const juce::File& source, const juce::File& fresh)
{
    return copyBytes (filesystemPath (source), filesystemPath (fresh)) &&
           waitForDisk (filesystemPath (fresh));
}

// --- trees ---------------------------------------------------------------------------------------------

/** Copies a file with its time and permissions. */
static bool copyFileAsItIs (const fs::path& source, const fs::path& fresh)
{
    if (! copyBytes (source, fresh))
        return false;

    // Some disks have neither, and the bytes are what counts.
    std::error_code ignored;
    fs::last_write_time (fresh, fs::last_write_time (source, ignored), ignored);
    fs::permissions (fresh, fs::status (source, ignored).permissions(), ignored);
    return true;
}

/** Copies a file, a link or a folder; false at the first that can't be. The top is the copy's own. */
static bool copyTree (const fs::path& source, const fs::path& fresh, const fs::path& top)
{
    std::error_code failure;
    const auto status = fs::symlink_status (source, failure);

    if (fs::is_symlink (status))
    {
        fs::copy_symlink (source, fresh, failure);
        return ! failure;
    }

    if (fs::is_regular_file (status))
        return copyFileAsItIs (source, fresh);

    if (! fs::is_directory (status) || ! fs::create_directory (fresh, failure))
        return false;

    for (fs::directory_iterator entry (source, failure), end; ! failure && entry != end;
         entry.increment (failure))
    {
        // A folder that is mounted in two places may hold its own copy, which would never end.
        std::error_code unknown;

        if (fs::equivalent (entry->path(), top, unknown) ||
            ! copyTree (entry->path(), fresh / entry->path().filename(), top))
            return false;
    }

    return ! failure;
}

// --- moves ---------------------------------------------------------------------------------------------

/** Renames, but never over what is there. */
static std::error_code renameToNewName (const fs::path& source, const fs::path& target)
{
#if JUCE_LINUX
    if (renameat2 (AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0)
        return {};

    const std::error_code reason (errno, std::generic_category());

    if (reason != std::errc::invalid_argument && reason != std::errc::function_not_supported)
        return reason;
#endif

    // Not every file system can look and rename in one step.
    std::error_code failure;

    if (fs::exists (fs::symlink_status (target, failure)))
        return std::make_error_code (std::errc::file_exists);

    fs::rename (source, target, failure);
    return failure;
}

static bool renameToNewName (const juce::File& source, const juce::File& target)
{
    return ! renameToNewName (filesystemPath (source), filesystemPath (target));
}

static bool moveToOtherDisk (const juce::File& source, const juce::File& target)
{
    const auto fresh = hiddenSibling (target);
    const auto path = filesystemPath (fresh);
    const bool complete = copyTree (filesystemPath (source), path, path) &&
                          (source.isSymbolicLink() || waitForDisk (path));

    if (! complete || ! renameToNewName (fresh, target))
    {
        deleteFolder (fresh);
        return false;
    }

    // The new name, too, must be there before the old one goes; where a disk can't tell, we did what we could.
    waitForDisk (filesystemPath (target.getParentDirectory()));

    // A name that can't be taken away shows at once, while the source is whole.
    const auto leaving = hiddenSibling (source);

    if (! renameToNewName (source, leaving))
    {
        deleteFolder (target);
        return false;
    }

    if (! deleteFolder (leaving))
        renameToNewName (leaving, source);

    return true;
}

bool moveToNewName (const juce::File& source, const juce::File& target)
{
    const auto failure = renameToNewName (filesystemPath (source), filesystemPath (target));
    return ! failure ||
           (failure == std::errc::cross_device_link && moveToOtherDisk (source, target));
}
