// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

/** The browser's colours. */
struct BrowserColours
{
    juce::Colour colourBackground = juce::Colour::fromString ("ff000000");
    juce::Colour colourPanel = juce::Colour::fromString ("ff111111");
    juce::Colour colourText = juce::Colour::fromString ("ffdddddd");
    juce::Colour colourDim = juce::Colour::fromString ("ffaaaaaa");
    juce::Colour colourAccent = juce::Colour::fromString ("ff0094d8");
    juce::Colour colourHighlight = juce::Colour::fromString ("ff50d2d7");
};

/** What the browser and its overlays draw alike. Message thread. */
class BrowserLook
{
public:
    BrowserLook (juce::Typeface::Ptr regularFont, juce::Typeface::Ptr semiboldFont);

    /** Fonts of a height in pixels: the given typefaces, or the system's where there are none. */
    juce::FontOptions regularFont (float height) const;
    juce::FontOptions semiboldFont (float height) const;

    /** The text size for the user's language, in pixels: most translations are longer than the English
        texts. */
    float textSize (float unit, float english, float other) const;

    /** Draws a transparent button's look into its parent, with an outline if the keyboard has it; corner
        radius and text size in pixels. */
    void drawButton (juce::Graphics& g, const juce::Button& button, const juce::String& label,
                     float corner, float size) const;

    /** Fills and outlines the box of an overlay and dims what lies around it. */
    void drawBox (juce::Graphics& g, juce::Rectangle<float> box, float unit) const;

    const BrowserColours colours;

private:
    juce::FontOptions fontOf (const juce::Typeface::Ptr& typeface, float height) const;

    juce::Typeface::Ptr regular, semibold;
    bool english;  ///< asked for once: the answer costs two changes of the process's locale
};
