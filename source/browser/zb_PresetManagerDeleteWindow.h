// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "browser/overlay_button.h"

#include <juce_gui_basics/juce_gui_basics.h>

class zb_PresetManager;

/** Asks whether a preset, or a folder with all that is in it, is to go. Covers the browser, which owns it.
    Message thread. */
class zb_PresetManagerDeleteWindow : public juce::Component, public juce::Button::Listener
{
public:
    zb_PresetManagerDeleteWindow (zb_PresetManager& manager, const juce::String& fullPath);

    void paint (juce::Graphics& g) override;
    void resized() override;

    /** "Do it!" and "Cancel". Both may delete this. */
    void buttonClicked (juce::Button* button) override;

    const juce::String path;  ///< what is to be deleted

private:
    void deleteForGood();

    zb_PresetManager& owner;
    float unit = 9.0f;  ///< the manager's, pixels
    juce::Rectangle<float> box;
    OverlayButton doIt, keep;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (zb_PresetManagerDeleteWindow)
};
