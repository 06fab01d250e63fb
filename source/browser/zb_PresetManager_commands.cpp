// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/archive_export.h"
#include "browser/archive_import.h"
#include "browser/preset_listing.h"
#include "browser/zb_PresetManager.h"
#include "processor/zb_AudioProcessor.h"
#include "state/document_guard.h"
#include "state/folder_listing.h"
#include "state/preset_document.h"

// The commands on the left. A file chooser runs the message loop, so the browser may be gone when it returns.

void zb_PresetManager::buttonClicked (juce::Button* button)
{
    JUCE_ASSERT_MESSAGE_THREAD

    switch (button->getName().getIntValue())
    {
    case kCopyCommand:
        return copyToClipboard();
    case kPasteCommand:
        return pasteFromClipboard();
    case kImportCommand:
        return chooseImport();
    case kExportCommand:
        return chooseExport();
    case kDeleteCommand:
        return openDeleteWindow();
    case kSaveCommand:
        return openSaveWindow();
    case kDownloadCommand:
        return downloadFactoryContent();
    case kCancelCommand:
        return cancel();
    case kCloseCommand:
        return close();
    default:
        return;
    }
}

void zb_PresetManager::copyToClipboard()
{
    juce::String text;
    getStateAsText (text);
    juce::SystemClipboard::copyTextToClipboard (text);
    setVisible (false);
}

void zb_PresetManager::pasteFromClipboard()
{
    setStateFromText (juce::SystemClipboard::getTextFromClipboard());
    setVisible (false);
}

// --- overlays ------------------------------------------------------------------------------------------

void zb_PresetManager::openDeleteWindow()
{
    if (selectedPath.isEmpty())
        return;

    deleteWindow = std::make_unique<zb_PresetManagerDeleteWindow> (*this, selectedPath);
    addAndMakeVisible (*deleteWindow);
    resized();
}

void zb_PresetManager::openSaveWindow()
{
    saveWindow =
        std::make_unique<zb_PresetManagerSaveWindow> (*this, targetFolder().getFullPathName());
    addAndMakeVisible (*saveWindow);
    resized();

    if (saveWindow->isShowing())
        saveWindow->nameEditor.grabKeyboardFocus();
}

void zb_PresetManager::removeDeleteWindow()
{
    deleteWindow.reset();
}

void zb_PresetManager::removeSaveWindow()
{
    saveWindow.reset();
}

juce::File zb_PresetManager::targetFolder() const
{
    if (selectedPath.isEmpty())
        return presetFolder;

    const juce::File selected (selectedPath);
    return selected.isDirectory() ? selected : selected.getParentDirectory();
}

// --- import --------------------------------------------------------------------------------------------

void zb_PresetManager::chooseImport()
{
    if (busyCover != nullptr)
        return;

    const SafePointer<zb_PresetManager> stillThere (this);
    juce::FileChooser chooser ("Import Preset Or Zip...",
                               juce::File::getSpecialLocation (juce::File::userDesktopDirectory));

    if (chooser.browseForFileToOpen() && stillThere != nullptr)
        importFile (chooser.getResult());
}

/** Unpacks an archive, with the window alive between its entries; false if the browser has gone meanwhile. The cover
    stays, for the rebuild that follows. */
bool zb_PresetManager::unpackUnderCover (const juce::File& archive, const juce::File& target)
{
    constexpr juce::uint32 kBetweenSlicesMs = 50;
    const SafePointer<zb_PresetManager> stillThere (this);
    busyCover = std::make_unique<BusyCover> (*this, juce::translate ("Unarchiving"));

    bool running = letMessageLoopRun();
    auto last = juce::Time::getMillisecondCounter();
    unpackArchive (archive, target,
                   [&]
                   {
                       if (juce::Time::getMillisecondCounter() - last > kBetweenSlicesMs)
                       {
                           running = running && letMessageLoopRun();
                           last = juce::Time::getMillisecondCounter();
                       }

                       return running && stillThere != nullptr;
                   });

    return stillThere != nullptr;
}

void zb_PresetManager::importFile (const juce::File& file)
{
    JUCE_ASSERT_MESSAGE_THREAD

    if (busyCover != nullptr)
        return;

    const auto folder = targetFolder();
    const auto openFolders = getCurrentPath();
    const auto extension = file.getFileExtension();

    if (extension == ".zip" || extension == ".ZIP")
    {
        const auto target = folderForArchive (file, folder);

        if (target != juce::File() && ! unpackUnderCover (file, target))
            return;
    }
    else if (file.hasFileExtension (kPresetExtension))
    {
        const auto document = parseDocument (file);

        if (document != nullptr && isPresetDocument (*document, processor.stateTag))
        {
            processor.loadStateFromXML (document.get());
            saveStateToFile (childOf (folder, file.getFileName()));
        }
    }

    rebuildAndReopen (openFolders);
    busyCover.reset();
}

// --- export --------------------------------------------------------------------------------------------

juce::File zb_PresetManager::makeExport() const
{
    if (selectedPath.isEmpty())
        return {};

    const juce::File selected (selectedPath);
    return selected.isDirectory() ? exportFolder (selected) : selected;
}

/** Covers the browser and lets that be painted; false if the browser has gone meanwhile. */
bool zb_PresetManager::coverForExport()
{
    const SafePointer<zb_PresetManager> stillThere (this);
    busyCover = std::make_unique<BusyCover> (*this, juce::translate ("Exporting"));
    return letMessageLoopRun() && stillThere != nullptr;
}

/** What to ask a chooser for. JUCE's own cannot be left with "Open" while the name in it is that
    of no file; in its save mode it can, and offers to make a folder. */
static int folderChooserFlags()
{
    using Flags = juce::FileBrowserComponent::FileChooserFlags;
    return (juce::FileChooser::isPlatformDialogAvailable() ? Flags::openMode : Flags::saveMode) |
           Flags::canSelectDirectories;
}

/** The desktop; the home folder where there is no desktop, as on a machine without a session. */
static juce::File startFolder()
{
    const auto desktop = juce::File::getSpecialLocation (juce::File::userDesktopDirectory);
    return desktop.isDirectory() ? desktop
                                 : juce::File::getSpecialLocation (juce::File::userHomeDirectory);
}

void zb_PresetManager::chooseExport()
{
    if (busyCover != nullptr || ! coverForExport())
        return;

    const SafePointer<zb_PresetManager> stillThere (this);
    const auto file = makeExport();
    busyCover.reset();
    juce::FileChooser chooser ("Export to...", childOf (startFolder(), file.getFileName()));

    if (! chooser.showDialog (folderChooserFlags(), nullptr) || stillThere == nullptr ||
        ! coverForExport())
        return;

    const auto chosen = chooser.getResult();
    copyInto (file, chosen.isDirectory() ? chosen : chosen.getParentDirectory());
    busyCover.reset();
}
