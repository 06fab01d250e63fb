// SPDX-License-Identifier: AGPL-3.0-or-later
#include "ui/AboutView.h"
#include "ui/ui_fixture.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace
{

/** How many pixels of a frame are lit. */
int litPixels (const juce::Image& frame)
{
    int lit = 0;

    for (int y = 0; y < frame.getHeight(); ++y)
        for (int x = 0; x < frame.getWidth(); ++x)
            lit += frame.getPixelAt (x, y) == juce::Colours::white ? 1 : 0;

    return lit;
}

}  // namespace

TEST (Starfield, DrawsIntoAFifthOfTheViewWithinLimits)
{
    Starfield field;
    EXPECT_EQ (field.draw (900, 675).getBounds(), juce::Rectangle<int> (0, 0, 180, 135));
    EXPECT_EQ (field.draw (600, 450).getBounds(), juce::Rectangle<int> (0, 0, 120, 90));
    EXPECT_EQ (field.draw (1500, 1125).getBounds(), juce::Rectangle<int> (0, 0, 300, 225));
    EXPECT_EQ (field.draw (100, 100).getBounds(), juce::Rectangle<int> (0, 0, 120, 90));
    EXPECT_EQ (field.draw (9000, 9000).getBounds(), juce::Rectangle<int> (0, 0, 320, 240));
}

TEST (Starfield, StarsComeNearerAndStartAgainInFrontOfTheEye)
{
    Starfield field;
    ASSERT_EQ (field.stars.size(), 170u);
    field.stars[0] = { 0.3f, -0.3f, 0.5f, 0.5f };
    field.stars[1] = { 0.3f, -0.3f, 0.07f, 0.07f };
    field.stars[2] = { 0.3f, -0.3f, -0.4f, -0.4f };
    field.advance();
    EXPECT_FLOAT_EQ (field.stars[0].z, 0.489f);
    EXPECT_EQ (field.stars[0].prevZ, 0.5f);
    EXPECT_EQ (field.stars[1].z, 1.0f);
    EXPECT_EQ (field.stars[1].prevZ, 1.0f);
    EXPECT_EQ (field.stars[2].z, 1.0f);
    EXPECT_TRUE (std::all_of (field.stars.begin(), field.stars.end(),
                              [] (const Star& star) { return star.z >= 0.06f; }));
}

TEST (Starfield, DrawsTrailsThickNearTheEyeAndDropsWhatLeavesTheFrame)
{
    Starfield field;
    field.stars = { { 0.5f, 0.0f, 0.5f, 0.5f } };  // one pixel: 180 / 2 + 135 / 2
    EXPECT_EQ (litPixels (field.draw (900, 675)), 1);
    EXPECT_EQ (field.draw (900, 675).getPixelAt (157, 67), juce::Colours::white);

    field.stars = { { 0.2f, 0.0f, 0.31f, 0.31f } };
    EXPECT_EQ (litPixels (field.draw (900, 675)), 3);

    field.stars = { { 0.5f, 0.0f, 0.5f, 1.0f } };  // a trail from 90 + 33.75 to 90 + 67.5
    EXPECT_EQ (litPixels (field.draw (900, 675)), 157 - 123 + 1);

    // Flat and steep, toward other corners, each from the middle of the frame, where a prevZ far away puts a
    // trail's start: by hand, from (89, 67) to (84, 64) and from (90, 67) to (91, 71).
    const auto trail = [&field] (float x, float y, float z)
    {
        field.stars = { { x * z / 67.5f, y * z / 67.5f, z, 1.0e4f } };
        std::vector<juce::Point<int>> lit;
        const auto& frame = field.draw (900, 675);

        for (int v = 0; v < frame.getHeight(); ++v)
            for (int u = 0; u < frame.getWidth(); ++u)
                if (frame.getPixelAt (u, v) == juce::Colours::white)
                    lit.emplace_back (u, v);

        return lit;
    };

    EXPECT_EQ (trail (-5.9f, -2.9f, 0.5f),
               (std::vector<juce::Point<int>> {
                   { 84, 64 }, { 85, 65 }, { 86, 65 }, { 87, 66 }, { 88, 66 }, { 89, 67 } }));
    EXPECT_EQ (trail (1.2f, 3.6f, 0.5f),
               (std::vector<juce::Point<int>> {
                   { 90, 67 }, { 90, 68 }, { 90, 69 }, { 91, 70 }, { 91, 71 } }));

    // Exactly on the right edge of a frame of 180 by 135, and at the eye itself.
    field.stars = { { 90.0f / 67.5f, 0.0f, 1.0f, 1.0f }, { 0.0f, 0.0f, 0.0f, 0.0f } };
    EXPECT_EQ (litPixels (field.draw (900, 675)), 0);

    for (const auto& star : field.stars)
        EXPECT_EQ (star.z, 1.0f);
}

TEST (AboutView, TellsWhatSupportNeedsToKnow)
{
    VelkorAudioProcessor processor;
    SharedInterface shared (processor, processor.parameterTree);
    const AboutView view (shared);

    const auto credits = juce::StringArray::fromLines (view.credits());
    ASSERT_GE (credits.size(), 9);
    EXPECT_EQ (credits[0], "v" VELKOR_VERSION);
    EXPECT_EQ (credits[2], "Audio Effect");
    EXPECT_TRUE (credits[4].startsWith ("DSP: ") && credits[5].startsWith ("GUI: "));
    EXPECT_TRUE (view.credits().contains ("v" VELKOR_VERSION "\r\n\r\nAudio Effect\r\n\r\nDSP: "));

    const auto system = juce::StringArray::fromLines (view.systemInfo());
    ASSERT_GE (system.size(), 6);
    EXPECT_EQ (system[0], "Plugin Type: Undefined");
    EXPECT_TRUE (system[1].startsWith ("Host Name: "));
    EXPECT_TRUE (system[2].isEmpty());
    EXPECT_EQ (system[3], "Operating System: " + juce::SystemStats::getOperatingSystemName());

    EXPECT_TRUE (view.mailLink().startsWith ("mailto:support@zubrowlabs.example?subject="));
    EXPECT_TRUE (view.mailLink().contains (
        "?subject=Velkor help&body=Plugin: Velkor " VELKOR_VERSION "\r\nPlugin Type: "));
    EXPECT_TRUE (view.mailLink().endsWith (
        "\r\n\r\nYour problem, and the steps to recreate it, if possible:\r\n"));
}

TEST (AboutView, PlacesItsButtonsByTheScaleAndLeavesOnAClick)
{
    VelkorAudioProcessor processor;
    SharedInterface shared (processor, processor.parameterTree);
    AboutView view (shared);
    juce::Component parent;
    parent.addAndMakeVisible (view);
    shared.scale = 15.0f;
    view.setSize (1500, 1125);

    for (const auto& [name, x] :
         { std::pair ("DISCORD", 938), std::pair ("WEB", 1012), std::pair ("MAIL", 1088) })
    {
        auto* found = static_cast<juce::Component*> (nullptr);

        for (auto* child : view.getChildren())
            if (child->getName() == name)
                found = child;

        ASSERT_NE (found, nullptr) << name;
        EXPECT_EQ (found->getBounds(), juce::Rectangle<int> (x, 375, 60, 60)) << name;
        EXPECT_EQ (found->getAlpha(), 0.0f);
        EXPECT_FALSE (found->getTitle().isEmpty() || found->getDescription().isEmpty()) << name;
    }

    EXPECT_TRUE (view.isTimerRunning());
    Pointer (view).press (10.0f, 10.0f);
    EXPECT_EQ (view.getParentComponent(), nullptr);
    EXPECT_FALSE (view.isTimerRunning());
}
