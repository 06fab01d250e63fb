// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

/** A button that takes the mouse for a label that its parent draws. */
class OverlayButton : public juce::TextButton
{
public:
    /** The name tells the buttons apart, the title is what a screen reader says. */
    OverlayButton (const juce::String& name, const juce::String& title) : juce::TextButton (name)
    {
        setTitle (title);
        setAlpha (0.0f);
        setMouseClickGrabsKeyboardFocus (false);
    }

private:
    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (OverlayButton)
};
