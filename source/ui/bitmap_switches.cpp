// SPDX-License-Identifier: AGPL-3.0-or-later
#include "ui/bitmap_switches.h"

#include "ui/image_strip.h"

/** Which of count choices a normalised value stands for. */
static int choiceOf (float normalised, int count)
{
    return juce::jlimit (0, count - 1,
                         juce::roundToInt (normalised * static_cast<float> (count - 1)));
}

BitmapToggle::BitmapToggle (juce::RangedAudioParameter& parameter, juce::UndoManager* history)
    : VelkorControl (parameter, history)
{
    setDescription ("Switch: press to turn on or off");
}

void BitmapToggle::mouseDown (const juce::MouseEvent&)
{
    setCompletely (param.getValue() >= 0.5f ? 0.0f : 1.0f);
}

void BitmapToggle::paint (juce::Graphics& g)
{
    drawStretched (g, param.getValue() >= 0.5f ? onImage : offImage, getLocalBounds().toFloat());
}

BitmapChoiceH::BitmapChoiceH (juce::RangedAudioParameter& parameter, const juce::Image& strip,
                              int itemCount, juce::UndoManager* history)
    : VelkorControl (parameter, history), numItems (itemCount),
      frames (stripFrames (strip, itemCount))
{
    setDescription ("Choice: press one of the segments");
}

void BitmapChoiceH::mouseDown (const juce::MouseEvent& event)
{
    const auto place = event.position.x / static_cast<float> (getWidth());
    const auto item =
        juce::jlimit (0, numItems - 1, static_cast<int> (static_cast<float> (numItems) * place));
    setCompletely (static_cast<float> (item) / static_cast<float> (numItems - 1));
}

void BitmapChoiceH::paint (juce::Graphics& g)
{
    drawStretched (g, frames[choiceOf (param.getValue(), numItems)], getLocalBounds().toFloat());
}

BitmapSelector2x2::BitmapSelector2x2 (juce::RangedAudioParameter& parameter,
                                      const juce::Image& strip, juce::UndoManager* history)
    : VelkorControl (parameter, history), frames (stripFrames (strip, 4))
{
    setDescription ("Choice: press one of the four quarters");
}

void BitmapSelector2x2::mouseDown (const juce::MouseEvent& event)
{
    const auto right = event.position.x >= 0.5f * static_cast<float> (getWidth());
    const auto bottom = event.position.y >= 0.5f * static_cast<float> (getHeight());
    setCompletely (static_cast<float> ((right ? 2 : 0) + (bottom ? 1 : 0)) / 3.0f);
}

void BitmapSelector2x2::paint (juce::Graphics& g)
{
    drawStretched (g, frames[choiceOf (param.getValue(), 4)], getLocalBounds().toFloat());
}
