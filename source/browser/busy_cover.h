// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

class zb_PresetManager;

/** Covers the browser while it is at work for longer than a moment: says so, by a line of text and by the cursor, and
    keeps clicks from it. Message thread. */
class BusyCover : public juce::Component
{
public:
    /** Covers a browser, which owns it and outlives it. */
    BusyCover (zb_PresetManager& manager, const juce::String& textToShow);

    /** Lets the message loop run for a moment, so that the window lives and the cover shows; false if the program is
        about to end. The browser, and the cover with it, may be gone then. */
    static bool letLoopRun();

    void paint (juce::Graphics& g) override;

private:
    zb_PresetManager& owner;
    const juce::String text;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (BusyCover)
};
