// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_graphics/juce_graphics.h>

/** A drawing that is kept at the size of the screen's pixels, so that a repaint is a copy. Stretching a picture costs
    many times as much, and the grids ask for the background behind them thirty times a second. Message
    thread. */
class KeptPicture
{
public:
    /** Draws what drawContents (juce::Graphics&) draws in a component of that size in pixels; calls it only where the
        size or the screen's scale has changed since, or after a call of forget. */
    template <typename DrawContents>
    void draw (juce::Graphics& g, int width, int height, bool opaque, DrawContents&& drawContents)
    {
        const auto scale = g.getInternalContext().getPhysicalPixelScaleFactor();
        const auto w = juce::roundToInt (static_cast<float> (width) * scale);
        const auto h = juce::roundToInt (static_cast<float> (height) * scale);

        if (w < 1 || h < 1)
            return;

        if (! picture.isValid() || picture.getWidth() != w || picture.getHeight() != h)
        {
            picture = juce::Image (opaque ? juce::Image::RGB : juce::Image::ARGB, w, h, true);
            juce::Graphics inside (picture);
            inside.addTransform (stretch (width, height, w, h));
            drawContents (inside);
        }

        g.drawImageTransformed (picture, stretch (w, h, width, height));
    }

    /** Makes the next draw call its function again. */
    void forget() { picture = {}; }

private:
    static juce::AffineTransform stretch (int fromWidth, int fromHeight, int toWidth, int toHeight)
    {
        return juce::AffineTransform::scale (
            static_cast<float> (toWidth) / static_cast<float> (fromWidth),
            static_cast<float> (toHeight) / static_cast<float> (fromHeight));
    }

    juce::Image picture;
};
