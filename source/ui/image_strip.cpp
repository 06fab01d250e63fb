// SPDX-License-Identifier: AGPL-3.0-or-later
#include "ui/image_strip.h"

juce::Image stripFrame (const juce::Image& strip, int index, int count)
{
    const auto height = strip.getHeight() / count;
    return strip.getClippedImage ({ 0, index * height, strip.getWidth(), height });
}

juce::Array<juce::Image> stripFrames (const juce::Image& strip, int count)
{
    juce::Array<juce::Image> frames;

    for (int i = 0; i < count; ++i)
        frames.add (stripFrame (strip, i, count));

    return frames;
}

void drawStretched (juce::Graphics& g, const juce::Image& image, juce::Rectangle<float> area)
{
    if (image.isNull() || area.isEmpty())
        return;

    g.drawImageTransformed (image, juce::AffineTransform::scale (
                                       area.getWidth() / static_cast<float> (image.getWidth()),
                                       area.getHeight() / static_cast<float> (image.getHeight()))
                                       .translated (area.getX(), area.getY()));
}
