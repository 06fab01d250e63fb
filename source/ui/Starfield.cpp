// SPDX-License-Identifier: AGPL-3.0-or-later
#include "ui/Starfield.h"

#include <cstdlib>

static constexpr int kStarCount = 170;
static constexpr float kStep = 0.011f;
static constexpr float kNearest = 0.06f;
static constexpr float kThickBelow = 0.32f;  ///< a star nearer than this is three pixels big

static void setPixel (juce::Image::BitmapData& pixels, int x, int y)
{
    if (juce::isPositiveAndBelow (x, pixels.width) && juce::isPositiveAndBelow (y, pixels.height))
        pixels.setPixelColour (x, y, juce::Colours::white);
}

/** A line by Bresenham's algorithm, both ends included. */
static void drawLine (juce::Image::BitmapData& pixels, juce::Point<int> from, juce::Point<int> to,
                      bool thick)
{
    const auto dx = std::abs (to.x - from.x), dy = std::abs (to.y - from.y);
    const auto stepX = from.x < to.x ? 1 : -1, stepY = from.y < to.y ? 1 : -1;
    auto err = dx - dy;

    for (;;)
    {
        setPixel (pixels, from.x, from.y);

        if (thick)
        {
            setPixel (pixels, from.x + 1, from.y);
            setPixel (pixels, from.x, from.y + 1);
        }

        if (from == to)
            return;

        const auto e2 = 2 * err;

        if (e2 > -dy)
        {
            err -= dy;
            from.x += stepX;
        }

        if (e2 < dx)
        {
            err += dx;
            from.y += stepY;
        }
    }
}

Starfield::Starfield()
{
    random.setSeedRandomly();

    // At all depths, some behind the viewer: the first steps clear those out.
    for (int i = 0; i < kStarCount; ++i)
    {
        Star star {};
        star.x = random.nextFloat() * 2.0f - 1.0f;
        star.y = random.nextFloat() * 2.0f - 1.0f;
        star.z = random.nextFloat() * 2.0f - 1.0f;
        star.prevZ = star.z;
        stars.push_back (star);
    }
}

void Starfield::advance()
{
    for (auto& star : stars)
    {
        star.prevZ = star.z;
        star.z -= kStep;

        if (star.z < kNearest)
            respawnStar (star);
    }
}

const juce::Image& Starfield::draw (int viewWidth, int viewHeight)
{
    const auto width = juce::jlimit (120, 320, viewWidth / 5);
    const auto height = juce::jlimit (90, 240, viewHeight / 5);

    if (frame.isNull() || frame.getWidth() != width || frame.getHeight() != height)
        frame = juce::Image (juce::Image::ARGB, width, height, true);

    frame.clear (frame.getBounds(), juce::Colours::black);
    juce::Image::BitmapData pixels (frame, juce::Image::BitmapData::readWrite);

    for (auto& star : stars)
        drawStar (star, pixels);

    return frame;
}

void Starfield::respawnStar (Star& star)
{
    star.x = random.nextFloat() * 2.0f - 1.0f;
    star.y = random.nextFloat() * 2.0f - 1.0f;
    star.z = star.prevZ = 1.0f;
}

void Starfield::drawStar (Star& star, juce::Image::BitmapData& pixels)
{
    const auto width = static_cast<float> (pixels.width),
               height = static_cast<float> (pixels.height);
    const auto halfWidth = width * 0.5f, halfHeight = height * 0.5f;
    const auto px = star.x / star.z * halfHeight + halfWidth;
    const auto py = star.y / star.z * halfHeight + halfHeight;

    // Asked this way round, a star at the very eye, whose place is no number, is outside too.
    if (! (px >= 0.0f && py >= 0.0f && px < width && py < height))
    {
        respawnStar (star);
        return;
    }

    const auto qx = star.x / star.prevZ * halfHeight + halfWidth;
    const auto qy = star.y / star.prevZ * halfHeight + halfHeight;
    drawLine (pixels, { static_cast<int> (qx), static_cast<int> (qy) },
              { static_cast<int> (px), static_cast<int> (py) }, star.z < kThickBelow);
}
