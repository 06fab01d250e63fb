// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

/** Types of the browser's nodes. The names are those of the nodes, the indices are stored in the file of
    names: never edit. */
extern const juce::StringArray typeString;

/** Indices into typeString. */
enum NodeType
{
    kRootNode,
    kFolderNode,
    kPresetNode,
    kSampleNode,
    kFavoritesNode
};

/** Labels of the browser's commands. The index is the button's name. */
extern const juce::StringArray buttonString;

/** Tooltips of the commands; the last one has none. */
extern const juce::StringArray toolTipString;

/** Indices of the commands. */
enum BrowserCommand
{
    kCopyCommand,
    kPasteCommand,
    kImportCommand,
    kExportCommand,
    kDeleteCommand,
    kSaveCommand,
    kDownloadCommand,
    kCancelCommand,
    kCloseCommand,
    kNumCommands
};
