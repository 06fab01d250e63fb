// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

/** Packs all files and folders below folder, hidden ones included, into an archive in the system's temporary
    folder, named after the folder as far as a file's name goes, and returns it; in a folder of its own there where another user has one of
    that name. Empty if it could not be written. Links go in as what they lead to; pipes, devices and names that are
    no UTF-8 stay out. Any thread. */
juce::File exportFolder (const juce::File& folder);

/** Copies a file into a folder under its own name. Replaces a file of that name once the copy is whole; does
    nothing where source and destination are one. False if it failed, with the old file as it was. Any
    thread. */
bool copyInto (const juce::File& file, const juce::File& folder);
