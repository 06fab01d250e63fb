// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "ui/VelkorControl.h"

/** A horizontal fader. A press moves the handle's centre to the pointer at once; there is no relative drag and no
    fine mode. A double click puts the parameter to its default. Message thread. */
class BitmapSlider : public VelkorControl
{
public:
    /** Without a handle at first. */
    BitmapSlider (juce::RangedAudioParameter& parameter, juce::UndoManager* history);

    void mouseDown (const juce::MouseEvent& event) override;
    void mouseDrag (const juce::MouseEvent& event) override;
    void mouseUp (const juce::MouseEvent& event) override;
    void mouseDoubleClick (const juce::MouseEvent& event) override;
    void paint (juce::Graphics& g) override;

    juce::Image thumbImage;  ///< the handle; nothing is drawn without it

private:
    float thumbWidth() const;
    float valueAt (float x) const;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (BitmapSlider)
};
