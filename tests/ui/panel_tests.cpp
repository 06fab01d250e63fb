// SPDX-License-Identifier: AGPL-3.0-or-later
#include "ui/VelkorPanel.h"
#include "ui/panel_layout.h"
#include "ui/ui_fixture.h"

#include <gtest/gtest.h>
#include <map>

namespace
{

struct Panel : testing::Test
{
    Panel()
    {
        panel.setVisible (true);
        panel.setSize (900, 630);
    }

    juce::Rectangle<int> boundsOf (const juce::String& title) const
    {
        const auto* child = childTitled (panel, title);
        return child != nullptr ? child->getBounds() : juce::Rectangle<int>();
    }

    VelkorAudioProcessor processor;
    VelkorPanel panel { processor, processor.parameterTree };
};

}  // namespace

TEST_F (Panel, HasOneControlForEveryParameterAndNothingToSpare)
{
    std::map<juce::String, int> controls;
    int labels = 0, others = 0;

    for (auto* child : panel.getChildren())
    {
        if (dynamic_cast<ValueLabel*> (child) != nullptr)
            ++labels;
        else if (dynamic_cast<VelkorControl*> (child) != nullptr)
            ++controls[child->getTitle()];
        else
            ++others;

        EXPECT_TRUE (child->isVisible());
        EXPECT_FALSE (child->getTitle().isEmpty());
        EXPECT_FALSE (child->getDescription().isEmpty()) << child->getTitle();
    }

    EXPECT_EQ (panel.getNumChildComponents(), 84);
    EXPECT_EQ (labels, 24);
    EXPECT_EQ (others, 3);
    ASSERT_EQ (controls.size(), static_cast<std::size_t> (kNumParameters));

    for (const auto& info : parameterInfo)
        EXPECT_EQ (controls[info.name], 1) << info.name;
}

TEST_F (Panel, ScalesThePlacesOfTheBackgroundToItsSize)
{
    EXPECT_EQ (boundsOf ("Delay 1 Time"), juce::Rectangle<int> (42, 84, 114, 18));
    EXPECT_EQ (boundsOf ("Level 2 Mod"), juce::Rectangle<int> (541, 499, 64, 14));
    EXPECT_EQ (boundsOf ("LFO 2 Reset"), juce::Rectangle<int> (245, 376, 56, 22));
    EXPECT_EQ (boundsOf ("Delay 2 Multiplier"), juce::Rectangle<int> (188, 60, 110, 22));
    EXPECT_EQ (boundsOf ("LFO 1 Wave"), juce::Rectangle<int> (44, 475, 112, 43));
    EXPECT_EQ (boundsOf ("Output 2 Level value"), juce::Rectangle<int> (697, 256, 56, 22));
    EXPECT_EQ (boundsOf ("Modulation matrix"), juce::Rectangle<int> (350, 367, 100, 144));
    EXPECT_EQ (boundsOf ("Signal matrix"), juce::Rectangle<int> (649, 367, 133, 144));

    panel.setSize (600, 420);
    EXPECT_EQ (boundsOf ("MIDI"), juce::Rectangle<int> (16, 384, 16, 15));

    panel.setSize (1500, 1050);
    EXPECT_EQ (boundsOf ("Pan 1"), juce::Rectangle<int> (1276, 338, 132, 30));
}

TEST_F (Panel, LetsThePointerThroughTheTextsToTheFaders)
{
    for (const auto& [width, height] :
         { std::pair (600, 420), std::pair (900, 630), std::pair (1500, 1050) })
    {
        panel.setSize (width, height);

        for (const auto& label : panel_layout::kLabels)
        {
            const auto name = juce::String (paramMapper[label.parameter].name);
            const auto shared = boundsOf (name).getIntersection (boundsOf (name + " value"));
            ASSERT_FALSE (shared.isEmpty()) << name;
            EXPECT_EQ (panel.getComponentAt (shared.getCentre())->getTitle(), name);
        }
    }
}

TEST_F (Panel, GridsWriteIntoTheEngineAndTellTheHostButNotTheHistory)
{
    ASSERT_FALSE (processor.getModConnection (1, 6));
    const auto wired = processor.getSignalConnection (0, 0);
    HostLog host (processor);

    Pointer modulation (*panel.modMatrix);
    modulation.press (100.0f / 6.0f * 1.5f, 14.4f * 6.5f);
    EXPECT_TRUE (processor.getModConnection (1, 6));
    EXPECT_EQ (host.lines, std::vector<std::string> { "display" });
    EXPECT_TRUE (host.lastDetails.latencyChanged && host.lastDetails.parameterInfoChanged &&
                 host.lastDetails.programChanged);
    EXPECT_FALSE (host.lastDetails.nonParameterStateChanged);

    Pointer signal (*panel.signalMatrix);
    signal.press (1.0f, 1.0f);
    EXPECT_EQ (processor.getSignalConnection (0, 0), ! wired);
    EXPECT_EQ (host.lines.size(), 2u);
    EXPECT_FALSE (processor.undoManager.canUndo());
}

TEST_F (Panel, ChoicesAndFadersReachTheParametersThatTheyAreNamedAfter)
{
    for (const auto& place : panel_layout::kBigSliders)
    {
        const juce::String name (paramMapper[place.parameter].name);
        Pointer pointer (*childTitled (panel, name));
        pointer.press (0.0f);
        pointer.release();
        EXPECT_EQ (parameterOf (processor, place.parameter).getValue(), 0.0f) << name;
        pointer.press (1000.0f);
        pointer.release();
        EXPECT_EQ (parameterOf (processor, place.parameter).getValue(), 1.0f) << name;
    }

    for (const auto& place : panel_layout::kToggles)
    {
        const auto before = valueOf (processor, place.parameter);
        Pointer (*childTitled (panel, paramMapper[place.parameter].name)).press (1.0f);
        EXPECT_EQ (valueOf (processor, place.parameter), 1.0f - before)
            << paramMapper[place.parameter].name;
    }
}
