// SPDX-License-Identifier: AGPL-3.0-or-later
#include "ui/AboutView.h"
#include "ui/ui_fixture.h"

#include <gtest/gtest.h>

TEST (Starfield, StarsComeNearerAndStartAgainInFrontOfTheEye)
{
    Starfield field;
    ASSERT_EQ (field.stars.size(), 170u);
    field.stars = { { 0.3f, -0.3f, 0.5f, 0.5f },
                    { 0.3f, -0.3f, 0.07f, 0.07f },
                    { 0.3f, -0.3f, -0.4f, -0.4f } };
    field.advance();
    EXPECT_FLOAT_EQ (field.stars[0].z, 0.489f);
    EXPECT_EQ (field.stars[0].prevZ, 0.5f);
    EXPECT_EQ (field.stars[1].z, 1.0f);
    EXPECT_EQ (field.stars[2].z, 1.0f);

    // Exactly on the right edge of a frame of 180 by 135, and at the eye itself.
    field.stars = { { 90.0f / 67.5f, 0.0f, 1.0f, 1.0f }, { 0.0f, 0.0f, 0.0f, 0.0f } };
    const auto& frame = field.draw (900, 675);

    for (int y = 0; y < frame.getHeight(); ++y)
        for (int x = 0; x < frame.getWidth(); ++x)
            EXPECT_EQ (frame.getPixelAt (x, y), juce::Colours::black) << x << " " << y;

    EXPECT_EQ (field.stars[1].z, 1.0f);
}

TEST (AboutView, TellsSupportWhatItNeedsAndLeavesOnAClick)
{
    VelkorAudioProcessor processor;
    SharedInterface shared (processor, processor.parameterTree);
    AboutView view (shared);
    juce::Component parent;
    parent.addAndMakeVisible (view);
    shared.scale = 15.0f;
    view.setSize (1500, 1125);
    EXPECT_EQ (view.mailLink(),
               "mailto:support@zubrowlabs.example?subject=Velkor help&body=Plugin: Velkor " +
                   juce::String (VELKOR_VERSION) + "\r\n" + view.systemInfo() +
                   "\r\nYour problem, and the steps to recreate it, if possible:\r\n");
    EXPECT_TRUE (view.systemInfo().startsWith ("Plugin Type: Undefined\r\nHost Name: "));
    EXPECT_TRUE (view.credits().startsWith ("v" VELKOR_VERSION "\r\n\r\nAudio Effect\r\n"));

    for (auto* child : view.getChildren())
        EXPECT_FALSE (child->getTitle().isEmpty() || child->getDescription().isEmpty());

    EXPECT_EQ (view.getChildren()[0]->getWidth(), 60);
    EXPECT_TRUE (view.isTimerRunning());
    Pointer (view).press (10.0f, 10.0f);
    EXPECT_EQ (view.getParentComponent(), nullptr);
    EXPECT_FALSE (view.isTimerRunning());
}
