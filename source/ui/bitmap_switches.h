// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "ui/VelkorControl.h"

/** A switch, on from a normalised value of 0.5. Changes on the press, as one gesture. Message thread. */
class BitmapToggle : public VelkorControl
{
public:
    /** Without pictures at first. */
    BitmapToggle (juce::RangedAudioParameter& parameter, juce::UndoManager* history);

    void mouseDown (const juce::MouseEvent& event) override;
    void paint (juce::Graphics& g) override;

    juce::Image offImage, onImage;  ///< stretched over the control; an empty one is not drawn

private:
    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (BitmapToggle)
};

/** A row of equally wide segments, of which one is chosen. Message thread. */
class BitmapChoiceH : public VelkorControl
{
public:
    /** Frame k of the strip shows item k chosen; itemCount is at least 2. */
    BitmapChoiceH (juce::RangedAudioParameter& parameter, const juce::Image& strip, int itemCount,
                   juce::UndoManager* history);

    void mouseDown (const juce::MouseEvent& event) override;
    void paint (juce::Graphics& g) override;

private:
    int numItems;
    juce::Array<juce::Image> frames;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (BitmapChoiceH)
};

/** Four quarters, numbered down the columns, of which one is chosen. Message thread. */
class BitmapSelector2x2 : public VelkorControl
{
public:
    /** Frame k of the strip shows quarter k chosen. */
    BitmapSelector2x2 (juce::RangedAudioParameter& parameter, const juce::Image& strip,
                       juce::UndoManager* history);

    void mouseDown (const juce::MouseEvent& event) override;
    void paint (juce::Graphics& g) override;

private:
    juce::Array<juce::Image> frames;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (BitmapSelector2x2)
};
