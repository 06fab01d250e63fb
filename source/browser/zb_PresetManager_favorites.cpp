// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/favorites_file.h"
#include "browser/preset_listing.h"
#include "browser/zb_PresetManager.h"
#include "state/folder_listing.h"

void zb_PresetManager::loadFavorites()
{
    const auto stored = readFavoritesFile (favoritesFile);
    favorites.clear();

    for (const auto& path : stored)
        if (childOf (presetFolder, path).existsAsFile())
            favorites.add (path);

    if (favorites.size() != stored.size())
        saveFavorites();
}

void zb_PresetManager::saveFavorites()
{
    writeFavoritesFile (favoritesFile, favorites);
}

bool zb_PresetManager::isFavorite (const juce::String& fullPath) const
{
    return ! favorites.isEmpty() &&
           favorites.contains (relativePresetPath (juce::File (fullPath), presetFolder));
}

void zb_PresetManager::toggleFavorite (const juce::String& fullPath)
{
    const auto path = relativePresetPath (juce::File (fullPath), presetFolder);

    if (favorites.contains (path))
        favorites.removeString (path);
    else
        favorites.add (path);

    saveFavorites();
}

juce::ValueTree zb_PresetManager::makeFavoritesNode()
{
    juce::ValueTree node { juce::Identifier (typeString[kFavoritesNode]) };
    node.setProperty ("name", "Favorites", nullptr);
    node.setProperty ("path", "", nullptr);
    return node;
}
