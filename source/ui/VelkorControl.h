// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

/** A control of the panel, bound to one parameter. It keeps no copy of the value: it reads the parameter when it
    paints, and a change from wherever repaints it. What does not move is in the background behind it. Message
    thread. */
class VelkorControl : public juce::Component
{
public:
    /** Takes undo steps with history; a null one is for controls that change nothing. */
    VelkorControl (juce::RangedAudioParameter& parameter, juce::UndoManager* history);

protected:
    /** Sets the parameter to a place on the control, 0 to 1, as one gesture and one undo step. */
    void setCompletely (float normalised);

    juce::RangedAudioParameter& param;
    juce::ParameterAttachment attachment;

private:
    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (VelkorControl)
};
