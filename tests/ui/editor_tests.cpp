// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/global_settings.h"
#include "state/state_carriers.h"
#include "ui/VelkorAudioProcessorEditor.h"
#include "ui/ui_fixture.h"

#include <climits>
#include <gtest/gtest.h>
#include <stdexcept>
#include <thread>
#include <utility>

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
    EXPECT_EQ (editor->getConstrainer()->getMinimumWidth(), 600);
    EXPECT_EQ (editor->getConstrainer()->getMaximumWidth(), 1500);
    EXPECT_EQ (editor->getConstrainer()->getFixedAspectRatio(), 4.0 / 3.0);
}

TEST_F (Editor, IsOfALegalSizeOnceAHostShowsItWhateverSizeWasStored)
{
    juce::MemoryBlock chunk;

    for (const int stored : { 599, 1501, 1, 0, -900, 32767, 10000000, INT_MAX, INT_MIN })
    {
        SCOPED_TRACE (stored);
        processor.uiWidth = stored;
        open();
        juce::Component host;
        host.addAndMakeVisible (*editor);
        const int width = editor->getWidth();
        ASSERT_TRUE (width >= 600 && width <= 1500) << width;
        EXPECT_EQ (editor->getHeight(), width * 3 / 4);
        EXPECT_EQ (button ("BYPASS").getHeight(), width / 50);

        GlobalSettings written {};
        readGlobalSettings (globalSettingsFile (processor.presetFolder), written);
        EXPECT_EQ (written.uiWidth, width);
        processor.getStateInformation (chunk);
        const auto saved = readChunk (chunk.getData(), static_cast<int> (chunk.getSize()));
        EXPECT_EQ (saved->getIntAttribute ("uiWidth"), width);
    }
}

TEST_F (Editor, OfAHugeSizeMakesNoMoreRowsThanItShows)
{
    struct Count : juce::ComponentListener
    {
        void componentChildrenChanged (juce::Component&) override { ++changes; }
        int changes = 0;
    };

    auto& rows = *childOf<zb_PresetManager> (*editor)
                      ->getColumn (0)
                      ->listBox->getViewport()
                      ->getViewedComponent();
    Count count;
    rows.addComponentListener (&count);
    editor->setSize (30000, 22500);
    rows.removeComponentListener (&count);
    EXPECT_LT (count.changes, 100);
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
    EXPECT_EQ (modulation.whole, 2);
    EXPECT_EQ (signal.whole, 2);
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

    for (const auto& [x, program] :
         { std::pair (558.0f, 1), std::pair (584.9f, 2), std::pair (315.0f, 1),
           std::pair (341.9f, 0), std::pair (320.0f, 64), std::pair (585.0f, 64) })
    {
        pointer.press (x, 20.0f);
        EXPECT_EQ (processor.currentProgram, program) << x;
        EXPECT_FALSE (browser.isVisible()) << x;
    }

    processor.presetName = "as it was";
    pointer.press (342.0f, 20.0f);  // the right edge of the left end is the middle's
    EXPECT_TRUE (browser.isVisible());
    EXPECT_EQ (browser.undoPresetName, "as it was");
    EXPECT_EQ (browser.undoProgram, 64);
    EXPECT_TRUE (browser.undoState.contains ("VelkorSettings"));
}

TEST_F (Editor, ShowsAProgramThatAHostsThreadSetsOnceItsOwnThreadGetsToIt)
{
    processor.programFolder = processor.presetFolder;
    processor.refreshProgramList();
    editor.reset (dynamic_cast<VelkorAudioProcessorEditor*> (processor.createEditorIfNeeded()));
    auto& repaints = RepaintCount::watch (*editor);
    std::thread ([this] { processor.setCurrentProgram (3); }).join();
    EXPECT_EQ (processor.getCurrentProgram(), 3);
    EXPECT_EQ (repaints.whole, 0);
    juce::MessageManager::getInstance()->runDispatchLoopUntil (100);
    EXPECT_GT (repaints.whole, 0);
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

    for (const int none : { 1000, -1 })
    {
        processor.currentProgram = none;
        click ("FAVORITE");
        EXPECT_TRUE (browser.favorites.isEmpty());
    }
}

TEST_F (Editor, MakesANewAboutViewAtEveryClickWhichLeavesOnAClick)
{
    click ("ABOUT");
    click ("ABOUT");  // the first view goes
    auto& view = *childOf<AboutView> (*editor);
    EXPECT_EQ (view.getBounds(), editor->getLocalBounds());
    EXPECT_TRUE (view.isTimerRunning());
    EXPECT_TRUE (view.mailLink().contains (
        "?subject=Velkor help&body=Plugin: Velkor " VELKOR_VERSION "\r\nPlugin Type: "));
    Pointer (view).press (5.0f, 5.0f);
    EXPECT_EQ (childOf<AboutView> (*editor), nullptr);
    EXPECT_FALSE (view.isTimerRunning());
}
