// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_graphics/juce_graphics.h>

/** Cuts frame index out of a strip that holds count frames, top to bottom; the pixels are shared with the strip.
    Empty where the strip is. Any thread. */
juce::Image stripFrame (const juce::Image& strip, int index, int count);

/** All count frames of a strip, the top one first. Any thread. */
juce::Array<juce::Image> stripFrames (const juce::Image& strip, int count);

/** Stretches an image over an area, each axis by its own scale; nothing for an empty image. Message thread. */
void drawStretched (juce::Graphics& g, const juce::Image& image, juce::Rectangle<float> area);
