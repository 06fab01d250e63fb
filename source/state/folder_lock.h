// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

/** Keeps other instances, in this process and in others, from changing a file in a folder between our reading and our
    writing it: all who do so take this lock. It locks the folder itself, so that no file is left lying about.
    Waits two seconds at most, so that a process that hangs doesn't take us along, and does nothing where
    the system or the disk has no such locks. Not re-entrant. Any thread. */
class FolderLock
{
public:
    explicit FolderLock (const juce::File& folder);
    ~FolderLock();

private:
    int handle = -1;  ///< of the folder, open while locked; negative without one

    JUCE_DECLARE_NON_COPYABLE (FolderLock)
};
