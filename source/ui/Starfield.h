// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_graphics/juce_graphics.h>

#include <vector>

/** A point of light that flies toward the viewer. x and y go from -1 to 1, z is the depth: 1 far, 0 at the eye. */
struct Star
{
    float x, y, z, prevZ;
};

/** Stars drawn pixel by pixel into a small picture, whose cost doesn't grow with the window. Message thread. */
class Starfield
{
public:
    /** Scatters the stars. */
    Starfield();

    /** Moves every star by one step; those that come too near start again far away. */
    void advance();

    /** Draws the field for a view of a size in pixels and gives the picture, a fifth as large within limits. A star
        that stands outside it starts again. */
    const juce::Image& draw (int viewWidth, int viewHeight);

    std::vector<Star> stars;  ///< in no order

private:
    void respawnStar (Star& star);
    void drawStar (Star& star, juce::Image::BitmapData& pixels);

    juce::Image frame;
    juce::Random random;
};
