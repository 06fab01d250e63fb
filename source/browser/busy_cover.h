// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

class zb_PresetManager;

/** Lets the message loop run for a moment, so that the window lives and shows what is new; false if the program is
    about to end. Any component may be gone then. Message thread. */
bool letMessageLoopRun();

/** Covers the browser while it is at work for longer than a moment: says so, by a line of text and by the cursor, and
    keeps clicks and keys from it. Message thread. */
class BusyCover : public juce::Component
{
public:
    /** Covers a browser, which owns it and outlives it, and takes the keyboard's focus. */
    BusyCover (zb_PresetManager& manager, const juce::String& textToShow);

    void paint (juce::Graphics& g) override;
    bool keyPressed (const juce::KeyPress& key) override;

private:
    zb_PresetManager& owner;
    const juce::String text;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (BusyCover)
};
