// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <filesystem>

/** The same place for the framework. Relative paths start at the working folder; "~" is a name like any
    other, since expanding it is the shell's business. */
juce::File frameworkFile (const std::filesystem::path& path);

/** A file that is there to be read. Fails, by the path as the user wrote it, if there is none or if it is
    a folder. */
juce::File existingFile (const std::filesystem::path& path);

/** The place itself if path is a link, so that the link stays one. */
std::filesystem::path behindLinks (const std::filesystem::path& path);

/** Sees to it that a file can be put there, or over the one that is: makes the folder if it is missing. Fails,
    by the path as the user wrote it, if that can't be done, if what is there is no file, or if it is
    write-protected, which renaming another file over it would not notice. */
void makeWay (const std::filesystem::path& destination);
