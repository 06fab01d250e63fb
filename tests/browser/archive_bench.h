// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <string>
#include <vector>

/** Archives as nobody would make them in good faith. */
struct ArchiveEntry
{
    juce::String path;
    std::string bytes;
    bool isLink = false;  ///< bytes are where it leads
};

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

    // The builder makes links of links on disk alone, so the mark is set in the list of entries.
    auto* const bytes = static_cast<char*> (archive.getData());
    std::size_t entry = 0;

    for (std::size_t i = 0; i + 46 < archive.getSize() && entry < entries.size(); ++i)
        if (juce::ByteOrder::littleEndianInt (bytes + i) == 0x02014b50)
            bytes[i + 41] = static_cast<char> (entries[entry++].isLink ? 0xa1 : 0);

    return archive;
}

/** Makes the n-th entry of an archive claim another length of its contents. */
inline void claimLength (juce::MemoryBlock& archive, int n, juce::uint32 length)
{
    auto* const bytes = static_cast<char*> (archive.getData());

    for (std::size_t i = 0; i + 46 < archive.getSize(); ++i)
        if (juce::ByteOrder::littleEndianInt (bytes + i) == 0x02014b50 && n-- == 0)
            for (int k = 0; k < 4; ++k)
                bytes[i + 24 + static_cast<std::size_t> (k)] =
                    static_cast<char> (length >> (8 * k));
}
