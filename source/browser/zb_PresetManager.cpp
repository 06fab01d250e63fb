// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/zb_PresetManager.h"

#include "processor/zb_AudioProcessor.h"
#include "state/state_carriers.h"

#include <utility>

/** Length of a fade, ms. */
static constexpr int kFadeMs = 250;

/** Share of the width that the commands take, in units; the columns share the rest. */
static constexpr float kStripUnits = 18.0f;
static constexpr float kNumColumns = 4.0f;

zb_PresetManager::zb_PresetManager (zb_AudioProcessor& owner, juce::File& folder,
                                    juce::Typeface::Ptr regular, juce::Typeface::Ptr semibold)
    : processor (owner), presetFolder (folder), look (std::move (regular), std::move (semibold)),
      favoritesFile (folder.getChildFile ("favorites.xml")), cacheFile (nameCacheFile (folder))
{
    setTitle ("Preset browser");
    setWantsKeyboardFocus (true);
    setFocusContainerType (FocusContainerType::focusContainer);
    makeButtons();
    makeNewTree();
    setVisible (false);
}

zb_PresetManager::~zb_PresetManager()
{
    deleteColumnsBehind (-1);
}

// --- the present sound ---------------------------------------------------------------------------------

void zb_PresetManager::getStateAsText (juce::String& text)
{
    ::getStateAsText (processor, text);
}

void zb_PresetManager::setStateFromText (const juce::String& text)
{
    ::setStateFromText (processor, text);
}

bool zb_PresetManager::saveStateToFile (const juce::File& file)
{
    return ::saveStateToFile (processor, file);
}

void zb_PresetManager::setStateFromFile (const juce::File& file)
{
    ::setStateFromFile (processor, file);
}

void zb_PresetManager::presetsDecInc (bool forward)
{
    JUCE_ASSERT_MESSAGE_THREAD
    const int last = presetFiles.size() - 1;

    if (last < 0)
        return;

    // The list may have become shorter than it was when this one counted.
    int program = processor.currentProgram;

    if (forward)
        program = program >= last ? 0 : program + 1;
    else
        program = program <= 0 || program > last ? last : program - 1;

    processor.currentProgram = program;

    setStateFromFile (presetFiles[program]);
    processor.updateHostDisplay (zb_AudioProcessor::stateChanged());
}

// --- layout --------------------------------------------------------------------------------------------

void zb_PresetManager::resized()
{
    unit = static_cast<float> (getWidth()) * 0.01f;
    const auto width = static_cast<float> (getWidth());
    const auto height = static_cast<float> (getHeight());
    const float columnWidth = (width - kStripUnits * unit) / kNumColumns;

    for (int i = 0; i < columns.size(); ++i)
    {
        auto& column = *columns[i];
        column.unit = unit;
        column.setBounds (juce::Rectangle<float> (
                              kStripUnits * unit + static_cast<float> (i) * columnWidth + unit,
                              unit, columnWidth - 2.0f * unit, height - 2.0f * unit)
                              .toNearestInt());
        column.resized();  // the unit may be new where the bounds are the old ones
    }

    layOutButtons();

    if (deleteWindow != nullptr)
        deleteWindow->setBounds (getLocalBounds());

    if (saveWindow != nullptr)
        saveWindow->setBounds (getLocalBounds());

    if (downloadPanel != nullptr)
        downloadPanel->layOut (unit);

    if (busyCover != nullptr)
        busyCover->setBounds (getLocalBounds());

    repaint();
}

void zb_PresetManager::makeButtons()
{
    for (int i = 0; i < kNumCommands; ++i)
    {
        auto& button = buttons[static_cast<std::size_t> (i)];
        button = std::make_unique<juce::TextButton> (juce::String (i));
        button->setTooltip (juce::translate (toolTipString[i]));
        button->setButtonText (juce::translate (buttonString[i]));
        button->setAlpha (0.0f);
        button->setMouseClickGrabsKeyboardFocus (false);  // the arrow keys stay with the columns
        button->addListener (this);
        addAndMakeVisible (*button);
    }
}

void zb_PresetManager::setButtonTexts (bool folderSelected)
{
    buttons[kExportCommand]->setButtonText (
        juce::translate (folderSelected ? "Export Folder As Zip" : "Export Single Preset"));
    buttons[kDeleteCommand]->setButtonText (
        juce::translate (folderSelected ? "Delete Folder" : "Delete Preset"));
    repaint();
}

void zb_PresetManager::layOutButtons()
{
    struct Place
    {
        BrowserCommand command;
        float x, y, width;  // units
    };

    static constexpr float kHeight = 2.75f;
    static constexpr Place kPlaces[] = {
        { kCancelCommand, 2.0f, 2.0f, 6.75f },    { kCloseCommand, 9.25f, 2.0f, 6.75f },
        { kSaveCommand, 2.0f, 9.75f, 14.0f },     { kDeleteCommand, 2.0f, 13.0f, 14.0f },
        { kCopyCommand, 2.0f, 16.25f, 6.75f },    { kPasteCommand, 9.25f, 16.25f, 6.75f },
        { kImportCommand, 2.0f, 19.5f, 14.0f },   { kExportCommand, 2.0f, 22.75f, 14.0f },
        { kDownloadCommand, 2.0f, 26.0f, 14.0f },
    };

    for (const auto& place : kPlaces)
    {
        const bool offered = place.command != kDownloadCommand || processor.factoryContentOffered;

        // Without bounds alone, the tab key would still find it.
        buttons[place.command]->setVisible (offered);
        buttons[place.command]->setBounds (
            offered ? (juce::Rectangle<float> (place.x, place.y, place.width, kHeight) * unit)
                          .toNearestInt()
                    : juce::Rectangle<int>());
    }
}

// --- look ----------------------------------------------------------------------------------------------

void zb_PresetManager::paint (juce::Graphics& g)
{
    g.fillAll (colours.colourBackground.brighter (0.1f));

    // Hairlines show where the columns are, also those that are closed.
    const float columnWidth = (static_cast<float> (getWidth()) - kStripUnits * unit) / kNumColumns;
    g.setColour (colours.colourDim.withAlpha (0.16f));

    for (int i = 0; i < static_cast<int> (kNumColumns); ++i)
        g.fillRect (juce::Rectangle<float> (
            kStripUnits * unit + static_cast<float> (i) * columnWidth, 2.0f * unit, 1.0f,
            static_cast<float> (getHeight()) - 4.0f * unit));

    paintButtons (g);
}

void zb_PresetManager::paintButtons (juce::Graphics& g) const
{
    for (const auto& button : buttons)
        if (! button->getBounds().isEmpty())
            look.drawButton (g, *button, button->getButtonText(), unit * 1.25f,
                             look.textSize (unit, 1.25f, 1.0f));
}

// --- keys and closing ----------------------------------------------------------------------------------

bool zb_PresetManager::keyPressed (const juce::KeyPress& key)
{
    if (key == juce::KeyPress (juce::KeyPress::returnKey))
    {
        close();
        return true;
    }

    if (key == juce::KeyPress (juce::KeyPress::escapeKey))
    {
        cancel();
        return true;
    }

    return false;
}

void zb_PresetManager::focusGained (FocusChangeType)
{
    // The arrow keys go on from the row that is selected last, or begin in the first column.
    if (deleteWindow != nullptr || saveWindow != nullptr)
        return;

    for (int i = columns.size(); --i >= 0;)
        if (i == 0 || columns[i]->listBox->getSelectedRow() >= 0 || columns[i]->keyStart)
        {
            columns[i]->listBox->grabKeyboardFocus();
            return;
        }
}

/** However the browser is closed, its boxes go: nobody confirms a question of an earlier
    opening. */
void zb_PresetManager::visibilityChanged()
{
    if (isVisible())
        return;

    removeDeleteWindow();
    removeSaveWindow();
}

void zb_PresetManager::close()
{
    juce::Desktop::getInstance().getAnimator().fadeOut (this, kFadeMs);
}

void zb_PresetManager::cancel()
{
    if (undoState.isNotEmpty())
    {
        setStateFromText (undoState);
        processor.setPresetName (
            undoPresetName);  // a failed load may have left another than the document's
        processor.currentProgram = undoProgram;
        getTopLevelComponent()->repaint();
    }

    close();
}
