// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/zb_PresetManagerSaveWindow.h"

#include "browser/preset_listing.h"
#include "browser/preset_words.h"
#include "browser/zb_PresetManager.h"
#include "processor/zb_AudioProcessor.h"

static juce::Colour withAlpha (juce::Colour colour, juce::uint8 alpha)
{
    return colour.withAlpha (alpha);
}

zb_PresetManagerSaveWindow::zb_PresetManagerSaveWindow (zb_PresetManager& manager,
                                                        const juce::String& folder)
    : folderPath (folder), owner (manager), cancelButton ("CANCEL", juce::translate ("Cancel")),
      saveButton ("COMMIT", juce::translate ("Save")),
      randomButton ("RAND", juce::translate ("Random Name"))
{
    setTitle (juce::translate ("Save Preset"));

    const auto& colours = owner.colours;
    nameEditor.setTitle (juce::translate ("Preset name"));
    nameEditor.setColour (juce::TextEditor::backgroundColourId,
                          withAlpha (colours.colourText, 0x1a));
    nameEditor.setColour (juce::TextEditor::outlineColourId, juce::Colours::transparentBlack);
    nameEditor.setColour (juce::TextEditor::shadowColourId, juce::Colours::transparentBlack);
    nameEditor.setColour (juce::TextEditor::focusedOutlineColourId,
                          withAlpha (colours.colourText, 0x4c));
    nameEditor.setColour (juce::TextEditor::textColourId, colours.colourText);
    nameEditor.setColour (juce::TextEditor::highlightedTextColourId, colours.colourText);
    nameEditor.setColour (juce::TextEditor::highlightColourId, colours.colourAccent);
    nameEditor.setColour (juce::CaretComponent::caretColourId, colours.colourText);
    nameEditor.setJustification (juce::Justification::centredLeft);
    nameEditor.setSelectAllWhenFocused (true);
    nameEditor.setText (owner.processor.getPresetName(), juce::dontSendNotification);
    nameEditor.addListener (this);
    addAndMakeVisible (nameEditor);

    for (auto* const button : { &cancelButton, &saveButton, &randomButton })
    {
        button->addListener (this);
        addAndMakeVisible (button);
    }
}

void zb_PresetManagerSaveWindow::resized()
{
    unit = owner.unit;
    box = juce::Rectangle<float> (40.0f, 20.0f) * unit;
    box.setCentre (getLocalBounds().toFloat().getCentre());

    const float seventh = static_cast<float> (getWidth()) / 7.0f;
    const float left = box.getCentreX() - 18.0f * unit;
    const juce::Rectangle<float> button (left, box.getY() + 16.0f * unit, 10.0f * unit,
                                         3.0f * unit);
    cancelButton.setBounds (button.toNearestInt());
    saveButton.setBounds (button.translated (11.0f * unit, 0.0f).toNearestInt());
    randomButton.setBounds (
        button.translated (22.0f * unit, 0.0f).withWidth (seventh).toNearestInt());

    nameEditor.setBounds (
        juce::Rectangle<float> (left, box.getY() + 4.25f * unit, 2.1f * seventh - unit, 2.0f * unit)
            .toNearestInt());
    nameEditor.applyFontToAllText (owner.look.regularFont (1.4f * unit));
}

// --- look ----------------------------------------------------------------------------------------------

void zb_PresetManagerSaveWindow::paint (juce::Graphics& g)
{
    owner.look.drawBox (g, box, unit);
    paintTexts (g);

    for (const auto* const button : { &cancelButton, &saveButton, &randomButton })
        owner.look.drawButton (g, *button, button->getTitle(), 0.5f * unit,
                               owner.look.textSize (unit, 1.15f, 1.0f));
}

void zb_PresetManagerSaveWindow::paintTexts (juce::Graphics& g) const
{
    const auto& look = owner.look;
    const auto line = juce::Rectangle<float> (box.getCentreX() - 18.0f * unit, box.getY(),
                                              36.0f * unit, 2.0f * unit);
    g.setFont (look.regularFont (look.textSize (unit, 1.4f, 1.2f)));
    g.setColour (owner.colours.colourText);
    g.drawText (juce::translate ("Saving to folder") + "  '" +
                    juce::File (folderPath).getFileName() + "'",
                line.translated (0.0f, 0.5f * unit), juce::Justification::centredLeft, true);
    g.drawText (juce::translate ("Preset name") + ":", line.translated (0.0f, 2.35f * unit),
                juce::Justification::centredLeft, true);
    g.setColour (owner.colours.colourDim);
    g.drawFittedText (
        juce::translate (
            "To make a new folder, add a / between the folder and preset names. For example, "
            "entering Foo/Bar will create a preset named Bar in a folder named Foo"),
        line.translated (0.0f, 7.25f * unit).withHeight (7.5f * unit).toNearestInt(),
        juce::Justification::topLeft, 4, 1.0f);
}

// --- buttons -------------------------------------------------------------------------------------------

void zb_PresetManagerSaveWindow::buttonClicked (juce::Button* button)
{
    if (button == &randomButton)
        makeUpName();
    else if (button == &saveButton)
        saveFile();
    else
        leaveBrowser();
}

/** This Cancel leaves the browser as well, at once, and keeps what was last heard. */
void zb_PresetManagerSaveWindow::leaveBrowser()
{
    auto& browser = owner;
    browser.setVisible (false);
    browser.getTopLevelComponent()->repaint();
    browser.removeSaveWindow();
}

void zb_PresetManagerSaveWindow::saveFile()
{
    auto& browser = owner;
    const auto fullPath = folderPath + "/" + nameEditor.getText() + kPresetExtension;
    const juce::File folder (fullPath.upToLastOccurrenceOf ("/", false, false));

    if (! folder.exists())
        folder.createDirectory();

    if (! browser.saveStateToFile (juce::File (fullPath)))
        return;

    browser.makeNewTree();
    browser.resized();
    browser.navigateToCurrentPreset();
    browser.getTopLevelComponent()->repaint();
    browser.removeSaveWindow();
    browser.close();
}

static juce::String withCapital (const juce::String& word)
{
    return word.substring (0, 1).toUpperCase() + word.substring (1);
}

void zb_PresetManagerSaveWindow::makeUpName()
{
    constexpr int kBound = 999;  // leaves the last word of either list out; kept so
    juce::Random random;
    random.setSeedRandomly();
    const auto& adjective = presetAdjectives[random.nextInt (kBound)];
    const auto& noun = presetNouns[random.nextInt (kBound)];
    nameEditor.setText (withCapital (adjective) + " " + withCapital (noun), true);
    nameEditor.repaint();
}
