// SPDX-License-Identifier: AGPL-3.0-or-later
#include "ui/VelkorAudioProcessorEditor.h"
#include "ui/ui_fixture.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>

// The window against pictures that somebody has looked at. After a change that is meant, velkor-shot makes them anew.

namespace
{

constexpr double kTolerance = 8.0;  ///< of a tile's mean difference, of 255

/** The mean of the three colours around a pixel, over three by three pixels: what font renderers disagree about at
    the edges of letters goes under in it. */
float softened (const juce::Image::BitmapData& pixels, int x, int y)
{
    int sum = 0, count = 0;

    for (int v = juce::jmax (0, y - 1); v <= juce::jmin (pixels.height - 1, y + 1); ++v)
        for (int u = juce::jmax (0, x - 1); u <= juce::jmin (pixels.width - 1, x + 1); ++u)
        {
            const auto colour = pixels.getPixelColour (u, v);
            sum += colour.getRed() + colour.getGreen() + colour.getBlue();
            ++count;
        }

    return static_cast<float> (sum) / static_cast<float> (3 * count);
}

struct Difference
{
    double worst =
        0.0;  ///< of the tiles, the largest mean difference in softened brightness, 0 to 255
    juce::Image picture;  ///< the difference, brightened
};

/** Judged tile by tile: a handle that stands elsewhere is nothing beside a whole window. */
Difference compare (const juce::Image& expected, const juce::Image& seen)
{
    constexpr int kTile = 12;
    Difference result;
    result.picture = juce::Image (juce::Image::RGB, seen.getWidth(), seen.getHeight(), true);
    const juce::Image::BitmapData a (expected, juce::Image::BitmapData::readOnly);
    const juce::Image::BitmapData b (seen, juce::Image::BitmapData::readOnly);
    juce::Image::BitmapData out (result.picture, juce::Image::BitmapData::writeOnly);
    const auto tilesAcross = (a.width + kTile - 1) / kTile,
               tilesDown = (a.height + kTile - 1) / kTile;
    std::vector<double> tiles (static_cast<std::size_t> (tilesAcross * tilesDown));

    for (int y = 0; y < a.height; ++y)
        for (int x = 0; x < a.width; ++x)
        {
            const auto off = std::abs (softened (a, x, y) - softened (b, x, y));
            tiles[static_cast<std::size_t> (y / kTile * tilesAcross + x / kTile)] +=
                off / (kTile * kTile);
            out.setPixelColour (x, y, juce::Colour::greyLevel (juce::jmin (1.0f, off / 64.0f)));
        }

    result.worst = *std::max_element (tiles.begin(), tiles.end());
    return result;
}

void writePng (const juce::Image& image, const juce::File& file)
{
    file.deleteFile();
    juce::FileOutputStream stream (file);
    juce::PNGImageFormat().writeImageToStream (image, stream);
}

/** Fails, and leaves the picture and the difference in the working folder, where they differ to the eye. The picture
    may lack the lower part of the kept one. */
void expectLike (const juce::String& name, const juce::Image& seen)
{
    const juce::File kept (juce::String (VELKOR_TEST_DATA) + "/reference/ui/" + name + ".png");
    const auto whole = juce::ImageFileFormat::loadFrom (kept);
    ASSERT_TRUE (whole.getBounds().contains (seen.getBounds())) << name;
    ASSERT_EQ (whole.getWidth(), seen.getWidth()) << name;
    const auto expected = whole.getClippedImage (seen.getBounds());

    const auto difference = compare (expected, seen);

    if (difference.worst > kTolerance)
    {
        const auto folder = juce::File::getCurrentWorkingDirectory();
        writePng (seen, folder.getChildFile (name + "-seen.png"));
        writePng (difference.picture, folder.getChildFile (name + "-difference.png"));
    }

    EXPECT_LE (difference.worst, kTolerance) << name;
}

juce::Image picture (juce::Component& component)
{
    return component.createComponentSnapshot (component.getLocalBounds());
}

}  // namespace

TEST (Snapshots, WindowLooksAsItWasApprovedAtEverySize)
{
    VelkorAudioProcessor processor;
    processor.toolTips = false;
    VelkorAudioProcessorEditor editor (processor, processor.parameterTree);

    for (const auto width : { 600, 900, 1500 })
    {
        editor.setSize (width, width * 3 / 4);
        expectLike ("window-" + juce::String (width), picture (editor));
    }
}

TEST (Snapshots, AboutViewLooksAsItWasApproved)
{
    VelkorAudioProcessor processor;
    SharedInterface shared (processor, processor.parameterTree);
    AboutView view (shared);
    view.starfield.stars.clear();  // never twice the same
    view.setSize (900, 675);

    // Without the block at the bottom, which tells of the machine.
    expectLike ("about-900", picture (view).getClippedImage ({ 0, 0, 900, 675 - 90 }));
}

// The comparison itself: it must see a fader that moved, and a switch that changed.
TEST (Snapshots, ComparisonSeesAFaderThatMoved)
{
    VelkorAudioProcessor processor;
    VelkorPanel panel (processor, processor.parameterTree);
    panel.setSize (750, 525);
    const auto before = picture (panel);
    auto& level = parameterOf (processor, WetLevel);
    level.setValueNotifyingHost (level.getValue() - 0.1f);
    const auto area = childTitled (panel, "Wet Level")->getBounds().expanded (10);
    const auto difference =
        compare (before.getClippedImage (area), picture (panel).getClippedImage (area));
    EXPECT_GT (difference.worst, 2.0 * kTolerance);
}
