// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/preset_listing.h"
#include "browser/zb_PresetManager.h"
#include "processor/zb_AudioProcessor.h"
#include "state/unseen_presets.h"

// The tree, the flat list and the names: what the browser knows of the disk.

/** Levels of folders below the first: as many as there are columns. */
static constexpr int kTreeDepth = 3;

void zb_PresetManager::makeNewTree()
{
    JUCE_ASSERT_MESSAGE_THREAD
    const auto name = processor.getPresetName();
    presetCounter = 0;
    presetFiles.clearQuick();
    deleteColumnsBehind (-1);

    if (rootTree.isValid())
        for (int i = rootTree.getNumChildren(); --i >= 0;)
            rootTree.removeChild (i, nullptr);
    else
        rootTree = addToTree ("Presets", {}, kRootNode, -1);

    loadFavorites();

    if (! favorites.isEmpty())
        rootTree.appendChild (makeFavoritesNode(), nullptr);

    // A failed test leaves the names of this session as they are, those of files that have gone included.
    const bool cacheIsCurrent = readCurrentNameCache (presetFolder, presetCache);
    createFolderTree (presetFolder, rootTree, kTreeDepth);

    if (! cacheIsCurrent)
        addUnseenPresets (presetFolder, kTreeDepth + 1, presetCache);

    if (! cacheIsCurrent && ! presetCache.empty())
        writeNameCache (presetFolder, processor.getName(), presetCache);

    addColumn (rootTree);
    processor.currentProgram = findPresetIndex (name + kPresetExtension);
}

juce::ValueTree zb_PresetManager::addToTree (const juce::String& name, const juce::String& path,
                                             int type, int index)
{
    juce::ValueTree node (juce::isPositiveAndBelow (type, typeString.size())
                              ? juce::Identifier (typeString[type])
                              : juce::Identifier());
    node.setProperty ("name", name, nullptr);
    node.setProperty ("path", path, nullptr);
    node.setProperty ("index", index, nullptr);
    return node;
}

void zb_PresetManager::createFolderTree (const juce::File& folder, juce::ValueTree& parent,
                                         int depth)
{
    // Asked for once: it costs a look at the disk.
    const auto start =
        folder == presetFolder ? juce::String() : relativePresetPath (folder, presetFolder) + "/";

    for (const auto& [child, isFolder] : listFolder (folder))
    {
        if (isFolder)
        {
            auto node = addToTree (child.getFileName(), child.getFullPathName(), kFolderNode, -1);

            if (depth >= 1)
                createFolderTree (child, node, depth - 1);

            parent.appendChild (node, nullptr);
        }
        else if (child.hasFileExtension (kPresetExtension))
        {
            const auto known = nameAndType (start + child.getFileName(), child);
            parent.appendChild (
                addToTree (known.name, child.getFullPathName(), known.type, presetCounter),
                nullptr);
            presetFiles.add (child);
            ++presetCounter;
        }
    }
}

KnownPreset zb_PresetManager::nameAndType (const juce::String& relativePath, const juce::File& file)
{
    const auto found = presetCache.find (relativePath);

    if (found != presetCache.end())
        return found->second;

    return presetCache[relativePath] = readPresetFile (file, processor.getName());
}

int zb_PresetManager::findPresetIndex (const juce::String& fileName) const
{
    for (int i = 0; i < presetFiles.size(); ++i)
        if (presetFiles.getReference (i).getFileName() == fileName)
            return i;

    return 0;
}
