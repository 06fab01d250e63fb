// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

// JUCE's own copies miss a write that comes up short at the very end, and its moves then delete the source.

/** Copies what a file holds to a new file and waits until the disk has it. False, with anything that got
    written left behind, if a byte did not get there. Any thread. */
bool copyToNewFile (const juce::File& source, const juce::File& fresh);

/** Moves a file, a link or a folder with all in it to a name that is free; never overwrites. To another disk it
    is copied to a hidden name beside the target, and the source goes once the copy is complete and in place.
    False, with source and target as they were, if that failed; a folder with a pipe or a device in it can't be
    copied. Parts of a copied folder that can't be deleted stay behind. Any thread. */
bool moveToNewName (const juce::File& source, const juce::File& target);
