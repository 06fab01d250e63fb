// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

/** The lamp that the editor lights while notes or the wheel come in. Message thread. */
class MidiLed : public juce::Component
{
public:
    /** The strip holds the unlit frame above the lit one. */
    explicit MidiLed (const juce::Image& strip);

    void paint (juce::Graphics& g) override;

    bool lit = false;  ///< whoever changes it repaints

private:
    juce::Image unlitImage, litImage;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (MidiLed)
};
