// SPDX-License-Identifier: AGPL-3.0-or-later
#include "ui/VelkorControl.h"

VelkorControl::VelkorControl (juce::RangedAudioParameter& parameter, juce::UndoManager* history)
    : param (parameter), attachment (
                             parameter, [this] (float) { repaint(); }, history)
{
    setTitle (parameter.getName (128));
    attachment.sendInitialUpdate();
}

void VelkorControl::setCompletely (float normalised)
{
    attachment.setValueAsCompleteGesture (
        param.convertFrom0to1 (juce::jlimit (0.0f, 1.0f, normalised)));
}
