// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/folder_lock.h"

#if ! JUCE_WINDOWS
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#endif

#if JUCE_WINDOWS
FolderLock::FolderLock (const juce::File&) {}

FolderLock::~FolderLock() = default;
#else
static constexpr int kMaxWaitMs = 2000;

FolderLock::FolderLock (const juce::File& folder)
    : handle (open (folder.getFullPathName().toRawUTF8(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    if (handle < 0)
        return;

    for (int waitedMs = 0; flock (handle, LOCK_EX | LOCK_NB) != 0 && waitedMs < kMaxWaitMs &&
                           (errno == EWOULDBLOCK || errno == EINTR);
         ++waitedMs)
        juce::Thread::sleep (1);
}

FolderLock::~FolderLock()
{
    if (handle >= 0)
        close (handle);  // which unlocks
}
#endif
