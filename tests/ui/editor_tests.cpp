// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/global_settings.h"
#include "ui/VelkorAudioProcessorEditor.h"
#include "ui/ui_fixture.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <stdexcept>
#include <thread>

namespace
{

struct Editor : testing::Test
{
    Editor()
    {
        processor.uiWidth = 900;  // not what the test before left in the machine's settings
        open();
    }

    void open()
    {
        editor.reset();
        editor = std::make_unique<VelkorAudioProcessorEditor> (processor, processor.parameterTree);
    }

    /** The button of that component name. */
    juce::Button& button (const juce::String& name) const
    {
        for (auto* child : editor->getChildren())
            if (child->getName() == name)
                return dynamic_cast<juce::Button&> (*child);

        throw std::runtime_error ("no button " + name.toStdString());
    }

    void click (const juce::String& name) { editor->buttonClicked (&button (name)); }

    VelkorAudioProcessor processor;
    std::unique_ptr<VelkorAudioProcessorEditor> editor;
};

}  // namespace

TEST_F (Editor, OpensAtTheStoredWidthAndThreeQuartersOfItHigh)
{
    EXPECT_EQ (editor->getBounds(), juce::Rectangle<int> (0, 0, 900, 675));

    processor.uiWidth = 1200;
    processor.uiHeight = 77;
    open();
    EXPECT_EQ (editor->getBounds(), juce::Rectangle<int> (0, 0, 1200, 900));
    EXPECT_EQ (processor.uiHeight, 900);

    GlobalSettings written {};
    readGlobalSettings (globalSettingsFile (processor.presetFolder), written);
    EXPECT_EQ (written.uiWidth, 1200);

    // A session without a width: nothing is laid out until somebody resizes the window.
    processor.uiWidth = 0;
    open();
    EXPECT_EQ (editor->getBounds(), juce::Rectangle<int>());
    const auto& bypass = button ("BYPASS");
    EXPECT_EQ (bypass.getBounds(), juce::Rectangle<int>());
    editor->setSize (600, 450);
    EXPECT_EQ (bypass.getWidth(), 31);

    // An odd width: everything is cut toward zero.
    editor->setSize (733, 550);
    EXPECT_EQ (button ("ABOUT").getBounds(), juce::Rectangle<int> (14, 10, 73, 21));
    EXPECT_EQ (childOf<juce::ResizableCornerComponent> (*editor)->getBounds(),
               juce::Rectangle<int> (719, 536, 14, 14));
    EXPECT_EQ (editor->getConstrainer()->getMinimumWidth(), 600);
    EXPECT_EQ (editor->getConstrainer()->getMaximumWidth(), 1500);
    EXPECT_EQ (editor->getConstrainer()->getFixedAspectRatio(), 4.0 / 3.0);
}

TEST_F (Editor, LampStaysLitForEightTicksAfterTheLastNote)
{
    auto& lamp = *childOf<VelkorPanel> (*editor)->midiLed;

    for (int round = 0; round < 2; ++round)  // a note starts the count again
    {
        processor.midiActivity = true;

        for (int tick = 0; tick < 8; ++tick)
        {
            editor->timerCallback();
            EXPECT_TRUE (lamp.lit) << tick;
        }
    }

    editor->timerCallback();
    EXPECT_FALSE (lamp.lit);
}

TEST_F (Editor, MarksThePresetWhileThereIsSomethingToUndo)
{
    const juce::Rectangle<int> field (315, 9, 270, 27);
    const auto picture = [&] { return editor->createComponentSnapshot (field); };
    const auto clean = picture();
    auto& panel = *childOf<VelkorPanel> (*editor);
    Pointer pointer (*childTitled (panel, "Wet Level"));
    pointer.press (20.0f);
    pointer.release();
    processor.parameterTree.copyState();
    ASSERT_TRUE (processor.undoManager.canUndo());

    auto& repaints = RepaintCount::watch (*editor);
    editor->timerCallback();
    editor->timerCallback();
    EXPECT_TRUE (std::count (repaints.areas.begin(), repaints.areas.end(), field) == 1);
    editor->setCachedComponentImage (nullptr);
    EXPECT_FALSE (samePixels (picture(), clean));

    click ("UNDO");
    EXPECT_TRUE (samePixels (picture(), clean));
    click ("REDO");
    EXPECT_FALSE (samePixels (picture(), clean));
}

TEST_F (Editor, RepaintsBothGridsOnEveryTick)
{
    auto& panel = *childOf<VelkorPanel> (*editor);
    auto& modulation = RepaintCount::watch (*panel.modMatrix);
    auto& signal = RepaintCount::watch (*panel.signalMatrix);
    editor->timerCallback();
    editor->timerCallback();
    EXPECT_EQ (modulation.count, 2);
    EXPECT_EQ (signal.count, 2);
}

TEST_F (Editor, BypassAndKillAreOneSwitch)
{
    auto& bypass = button ("BYPASS");
    bypass.setToggleState (true, juce::sendNotificationSync);
    EXPECT_EQ (valueOf (processor, Kill), 1.0f);
    Pointer (*childTitled (*childOf<VelkorPanel> (*editor), "Kill")).press (5.0f);
    EXPECT_EQ (valueOf (processor, Kill), 0.0f);
    EXPECT_FALSE (bypass.getToggleState());
}

TEST_F (Editor, PresetFieldStepsAtItsEndsAndOpensTheBrowserBetween)
{
    auto& browser = *childOf<zb_PresetManager> (*editor);
    ASSERT_EQ (browser.presetFiles.size(), 65);
    processor.currentProgram = 0;
    Pointer pointer (*editor);

    pointer.press (558.0f, 20.0f);  // the left edge of the right end
    EXPECT_EQ (processor.currentProgram, 1);
    pointer.press (584.9f, 20.0f);
    EXPECT_EQ (processor.currentProgram, 2);
    pointer.press (315.0f, 9.0f);
    pointer.press (341.9f, 35.9f);
    EXPECT_EQ (processor.currentProgram, 0);
    pointer.press (320.0f, 20.0f);
    EXPECT_EQ (processor.currentProgram, 64);
    EXPECT_FALSE (browser.isVisible());

    pointer.press (585.0f, 20.0f);  // just beyond the field
    EXPECT_FALSE (browser.isVisible());

    processor.presetName = "as it was";
    pointer.press (342.0f, 20.0f);  // the right edge of the left end is the middle's
    EXPECT_TRUE (browser.isVisible());
    EXPECT_EQ (browser.undoPresetName, "as it was");
    EXPECT_EQ (browser.undoProgram, 64);
    EXPECT_TRUE (browser.undoState.contains ("VelkorSettings"));
}

TEST_F (Editor, BrowserCoversAWindowThatIsResizedDuringAFade)
{
    auto& browser = *childOf<zb_PresetManager> (*editor);
    Pointer (*editor).press (400.0f, 20.0f);
    editor->setSize (1200, 900);
    juce::MessageManager::getInstance()->runDispatchLoopUntil (400);
    EXPECT_TRUE (browser.isVisible());
    EXPECT_EQ (browser.getAlpha(), 1.0f);
    EXPECT_EQ (browser.getBounds(), editor->getLocalBounds());
}

TEST_F (Editor, ShowsAProgramThatAHostsThreadSetsOnceItsOwnThreadGetsToIt)
{
    processor.programFolder = processor.presetFolder;
    processor.refreshProgramList();
    editor.reset (dynamic_cast<VelkorAudioProcessorEditor*> (processor.createEditorIfNeeded()));
    auto& repaints = RepaintCount::watch (*editor);
    const auto ofAllOfIt = [&]
    { return repaints.count - static_cast<int> (repaints.areas.size()); };

    std::thread ([this] { processor.setCurrentProgram (3); }).join();
    EXPECT_EQ (processor.getCurrentProgram(), 3);
    EXPECT_EQ (ofAllOfIt(), 0);
    juce::MessageManager::getInstance()->runDispatchLoopUntil (100);
    EXPECT_GT (ofAllOfIt(), 0);
}

TEST_F (Editor, StarTogglesThePresetOfTheCurrentProgramOnly)
{
    auto& browser = *childOf<zb_PresetManager> (*editor);
    processor.currentProgram = 3;
    const auto path = browser.presetFiles[3].getFullPathName();
    click ("FAVORITE");
    EXPECT_TRUE (browser.isFavorite (path));
    click ("FAVORITE");
    EXPECT_FALSE (browser.isFavorite (path));

    processor.currentProgram = 1000;
    click ("FAVORITE");
    processor.currentProgram = -1;
    click ("FAVORITE");
    EXPECT_FALSE (browser.isFavorite ({}));
}

TEST_F (Editor, MakesANewAboutViewAtEveryClick)
{
    click ("ABOUT");
    auto* first = childOf<AboutView> (*editor);
    ASSERT_NE (first, nullptr);
    EXPECT_EQ (first->getBounds(), editor->getLocalBounds());
    Pointer (*first).press (5.0f, 5.0f);
    EXPECT_EQ (childOf<AboutView> (*editor), nullptr);

    click ("ABOUT");
    click ("ABOUT");
    int views = 0;

    for (auto* child : editor->getChildren())
        views += dynamic_cast<AboutView*> (child) != nullptr ? 1 : 0;

    EXPECT_EQ (views, 1);
}

TEST_F (Editor, ShowsToolTipsOnlyWhereTheMachineWantsThemAndTellsScreenReadersAlways)
{
    EXPECT_NE (childOf<juce::TooltipWindow> (*editor), nullptr);
    processor.toolTips = false;
    open();
    EXPECT_EQ (childOf<juce::TooltipWindow> (*editor), nullptr);

    for (const auto* name : { "ABOUT", "FAVORITE", "BYPASS", "UNDO", "REDO" })
    {
        EXPECT_FALSE (button (name).getTitle().isEmpty()) << name;
        EXPECT_FALSE (button (name).getDescription().isEmpty()) << name;
    }
}
