// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <filesystem>

/** A path in the standard library's terms, whatever the encoding of the system's paths. Any thread. */
std::filesystem::path filesystemPath (const juce::File& file);

/** Whether file is a regular file, or a link to one. A pipe or a device, which would keep its reader waiting
    for ever, is none. Any thread. */
bool isRegularFile (const juce::File& file);

/** Reads a regular file of at most maxBytes into bytes; false if it is no such file. Any thread. */
bool readRegularFile (const juce::File& file, std::size_t maxBytes, juce::MemoryBlock& bytes);

/** Whether a write waits until the disk has the bytes, which takes it some milliseconds, or leaves that to
    the system. */
enum class Durable
{
    no,
    yes
};

/** Writes a new file; false, with whatever got written left behind, if any byte did not get there. Any
    thread. */
bool writeNewFile (const juce::File& file, const void* data, std::size_t numBytes, Durable durable);

/** Moves a file over another in one step: a reader of target sees the old file or the new one. Any
    thread. */
bool moveOver (const juce::File& source, const juce::File& target);

/** A hidden name beside a file that nobody else makes, for what is to be renamed once it is complete. Any
    thread. */
juce::File hiddenSibling (const juce::File& file);

/** Puts a document in the place of a file, through a hidden file beside it: on failure, which is the result
    false, the old file stays as it was. The text is that of XmlElement::writeTo with the default format. Any
    thread. */
bool replaceWithDocument (const juce::File& target, const juce::XmlElement& document,
                          Durable durable);

/** A word that no other process nor thread makes, for the names of files that are to be renamed. Any thread. */
juce::String uniqueWord();
