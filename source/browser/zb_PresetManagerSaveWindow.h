// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "browser/overlay_button.h"

#include <juce_gui_basics/juce_gui_basics.h>

class zb_PresetManager;

/** Asks for a preset's name and saves the present sound. Covers the browser, which owns it. Message thread. */
class zb_PresetManagerSaveWindow : public juce::Component,
                                   public juce::Button::Listener,
                                   public juce::TextEditor::Listener
{
public:
    zb_PresetManagerSaveWindow (zb_PresetManager& manager, const juce::String& folder);

    void paint (juce::Graphics& g) override;
    void resized() override;

    /** "CANCEL", "COMMIT" and "RAND". The first two may delete this. */
    void buttonClicked (juce::Button* button) override;

    /** Saves. May delete this. */
    void textEditorReturnKeyPressed (juce::TextEditor&) override { saveFile(); }

    /** Writes the sound of this moment to the file of the name in the editor, over whatever is there, and
        closes the browser. Stays open if the file could not be written. May delete this. */
    void saveFile();

    const juce::String folderPath;  ///< the target folder
    juce::TextEditor nameEditor;

private:
    void leaveBrowser();
    void makeUpName();
    void paintTexts (juce::Graphics& g) const;

    zb_PresetManager& owner;
    float unit = 9.0f;  ///< the manager's, pixels
    juce::Rectangle<float> box;
    OverlayButton cancelButton, saveButton, randomButton;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (zb_PresetManagerSaveWindow)
};
