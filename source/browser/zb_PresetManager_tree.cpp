// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/preset_listing.h"
#include "browser/zb_PresetManager.h"
#include "processor/zb_AudioProcessor.h"
#include "state/unseen_presets.h"

#include <array>
#include <memory>
#include <string_view>

// The tree, the flat list and the names: what the browser knows of the disk.

/** Levels of folders below the first: as many as there are columns. */
static constexpr int kTreeDepth = 3;

/** Folders that archives made on a Mac carry along. */
static constexpr auto kResourceForks = "__MACOSX";

namespace
{

/** What is known of the disk. It outlives the browser, so that an editor opens quickly when it
    opens again, and serves all instances. Message thread. */
struct DiskMemory
{
    explicit DiskMemory (const juce::File& presetFolder) : folder (presetFolder), disk (folder) {}

    static DiskMemory& of (const juce::File& presetFolder)
    {
        static std::unique_ptr<DiskMemory> memory;

        if (memory == nullptr || memory->folder != presetFolder)
            memory = std::make_unique<DiskMemory> (presetFolder);

        return *memory;
    }

    const juce::File folder;
    FolderSnapshot disk;
    NameCache names;
};

}  // namespace

void zb_PresetManager::makeNewTree()
{
    readTree (true);
}

void zb_PresetManager::readTree (bool anew)
{
    JUCE_ASSERT_MESSAGE_THREAD
    const auto name = processor.getPresetName();
    deleteColumnsBehind (-1);
    loadFavorites();

    auto& memory = DiskMemory::of (presetFolder);
    memory.disk.refresh();

    // A failed test leaves the names of this session as they are, those of files that have gone included.
    const auto cache = memory.names.read (presetFolder, memory.disk.countPresets(), presetCache);

    if (anew || memory.disk.getVersion() != nodesVersion || cache == NameCache::Freshness::replaced)
        makeNodes (memory.disk);

    showFavoritesNode (! favorites.isEmpty());

    if (cache == NameCache::Freshness::stale)
        addUnseenPresets (presetFolder, kTreeDepth + 1, presetCache);

    if (cache == NameCache::Freshness::stale && ! presetCache.empty())
        memory.names.write (presetFolder, processor.getName(), presetCache);

    addColumn (rootTree);
    processor.currentProgram = findPresetIndex (name + kPresetExtension);
}

void zb_PresetManager::makeNodes (const FolderSnapshot& disk)
{
    nodesVersion = disk.getVersion();
    presetCounter = 0;
    presetFiles.clearQuick();

    if (rootTree.isValid())
        rootTree.removeAllChildren (nullptr);
    else
        rootTree = addToTree ("Presets", {}, kRootNode, -1);

    auto next = presetCache.begin();
    addContents (disk, { juce::File::addTrailingSeparator (presetFolder.getFullPathName()), {} },
                 rootTree, kTreeDepth, next);
}

void zb_PresetManager::showFavoritesNode (bool shown)
{
    const bool isShown = rootTree.getChild (0).hasType (typeString[kFavoritesNode]);

    if (shown && ! isShown)
        rootTree.addChild (makeFavoritesNode(), 0, nullptr);
    else if (isShown && ! shown)
        rootTree.removeChild (0, nullptr);
}

juce::ValueTree zb_PresetManager::addToTree (const juce::String& name, const juce::String& path,
                                             int type, int index)
{
    // Kept: to look up an identifier costs more than all the rest.
    static const juce::Identifier nameId ("name"), pathId ("path"), indexId ("index");
    static const std::array types { juce::Identifier (typeString[kRootNode]),
                                    juce::Identifier (typeString[kFolderNode]),
                                    juce::Identifier (typeString[kPresetNode]),
                                    juce::Identifier (typeString[kSampleNode]),
                                    juce::Identifier (typeString[kFavoritesNode]) };
    const auto position = static_cast<std::size_t> (type);
    return juce::ValueTree (position < types.size() ? types[position] : juce::Identifier(),
                            { { nameId, name }, { pathId, path }, { indexId, index } });
}

void zb_PresetManager::createFolderTree (const juce::File& folder, juce::ValueTree& parent,
                                         int depth)
{
    FolderSnapshot contents (folder);
    contents.refresh();
    auto next = presetCache.begin();
    const auto start =
        folder == presetFolder ? juce::String() : relativePresetPath (folder, presetFolder) + "/";
    addContents (contents, { juce::File::addTrailingSeparator (folder.getFullPathName()), start },
                 parent, depth, next);
}

/** Whether an entry's path is start and name. */
bool zb_PresetManager::isJoined (KnownPresets::const_iterator entry, const juce::String& start,
                                 const juce::String& name) const
{
    if (entry == presetCache.end())
        return false;

    const std::string_view path (entry->first.toRawUTF8()), first (start.toRawUTF8());
    return path.starts_with (first) && path.substr (first.size()) == name.toRawUTF8();
}

void zb_PresetManager::addContents (const FolderSnapshot& folder, const PathStarts& starts,
                                    juce::ValueTree& parent, int depth,
                                    KnownPresets::iterator& next)
{
    for (const auto& [name, isFolder, contents] : folder.getEntries())
    {
        const auto path = starts.full + name;

        if (! isFolder)
        {
            // The order of the tree is nearly that of the map: it is mostly the one behind the
            // last.
            const auto file = juce::File::createFileWithoutCheckingPath (path);
            const auto& known = isJoined (next, starts.relative, name)
                                    ? (next++)->second
                                    : nameAndType (starts.relative + name, file, next);
            parent.appendChild (addToTree (known.name, path, known.type, presetCounter), nullptr);
            presetFiles.add (file);
            ++presetCounter;
        }
        else if (name != kResourceForks && ! name.startsWithChar ('.'))
        {
            auto node = addToTree (name, path, kFolderNode, -1);

            if (depth >= 1 && contents != nullptr)
                addContents (
                    *contents,
                    { path + juce::File::getSeparatorString(), starts.relative + name + "/" }, node,
                    depth - 1, next);
            else if (depth >= 1)
                createFolderTree (juce::File (path), node, depth - 1);

            parent.appendChild (node, nullptr);
        }
    }
}

const KnownPreset& zb_PresetManager::nameAndType (const juce::String& relativePath,
                                                  const juce::File& file,
                                                  KnownPresets::iterator& next)
{
    next = presetCache.find (relativePath);

    if (next == presetCache.end())
        next = presetCache.emplace (relativePath, readPresetFile (file, processor.getName())).first;

    return (next++)->second;
}

int zb_PresetManager::findPresetIndex (const juce::String& fileName) const
{
    const auto end = juce::File::getSeparatorString() + fileName;

    // Names are compared only where the ends are the same: most files have another.
    for (int i = 0; i < presetFiles.size(); ++i)
        if (const auto& file = presetFiles.getReference (i);
            file.getFullPathName().endsWith (end) && file.getFileName() == fileName)
            return i;

    return 0;
}
