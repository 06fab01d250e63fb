// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

class zb_PresetManager;

/** Shows how far a download is. Message thread. */
class zb_PresetManagerDownloadPanel : public juce::Component
{
public:
    explicit zb_PresetManagerDownloadPanel (zb_PresetManager& manager);

    /** Shows a text; that of a download gets the percentage, or becomes that of the unpacking once it has
        finished. */
    void updatePanel (juce::String text, float newProgress, bool finished);

    /** Takes the manager's unit, pixels, and the place that goes with it. */
    void layOut (float newUnit);

    void paint (juce::Graphics& g) override;

    float unit = 9.0f;  ///< pixels
    zb_PresetManager& owner;
    juce::String message;   ///< the status line
    float progress = 0.0f;  ///< 0 to 1

private:
    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (zb_PresetManagerDownloadPanel)
};
