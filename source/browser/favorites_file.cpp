// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/favorites_file.h"

#include "state/document_guard.h"
#include "state/whole_file.h"

// Stored: never edit.
static constexpr auto kFavoritesTag = "Favorites";
static constexpr auto kFavoriteTag = "Favorite";
static constexpr auto kVersion = "version";
static constexpr auto kPresentVersion = "1.0";
static constexpr auto kPath = "path";

juce::StringArray readFavoritesFile (const juce::File& file)
{
    juce::StringArray paths;
    const auto document = parseDocument (file);

    if (document == nullptr || ! hasTag (*document, kFavoritesTag))
        return paths;

    for (const auto* favorite : document->getChildIterator())
        if (hasTag (*favorite, kFavoriteTag))
            if (const auto& path = favorite->getStringAttribute (kPath); path.isNotEmpty())
                paths.add (path);

    return paths;
}

bool writeFavoritesFile (const juce::File& file, const juce::StringArray& paths)
{
    juce::XmlElement document (kFavoritesTag);
    document.setAttribute (kVersion, kPresentVersion);

    for (const auto& path : paths)
        document.createNewChildElement (kFavoriteTag)->setAttribute (kPath, path);

    // Not durable: a star is toggled by a click, and the disk may take as long as several frames.
    return replaceWithDocument (file, document, Durable::no);
}
