// SPDX-License-Identifier: AGPL-3.0-or-later
#include "temporary_home.h"

#include <juce_events/juce_events.h>

#include <gtest/gtest.h>

int main (int argc, char** argv)
{
    const TemporaryHome home;  // before any call into the framework: the user's files stay unseen

    // No display but one that a test starts for itself: without a name the framework would try the first server there
    // is, which may be another test's and end before this one.
    setenv ("DISPLAY", "none", 1);

    const juce::ScopedJuceInitialiser_GUI framework;  // the parameter store has a timer
    testing::InitGoogleTest (&argc, argv);
    return RUN_ALL_TESTS();
}
