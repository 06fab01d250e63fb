// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/browser_view.h"
#include "browser/preset_listing.h"
#include "browser/zb_PresetManager.h"
#include "processor/zb_AudioProcessor.h"
#include "state/folder_listing.h"

// Rows, columns and the way to a preset.

/** The last column: folders in it have no column to open in. */
static constexpr int kLastColumn = 3;

// --- columns -------------------------------------------------------------------------------------------

zb_PresetManagerColumn* zb_PresetManager::getColumn (int index) const
{
    return columns[index];
}

void zb_PresetManager::deleteColumnsBehind (int columnIndex)
{
    const juce::ScopedLock lock (columns.getLock());

    while (columns.size() > columnIndex + 1)
        columns.removeLast();
}

void zb_PresetManager::addColumn (const juce::ValueTree& node)
{
    auto* const column =
        columns.add (new zb_PresetManagerColumn (*this, look, node, columns.size()));
    addAndMakeVisible (column);

    // What covers the columns goes on covering them.
    for (juce::Component* const overlay : { static_cast<juce::Component*> (deleteWindow.get()),
                                            static_cast<juce::Component*> (saveWindow.get()),
                                            static_cast<juce::Component*> (downloadPanel.get()),
                                            static_cast<juce::Component*> (busyCover.get()) })
        if (overlay != nullptr)
            overlay->toFront (false);
}

void zb_PresetManager::refreshColumns()
{
    const juce::ScopedLock lock (columns.getLock());

    for (auto* const column : columns)
        column->listBox->updateContent();
}

// --- selection -----------------------------------------------------------------------------------------

void zb_PresetManager::itemSelected (const juce::ValueTree& item, int columnIndex)
{
    JUCE_ASSERT_MESSAGE_THREAD
    selectedPath = item["path"].toString();
    const bool isFavorites = item.hasType (typeString[kFavoritesNode]);

    // A folder in the last column is handled like a preset: it fails to load, and the preset's name says so.
    const bool opens =
        isFavorites || (item.hasType (typeString[kFolderNode]) && columnIndex != kLastColumn);

    juce::ValueTree favoritesNode;

    if (isFavorites)
    {
        favoritesNode = makeFavoritesNode();
        auto next = presetCache.begin();

        for (const auto& path : favorites)
        {
            const auto file = childOf (presetFolder, path);

            if (! file.existsAsFile() || ! file.hasFileExtension (kPresetExtension))
                continue;

            if (const auto& known = nameAndType (path, file, next); known.name.isNotEmpty())
                favoritesNode.appendChild (
                    addToTree (known.name, file.getFullPathName(), known.type, -1), nullptr);
        }
    }

    deleteColumnsBehind (columnIndex);

    if (opens)
    {
        addColumn (isFavorites ? favoritesNode : item);
        refreshColumns();
    }

    resized();

    if (! opens && ! navigating)
        loadSelected (item);

    setButtonTexts (opens);
}

void zb_PresetManager::loadSelected (const juce::ValueTree& item)
{
    const juce::File file (selectedPath);
    setStateFromFile (file);
    const int index = item["index"];
    processor.currentProgram = index >= 0 ? index : findPresetIndex (file.getFileName());
    processor.updateHostDisplay (zb_AudioProcessor::stateChanged());
    getTopLevelComponent()->repaint();
}

// --- ways ----------------------------------------------------------------------------------------------

static int indexOfFile (const juce::ValueTree& node, const juce::String& fileName)
{
    for (int i = 0; i < node.getNumChildren(); ++i)
    {
        const auto path = node.getChild (i)["path"].toString();

        if (path.isNotEmpty() && juce::File (path).getFileName() == fileName)
            return i;
    }

    return -1;
}

void zb_PresetManager::navigateToCurrentPreset()
{
    // Beyond the list this is no file, and so not one that exists.
    const auto file = presetFiles[processor.currentProgram];

    if (! file.existsAsFile())
        return;

    const juce::ScopedValueSetter<bool> forShow (navigating, true, false);
    const auto parts =
        juce::StringArray::fromTokens (relativePresetPath (file, presetFolder), "/", {});
    auto node = rootTree;

    for (int i = 0; i < parts.size(); ++i)
    {
        auto* const column = getColumn (i);
        const int row = column != nullptr ? indexOfFile (node, parts[i]) : -1;

        if (row < 0)
            break;

        column->listBox->selectRow (row);

        if (i + 1 == parts.size())
            break;

        node = node.getChild (row);

        if (getColumn (i + 1) == nullptr)
            itemSelected (node, i);
    }
}

/** Whether a node is of a type that opens in a column, which is what a path is made of. */
static bool isTrail (const juce::ValueTree& node)
{
    return node.hasType (typeString[kFolderNode]) || node.hasType (typeString[kFavoritesNode]);
}

juce::StringArray zb_PresetManager::getCurrentPath() const
{
    juce::StringArray names;
    const juce::ScopedLock lock (columns.getLock());

    for (const auto* const column : columns)
    {
        const auto item = column->tree.getChild (column->listBox->getSelectedRow());
        const auto name = item["name"].toString();

        if (isTrail (item) && name.isNotEmpty())
            names.add (name);
    }

    return names;
}

void zb_PresetManager::navigateToPath (const juce::StringArray& names)
{
    auto node = rootTree;

    for (int i = 0; i < names.size(); ++i)
    {
        auto* const column = getColumn (i);

        if (column == nullptr)
            return;

        for (int row = 0; row < node.getNumChildren(); ++row)
        {
            const auto child = node.getChild (row);

            if (isTrail (child) && child["name"].toString() == names[i])
            {
                column->listBox->selectRow (row);
                column->handleRowSelection (row);
                node = child;
                break;
            }
        }
    }
}

/** The file at currentProgram; none if the sound has another name than that. */
juce::File zb_PresetManager::currentPreset() const
{
    const auto file = presetFiles[processor.currentProgram];

    if (file == juce::File())
        return {};

    const auto known = presetCache.find (relativePresetPath (file, presetFolder));
    const bool isHeard =
        known != presetCache.end() && known->second.name == processor.getPresetName();
    return isHeard ? file : juce::File();
}

void zb_PresetManager::reopen (const juce::StringArray& path, bool anew)
{
    const BrowserView view (*this);
    const auto current = currentPreset();
    readTree (anew);
    resized();
    navigateToPath (path);
    view.restore (*this, anew);

    // The rebuild looks for a file of the preset's name, which "01 - Name" is not.
    if (const int index = presetFiles.indexOf (current); index >= 0)
        processor.currentProgram = index;
}

void zb_PresetManager::rebuildAndReopen (const juce::StringArray& path)
{
    reopen (path, true);
}

void zb_PresetManager::toggleAndReopen (const juce::String& fullPath, const juce::StringArray& path)
{
    toggleFavorite (fullPath);
    reopen (path, false);
}

void zb_PresetManager::folderChanged (const juce::StringArray& path)
{
    rebuildAndReopen (path);
    processor.refreshProgramList();
    processor.updateHostDisplay (zb_AudioProcessor::stateChanged());
}
