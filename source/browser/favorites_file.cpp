// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/favorites_file.h"

#include "state/document_guard.h"
#include "state/file_transfer.h"
#include "state/whole_file.h"

// Stored: never edit.
static constexpr auto kFavoritesTag = "Favorites";
static constexpr auto kFavoriteTag = "Favorite";
static constexpr auto kVersion = "version";
static constexpr auto kPresentVersion = "1.0";
static constexpr auto kPath = "path";

/** Any number of favourites reads that fits into the bytes: the shortest that we write takes 34 of them. */
static constexpr DocumentLimits kFavoritesLimits { 32u << 20, 1 << 21 };

static bool readPaths (const juce::XmlElement& document, juce::StringArray& paths)
{
    if (! hasTag (document, kFavoritesTag))
        return false;

    for (const auto* favorite : document.getChildIterator())
        if (hasTag (*favorite, kFavoriteTag))
            if (const auto& path = favorite->getStringAttribute (kPath); path.isNotEmpty())
                paths.add (path);

    return true;
}

juce::StringArray readFavoritesFile (const juce::File& file)
{
    juce::StringArray paths;

    if (const auto document = parseDocument (file, kFavoritesLimits))
        readPaths (*document, paths);

    return paths;
}

bool readFavoritesToChange (const juce::File& file, juce::StringArray& paths)
{
    paths.clear();

    if (! file.exists())
        return true;

    juce::MemoryBlock bytes;

    if (! readRegularFile (file, kFavoritesLimits.bytes, bytes))
        return false;

    const auto document = parseDocument (bytes, kFavoritesLimits);
    return (document != nullptr && readPaths (*document, paths)) || bytes.isEmpty() ||
           moveToNewName (file,
                          file.getSiblingFile ("favorites.damaged.xml").getNonexistentSibling());
}

bool writeFavoritesFile (const juce::File& file, const juce::StringArray& paths)
{
    juce::XmlElement document (kFavoritesTag);
    document.setAttribute (kVersion, kPresentVersion);

    // From the end: an element finds its last child by walking past all the others.
    for (int i = paths.size(); --i >= 0;)
    {
        auto* const favorite = new juce::XmlElement (kFavoriteTag);
        document.prependChildElement (favorite);
        favorite->setAttribute (kPath, paths[i]);
    }

    // Not durable: a star is toggled by a click, and the disk may take as long as several frames.
    return replaceWithDocument (file, document, Durable::no);
}
