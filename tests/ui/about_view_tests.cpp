// SPDX-License-Identifier: AGPL-3.0-or-later
#include "processor/VelkorAudioProcessor.h"
#include "ui/AboutView.h"

#include <gtest/gtest.h>

TEST (Starfield, StarsOnTheRightEdgeAndAtTheEyeAreOutsideAndStartAgain)
{
    Starfield field;
    field.stars = { { 90.0f / 67.5f, 0.0f, 1.0f, 1.0f }, { 0.0f, 0.0f, 0.0f, 0.0f } };
    const auto& frame = field.draw (900, 675);
    EXPECT_EQ (frame.getBounds(), juce::Rectangle<int> (0, 0, 180, 135));
    EXPECT_NE (field.stars[0].x, 90.0f / 67.5f);
    EXPECT_EQ (field.stars[1].z, 1.0f);
}

TEST (AboutView, TellsSupportWhatItNeeds)
{
    VelkorAudioProcessor processor;
    SharedInterface shared (processor, processor.parameterTree);
    const AboutView view (shared);
    EXPECT_EQ (view.mailLink(),
               "mailto:support@zubrowlabs.example?subject=Velkor help&body=Plugin: Velkor " +
                   juce::String (VELKOR_VERSION) + "\r\n" + view.systemInfo() +
                   "\r\nYour problem, and the steps to recreate it, if possible:\r\n");
}
