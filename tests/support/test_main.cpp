// SPDX-License-Identifier: AGPL-3.0-or-later
#include "temporary_home.h"

#include <juce_events/juce_events.h>

#include <gtest/gtest.h>

int main (int argc, char** argv)
{
    const TemporaryHome home;  // before any call into the framework: the user's files stay unseen
    const juce::ScopedJuceInitialiser_GUI framework;  // the parameter store has a timer
    testing::InitGoogleTest (&argc, argv);
    return RUN_ALL_TESTS();
}
