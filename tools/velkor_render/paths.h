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
