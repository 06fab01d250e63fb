// SPDX-License-Identifier: AGPL-3.0-or-later
#include "ui/VelkorAudioProcessorEditor.h"
#include "ui/ui_fixture.h"
#include "velkor_shot/still_stars.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <vector>

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

/** The largest mean difference in softened brightness of any tile, 0 to 255. By tiles: a handle that stands elsewhere
    is nothing beside a whole window. */
double difference (const juce::Image& expected, const juce::Image& seen)
{
    constexpr int kTile = 12;
    const juce::Image::BitmapData a (expected, juce::Image::BitmapData::readOnly);
    const juce::Image::BitmapData b (seen, juce::Image::BitmapData::readOnly);
    const auto tilesAcross = (a.width + kTile - 1) / kTile;
    const auto tilesDown = (a.height + kTile - 1) / kTile;
    std::vector<double> tiles (static_cast<std::size_t> (tilesAcross * tilesDown));

    for (int y = 0; y < a.height; ++y)
        for (int x = 0; x < a.width; ++x)
            tiles[static_cast<std::size_t> (y / kTile * tilesAcross + x / kTile)] +=
                std::abs (softened (a, x, y) - softened (b, x, y)) / (kTile * kTile);

    return *std::max_element (tiles.begin(), tiles.end());
}

/** Fails where they differ to the eye. The picture may lack the lower part of the kept one. */
void expectLike (const juce::String& name, const juce::Image& seen)
{
    const juce::File kept (juce::String (VELKOR_TEST_DATA) + "/reference/ui/" + name + ".png");
    const auto whole = juce::ImageFileFormat::loadFrom (kept);
    ASSERT_EQ (whole.getWidth(), seen.getWidth()) << name;
    ASSERT_GE (whole.getHeight(), seen.getHeight()) << name;
    EXPECT_LE (difference (whole.getClippedImage (seen.getBounds()), seen), kTolerance) << name;
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

// Every switch on, every choice at another item, faders at their ends: what the default patch does not show.
TEST (Snapshots, WindowWithEverythingOnLooksAsItWasApproved)
{
    VelkorAudioProcessor processor;
    processor.toolTips = false;
    processor.uiWidth = 900;
    processor.presetName = "Everything On *";

    for (const auto& place : panel_layout::kToggles)
        parameterOf (processor, place.parameter).setValueNotifyingHost (1.0f);

    for (const auto& place : panel_layout::kBigSliders)
        parameterOf (processor, place.parameter)
            .setValueNotifyingHost (place.x < 300.0f ? 1.0f : 0.0f);

    for (const auto& place : panel_layout::kSmallSliders)
        parameterOf (processor, place.parameter)
            .setValueNotifyingHost (place.y < 360.0f ? 1.0f : 0.0f);

    parameterOf (processor, Delay1Multiplier).setValueNotifyingHost (1.0f);
    parameterOf (processor, Delay2Multiplier).setValueNotifyingHost (2.0f / 3.0f);
    parameterOf (processor, LFO1Wave).setValueNotifyingHost (1.0f / 3.0f);
    parameterOf (processor, LFO2Wave).setValueNotifyingHost (1.0f);

    for (int row = 0; row < 10; ++row)
    {
        processor.setModConnection (row % 6, row, true);
        processor.setSignalConnection (row % 8, row, true);
    }

    VelkorAudioProcessorEditor editor (processor, processor.parameterTree);
    processor.midiActivity = true;
    editor.timerCallback();
    expectLike ("window-900-lit", picture (editor));
}

TEST (Snapshots, BrowserLooksAsItWasApproved)
{
    VelkorAudioProcessor processor;
    processor.toolTips = false;
    processor.uiWidth = 900;
    VelkorAudioProcessorEditor editor (processor, processor.parameterTree);
    auto* const browser = childOf<zb_PresetManager> (editor);
    ASSERT_NE (browser, nullptr);
    processor.currentProgram = 11;
    browser->setVisible (true);
    browser->navigateToCurrentPreset();
    browser->toFront (false);
    expectLike ("browser-900", picture (editor));
}

TEST (Snapshots, AboutViewLooksAsItWasApproved)
{
    VelkorAudioProcessor processor;
    SharedInterface shared (processor, processor.parameterTree);
    AboutView view (shared);
    view.starfield.stars = stillStars();
    view.setSize (900, 675);

    // Without the block at the bottom, which tells of the machine.
    expectLike ("about-900", picture (view).getClippedImage ({ 0, 0, 900, 675 - 90 }));
}
