// SPDX-License-Identifier: AGPL-3.0-or-later
#include "ui/BitmapSlider.h"

#include "ui/image_strip.h"

BitmapSlider::BitmapSlider (juce::RangedAudioParameter& parameter, juce::UndoManager* history)
    : VelkorControl (parameter, history)
{
    setDescription ("Fader: press or drag to set, double click for the default");
}

void BitmapSlider::mouseDown (const juce::MouseEvent& event)
{
    attachment.beginGesture();
    attachment.setValueAsPartOfGesture (valueAt (event.position.x));
}

void BitmapSlider::mouseDrag (const juce::MouseEvent& event)
{
    attachment.setValueAsPartOfGesture (valueAt (event.position.x));
}

void BitmapSlider::mouseUp (const juce::MouseEvent&)
{
    attachment.endGesture();
}

// Comes after the second release, so it lies outside a gesture but within the undo step of the second press.
void BitmapSlider::mouseDoubleClick (const juce::MouseEvent&)
{
    const auto normalised = juce::jlimit (0.0f, 1.0f, param.getDefaultValue());
    attachment.setValueAsPartOfGesture (param.getNormalisableRange().convertFrom0to1 (normalised));
}

void BitmapSlider::paint (juce::Graphics& g)
{
    const auto left = param.getValue() * (static_cast<float> (getWidth()) - thumbWidth());
    drawStretched (g, thumbImage, { left, 0.0f, thumbWidth(), static_cast<float> (getHeight()) });
}

/** In pixels of the control: the handle fills its height and keeps its proportions. */
float BitmapSlider::thumbWidth() const
{
    if (thumbImage.isNull())
        return 0.0f;

    return static_cast<float> (thumbImage.getWidth()) * static_cast<float> (getHeight()) /
           static_cast<float> (thumbImage.getHeight());
}

/** In the parameter's unit. Linear in the normalised value: the taper is the range's. */
float BitmapSlider::valueAt (float x) const
{
    const auto travel = juce::jmax (1.0f, static_cast<float> (getWidth()) - thumbWidth());
    const auto position = juce::jlimit (0.0f, 1.0f, (x - 0.5f * thumbWidth()) / travel);
    return param.getNormalisableRange().convertFrom0to1 (position);
}
