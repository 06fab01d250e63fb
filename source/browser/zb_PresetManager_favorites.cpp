// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/favorites_file.h"
#include "browser/preset_listing.h"
#include "browser/zb_PresetManager.h"
#include "state/file_transfer.h"
#include "state/folder_listing.h"
#include "state/folder_lock.h"

// Other instances and processes star and move presets too, so a change begins with reading the file again.

/** Drops the paths that name no file; whether there were any. */
static bool dropMissing (juce::StringArray& paths, const juce::File& presetFolder)
{
    juce::StringArray there;

    for (const auto& path : paths)
        if (childOf (presetFolder, path).existsAsFile())
            there.add (path);

    const bool dropped = there.size() != paths.size();
    paths.swapWith (there);
    return dropped;
}

void zb_PresetManager::loadFavorites()
{
    favorites = readFavoritesFile (favoritesFile);

    if (! dropMissing (favorites, presetFolder))
        return;

    const FolderLock lock (presetFolder);
    favorites = readFavoritesFile (favoritesFile);

    if (dropMissing (favorites, presetFolder))
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
    const FolderLock lock (presetFolder);

    juce::StringArray stored;

    if (! readFavoritesToChange (favoritesFile, stored))
        return;

    favorites = stored;

    if (favorites.contains (path))
        favorites.removeString (path);
    else
        favorites.add (path);

    saveFavorites();
}

bool zb_PresetManager::moveOnDisk (const juce::File& source, const juce::File& target)
{
    const auto oldPath = relativePresetPath (source, presetFolder);
    const auto newPath = relativePresetPath (target, presetFolder);
    const auto isMoved = [&oldPath] (const juce::String& path)
    { return path == oldPath || path.startsWith (oldPath + "/"); };
    const auto starredBefore = readFavoritesFile (favoritesFile);

    // Not under the lock: a move to another disk takes as long as its copies.
    if (! moveToNewName (source, target))
        return false;

    const FolderLock lock (presetFolder);
    favorites = readFavoritesFile (favoritesFile);
    bool starred = false;

    // Another instance may have dropped the stars of the old paths meanwhile.
    for (const auto& path : starredBefore)
        if (isMoved (path))
            favorites.addIfNotAlreadyThere (path);

    for (auto& path : favorites)
        if (isMoved (path))
        {
            path = newPath + path.substring (oldPath.length());
            starred = true;
        }

    if (starred)
        saveFavorites();

    return true;
}

juce::ValueTree zb_PresetManager::makeFavoritesNode()
{
    juce::ValueTree node { juce::Identifier (typeString[kFavoritesNode]) };
    node.setProperty ("name", "Favorites", nullptr);
    node.setProperty ("path", "", nullptr);
    return node;
}
