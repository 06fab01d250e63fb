// SPDX-License-Identifier: AGPL-3.0-or-later
#include "ui/ValueLabel.h"

static const juce::Colour ink { 0xff0c0c0d };

ValueLabel::ValueLabel (juce::RangedAudioParameter& parameter, juce::RangedAudioParameter* watched)
    : VelkorControl (parameter, nullptr)
{
    setTitle (parameter.getName (128) + " value");
    setDescription ("The fader's value as text");
    setInterceptsMouseClicks (false, false);

    if (watched != nullptr)
    {
        syncAttachment =
            std::make_unique<juce::ParameterAttachment> (*watched, [this] (float) { repaint(); });
        syncAttachment->sendInitialUpdate();
    }
}

void ValueLabel::paint (juce::Graphics& g)
{
    g.setColour (ink);
    g.setFont (juce::FontOptions (0.6f * static_cast<float> (getHeight())));
    g.drawText (param.getCurrentValueAsText(), getLocalBounds(), juce::Justification::centredRight,
                false);
}
