// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <stdexcept>
#include <string>
#include <vector>

/** Archives as nobody would make them in good faith. */
struct ArchiveEntry
{
    juce::String path;
    std::string bytes;
    bool isLink = false;  ///< bytes are where it leads
};

/** The n-th entry in an archive's list of entries. */
inline char* listedEntry (juce::MemoryBlock& archive, int n)
{
    for (auto* at = archive.begin(); at + 46 <= archive.end(); ++at)
        if (juce::ByteOrder::littleEndianInt (at) == 0x02014b50 && n-- == 0)
            return at;

    throw std::out_of_range ("no such entry");
}

/** The bytes of an archive of these entries, in their order. */
inline juce::MemoryBlock makeArchive (const std::vector<ArchiveEntry>& entries)
{
    juce::ZipFile::Builder builder;

    for (const auto& entry : entries)
        builder.addEntry (
            new juce::MemoryInputStream (entry.bytes.data(), entry.bytes.size(), true),
            entry.isLink ? 0 : 9, entry.path, juce::Time (2020, 0, 1, 0, 0));

    juce::MemoryOutputStream out;
    builder.writeToStream (out, nullptr);
    auto archive = out.getMemoryBlock();

    // The builder makes links of links on disk alone.
    for (std::size_t n = 0; n < entries.size(); ++n)
        if (entries[n].isLink)
            listedEntry (archive, static_cast<int> (n))[41] = '\xa1';

    return archive;
}

/** Makes the n-th entry of an archive claim another length of its contents. */
inline void claimLength (juce::MemoryBlock& archive, int n, juce::uint32 length)
{
    for (int k = 0; k < 4; ++k)
        listedEntry (archive, n)[24 + k] = static_cast<char> (length >> (8 * k));
}
