// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

/** Reads paths of favourites, relative to the preset folder, in the file's order; empty if there is no file
    that can be read. Any thread. */
juce::StringArray readFavoritesFile (const juce::File& file);

/** The same before favourites are changed and written again. A file of anything else, as a damaged one is, is moved
    aside. False if a file is there that can't be read or moved: then it must not be written either. Any thread. */
bool readFavoritesToChange (const juce::File& file, juce::StringArray& paths);

/** Writes paths of favourites; false if that failed, with the old file as it was. Any thread. */
bool writeFavoritesFile (const juce::File& file, const juce::StringArray& paths);
