// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "ui/VelkorControl.h"

#include <memory>

/** The text of a parameter, as the host shows it. Lets the mouse through to the fader that it overlaps. Message
    thread. */
class ValueLabel : public VelkorControl
{
public:
    /** Watches a second parameter too, which changes the first one's text; null where there is none. */
    ValueLabel (juce::RangedAudioParameter& parameter, juce::RangedAudioParameter* watched);

    void mouseDown (const juce::MouseEvent&) override {}
    void paint (juce::Graphics& g) override;

private:
    std::unique_ptr<juce::ParameterAttachment> syncAttachment;  ///< null in plain labels

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (ValueLabel)
};
