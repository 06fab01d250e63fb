// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <cstddef>
#include <functional>

/** Archives come from strangers. What they unpack to is limited, since a few megabytes can hold as much as
    any disk does. Files of small archives may take this many bytes together... */
inline constexpr juce::int64 kSmallContents = 64 << 20;

/** ...those of others this many times the archive's size. Presets pack to a tenth, at most. */
inline constexpr juce::int64 kMaxExpansion = 100;

/** What the disk has to have free beside the files' own blocks: blocks, for folders and a file that is about to
    replace another, and bytes for each file's name and the like. */
inline constexpr juce::int64 kSpareBlocks = 16;
inline constexpr juce::int64 kBytesPerName = 512;

/** The largest archive that is opened: its list of entries is read into memory whole, bytes. */
inline constexpr juce::int64 kMaxArchiveBytes = juce::int64 (2) << 30;

/** The longest path of an entry: parts between its "/", bytes in all, and bytes of a part, which is as long as
    file systems take. */
inline constexpr int kMaxPathParts = 64;
inline constexpr std::size_t kMaxPathBytes = 4096;
inline constexpr std::size_t kMaxNameBytes = 255;

/** Unpacks the files of a ZIP archive below folder and overwrites what is there, each file whole or not at
    all. Leaves out what would lie outside the folder or behind a link in it, links, paths beyond the limits
    above, what the browser passes over (hidden names, "__MACOSX"), and files that are not as long as the archive
    says. A name that is no UTF-8 is read as one in the
    Western 8-bit encoding. Unpacks nothing if the archive is no ZIP or its contents are beyond the limits or
    the room on the disk. Calls goOn, if there is one, before each entry, and ends there once that returns false.
    Returns the number of files written. Any thread. */
int unpackArchive (const juce::File& archive, const juce::File& folder,
                   const std::function<bool()>& goOn = {});

/** The folder that an archive is unpacked into: a child of parent with the archive's name. Empty if that
    name makes none, as "..." plus the extension doesn't. Any thread. */
juce::File folderForArchive (const juce::File& archive, const juce::File& parent);
