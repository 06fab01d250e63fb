// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "browser/browser_look.h"
#include "browser/browser_strings.h"
#include "browser/busy_cover.h"
#include "browser/factory_download.h"
#include "browser/zb_PresetManagerColumn.h"
#include "browser/zb_PresetManagerDeleteWindow.h"
#include "browser/zb_PresetManagerDownloadListener.h"
#include "browser/zb_PresetManagerDownloadPanel.h"
#include "browser/zb_PresetManagerSaveWindow.h"
#include "state/folder_snapshot.h"
#include "state/name_cache.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <array>
#include <memory>

class zb_AudioProcessor;

/** The preset browser: commands on the left, up to four columns of folders and presets on the right. It covers
    its parent, which shows it; it hides itself. To select a preset is to hear it; Cancel goes back to what
    undoState holds. All of it is for the message thread. */
class zb_PresetManager : public juce::Component,
                         public juce::Button::Listener,
                         public juce::DragAndDropContainer
{
public:
    /** Reads the folder and stays hidden. The processor and the folder outlive the browser. Either typeface
        may be null. */
    zb_PresetManager (zb_AudioProcessor& owner, juce::File& folder, juce::Typeface::Ptr regular,
                      juce::Typeface::Ptr semibold);
    ~zb_PresetManager() override;

    // --- the present sound ---------------------------------------------------------------------------------

    /** The document of the present sound as the text of a preset file. */
    void getStateAsText (juce::String& text);

    /** Loads a text; one that doesn't parse changes nothing. */
    void setStateFromText (const juce::String& text);

    /** Names the preset after the file and writes it; false if it was not written. */
    bool saveStateToFile (const juce::File& file);

    /** Loads a file; what can't be read leaves a failure text for a name. */
    void setStateFromFile (const juce::File& file);

    /** Loads the next or the previous of presetFiles, round the ends; does nothing if there are none. */
    void presetsDecInc (bool forward);

    // --- the tree ------------------------------------------------------------------------------------------

    /** Rebuilds tree, list and favourites from the disk and opens the first column alone. Writes the file of
        names if it was stale. */
    void makeNewTree();

    /** A new node, attached to nothing. A type outside of typeString has an empty name. */
    juce::ValueTree addToTree (const juce::String& name, const juce::String& path, int type,
                               int index);

    /** Adds what is in folder to parent, and depth more levels below that. */
    void createFolderTree (const juce::File& folder, juce::ValueTree& parent, int depth);

    /** Reads favorites, and forgets those that are gone, on disk as well. */
    void loadFavorites();
    void saveFavorites();
    bool isFavorite (const juce::String& fullPath) const;

    /** Adds a file to the favourites on disk or removes it. The tree stays as it is. Changes nothing if there is a file
        of favourites that can't be read. */
    void toggleFavorite (const juce::String& fullPath);

    /** Moves a file or a folder to a name that is free, and its favourites with it; false if nothing was moved. The
        tree stays as it is. */
    bool moveOnDisk (const juce::File& source, const juce::File& target);

    /** The first of presetFiles with this file name; 0 if there is none. */
    int findPresetIndex (const juce::String& fileName) const;

    // --- navigation ----------------------------------------------------------------------------------------

    /** Reacts to a selected row: opens a folder in the next column, loads a preset. Deletes the columns behind
        columnIndex. */
    void itemSelected (const juce::ValueTree& item, int columnIndex);

    /** Selects the file at currentProgram, and the folders that lead there, without loading it. */
    void navigateToCurrentPreset();

    /** Names of the open folders from the first column on. */
    juce::StringArray getCurrentPath() const;

    /** Opens folders by name, as far as they are found. */
    void navigateToPath (const juce::StringArray& names);

    /** Rebuilds the tree after a change of the folder and opens what of the path is still
        there. The view and the current program stay, as far as what they show does. Deletes all
        columns: a column that calls this may not touch itself afterwards. */
    void rebuildAndReopen (const juce::StringArray& path);

    /** Toggles a favourite and does the same, but for the row of a preset, which is not
        selected again. Builds only those nodes that changed if nothing else changed on disk. */
    void toggleAndReopen (const juce::String& fullPath, const juce::StringArray& path);

    /** What a move or a deletion ends with: rebuilds, and tells the host. */
    void folderChanged (const juce::StringArray& path);

    // --- the panel -----------------------------------------------------------------------------------------

    /** Fades out over a quarter of a second; at once where nobody sees it. */
    void close();

    /** Goes back to the sound from before the browser was opened, and closes. */
    void cancel();

    /** The folder that a save or an import goes to: the selected one, that of the selected preset, or the
        preset folder. */
    juce::File targetFolder() const;

    /** Unpacks an archive into a folder of its name in the target folder, or loads a preset and saves it in
        the target folder; ignores any other file. Then rebuilds. While it unpacks, the message loop runs at
        times, so the browser may be gone when this returns: then the rest is not unpacked. Does nothing while
        another import is at it. */
    void importFile (const juce::File& file);

    /** What the export command hands out: the selected preset, or an archive of the selected folder in the
        system's temporary folder. */
    juce::File makeExport() const;

    /** Deletes an overlay. The overlay itself may call this, and may not touch itself afterwards. */
    void removeDeleteWindow();
    void removeSaveWindow();

    /** Column index, or nullptr. */
    zb_PresetManagerColumn* getColumn (int index) const;

    void paint (juce::Graphics& g) override;
    void resized() override;
    void visibilityChanged() override;
    bool keyPressed (const juce::KeyPress& key) override;
    void focusGained (FocusChangeType cause) override;
    void buttonClicked (juce::Button* button) override;

    zb_AudioProcessor& processor;
    juce::File& presetFolder;
    const BrowserLook look;
    const BrowserColours& colours = look.colours;
    bool navigating = false;  ///< rows are being selected for show: don't load them
    juce::File favoritesFile;
    juce::StringArray favorites;  ///< paths relative to presetFolder, the newest last
    juce::File cacheFile;
    KnownPresets presetCache;  ///< outlives rebuilds, with entries of files that have gone since
    int presetCounter = 0;     ///< the next index to hand out
    juce::Array<juce::File> presetFiles;  ///< all presets in the order of the tree
    juce::ValueTree rootTree;
    juce::String selectedPath;  ///< of the last row that was selected, also after that has gone
    juce::OwnedArray<zb_PresetManagerColumn, juce::CriticalSection> columns;

    juce::String undoState;       ///< document from when the browser was opened; empty until then
    juce::String undoPresetName;  ///< presetName at that moment
    int undoProgram = 0;          ///< currentProgram at that moment
    float unit = 9.0f;            ///< 1 % of the width, pixels
    std::array<std::unique_ptr<juce::TextButton>, kNumCommands> buttons;
    std::unique_ptr<zb_PresetManagerDeleteWindow> deleteWindow;
    std::unique_ptr<zb_PresetManagerSaveWindow> saveWindow;
    std::unique_ptr<BusyCover> busyCover;  ///< while an import or an export is at it
    std::shared_ptr<zb_PresetManagerDownloadListener> downloadListener;  ///< and the download's
    std::unique_ptr<zb_PresetManagerDownloadPanel> downloadPanel;
    std::unique_ptr<FactoryDownload> download;  ///< the running one; empty if none is

private:
    /** What paths begin with in a folder. */
    struct PathStarts
    {
        juce::String full, relative;
    };

    /** The rebuild; if not anew, nodes are made only if they would be others. */
    void readTree (bool anew);
    void makeNodes (const FolderSnapshot& disk);
    void showFavoritesNode (bool shown);
    void addContents (const FolderSnapshot& contents, const PathStarts& starts,
                      juce::ValueTree& parent, int depth, KnownPresets::iterator& next);
    bool isJoined (KnownPresets::const_iterator entry, const juce::String& start,
                   const juce::String& name) const;

    /** Finds a preset's name, if need be in its file. Leaves next behind the preset. */
    const KnownPreset& nameAndType (const juce::String& relativePath, const juce::File& file,
                                    KnownPresets::iterator& next);
    void reopen (const juce::StringArray& path, bool anew);
    juce::File currentPreset() const;
    juce::ValueTree makeFavoritesNode();
    void deleteColumnsBehind (int columnIndex);
    void addColumn (const juce::ValueTree& node);
    void refreshColumns();
    void loadSelected (const juce::ValueTree& item);
    void setButtonTexts (bool folderSelected);

    void makeButtons();
    void layOutButtons();
    void paintButtons (juce::Graphics& g) const;

    void copyToClipboard();
    void pasteFromClipboard();
    void chooseImport();
    bool unpackUnderCover (const juce::File& archive, const juce::File& target);
    bool coverForExport();
    void chooseExport();
    void openDeleteWindow();
    void openSaveWindow();
    juce::File downloadTarget() const;
    void downloadFactoryContent();
    void installFactoryContent();

    int nodesVersion = 0;  ///< of the snapshot that the nodes were made of

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (zb_PresetManager)
};
