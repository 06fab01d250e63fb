// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/global_settings.h"
#include "ui/VelkorAudioProcessorEditor.h"
#include "ui/ui_fixture.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <stdexcept>
#include <thread>
#include <vector>

namespace
{

/** The child of that component name; fails the test without one. */
template <typename Component>
Component& named (juce::Component& parent, const juce::String& name)
{
    for (auto* child : parent.getChildren())
        if (child->getName() == name)
            if (auto* found = dynamic_cast<Component*> (child))
                return *found;

    throw std::runtime_error ("no child " + name.toStdString());
}

/** The one child of a class; null without it. */
template <typename Component>
Component* childOf (juce::Component& parent)
{
    for (auto* child : parent.getChildren())
        if (auto* found = dynamic_cast<Component*> (child))
            return found;

    return nullptr;
}

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

    juce::Rectangle<int> boundsOf (const juce::String& name)
    {
        return named<juce::Component> (*editor, name).getBounds();
    }

    void click (const juce::String& button)
    {
        editor->buttonClicked (&named<juce::TextButton> (*editor, button));
    }

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
    EXPECT_EQ (boundsOf ("BYPASS"), juce::Rectangle<int>());
    editor->setSize (600, 450);
    EXPECT_EQ (boundsOf ("BYPASS").getWidth(), 31);
}

TEST_F (Editor, LaysTheStripOutInHundredthsOfItsWidth)
{
    EXPECT_EQ (boundsOf ("ABOUT"), juce::Rectangle<int> (18, 13, 90, 27));
    EXPECT_EQ (boundsOf ("UNDO"), juce::Rectangle<int> (234, 13, 36, 18));
    EXPECT_EQ (boundsOf ("REDO"), juce::Rectangle<int> (274, 13, 36, 18));
    EXPECT_EQ (boundsOf ("FAVORITE"), juce::Rectangle<int> (585, 13, 22, 18));
    EXPECT_EQ (boundsOf ("BYPASS"), juce::Rectangle<int> (712, 13, 47, 18));
    EXPECT_EQ (childOf<VelkorPanel> (*editor)->getBounds(), juce::Rectangle<int> (0, 45, 900, 630));
    EXPECT_EQ (childOf<zb_PresetManager> (*editor)->getBounds(), editor->getLocalBounds());
    EXPECT_EQ (childOf<juce::ResizableCornerComponent> (*editor)->getBounds(),
               juce::Rectangle<int> (882, 657, 18, 18));

    for (const auto& [width, height, strip] :
         { std::tuple (600, 450, 30), std::tuple (1500, 1125, 75) })
    {
        editor->setSize (width, height);
        EXPECT_EQ (childOf<VelkorPanel> (*editor)->getBounds(),
                   juce::Rectangle<int> (0, strip, width, height - strip));
    }

    // An odd width: everything is cut toward zero.
    editor->setSize (733, 550);
    EXPECT_EQ (boundsOf ("ABOUT"), juce::Rectangle<int> (14, 10, 73, 21));
    EXPECT_EQ (childOf<juce::ResizableCornerComponent> (*editor)->getBounds(),
               juce::Rectangle<int> (719, 536, 14, 14));
}

TEST_F (Editor, KeepsFourToThreeBetweenItsLimits)
{
    auto* constrainer = editor->getConstrainer();
    ASSERT_NE (constrainer, nullptr);
    EXPECT_EQ (constrainer->getMinimumWidth(), 600);
    EXPECT_EQ (constrainer->getMinimumHeight(), 450);
    EXPECT_EQ (constrainer->getMaximumWidth(), 1500);
    EXPECT_EQ (constrainer->getMaximumHeight(), 1125);
    EXPECT_EQ (constrainer->getFixedAspectRatio(), 4.0 / 3.0);
}

TEST_F (Editor, LampStaysLitForEightTicksAfterTheLastNote)
{
    auto& lamp = *childOf<VelkorPanel> (*editor)->midiLed;
    editor->timerCallback();
    EXPECT_FALSE (lamp.lit);

    processor.midiActivity = true;

    for (int tick = 0; tick < 8; ++tick)
    {
        editor->timerCallback();
        EXPECT_TRUE (lamp.lit) << tick;
        EXPECT_FALSE (processor.midiActivity.load());
    }

    processor.midiActivity = true;  // the count starts again

    for (int tick = 0; tick < 8; ++tick)
    {
        editor->timerCallback();
        EXPECT_TRUE (lamp.lit) << tick;
    }

    editor->timerCallback();
    EXPECT_FALSE (lamp.lit);
}

TEST_F (Editor, MarksThePresetWhileThereIsSomethingToUndo)
{
    const juce::Rectangle<int> field (315, 9, 270, 27);
    const auto clean = editor->createComponentSnapshot (field);
    const auto same = [&]
    {
        const auto now = editor->createComponentSnapshot (field);

        for (int y = 0; y < field.getHeight(); ++y)
            for (int x = 0; x < field.getWidth(); ++x)
                if (now.getPixelAt (x, y) != clean.getPixelAt (x, y))
                    return false;

        return true;
    };

    auto& panel = *childOf<VelkorPanel> (*editor);
    Pointer pointer (*childTitled (panel, "Wet Level"));
    pointer.press (20.0f);
    pointer.release();
    processor.parameterTree.copyState();
    ASSERT_TRUE (processor.undoManager.canUndo());

    auto& repaints = RepaintCount::watch (*editor);
    editor->timerCallback();
    EXPECT_TRUE (std::count (repaints.areas.begin(), repaints.areas.end(), field) == 1);
    editor->timerCallback();
    EXPECT_TRUE (std::count (repaints.areas.begin(), repaints.areas.end(), field) == 1);
    editor->setCachedComponentImage (nullptr);
    EXPECT_FALSE (same());

    click ("UNDO");
    EXPECT_TRUE (same());
    click ("REDO");
    EXPECT_FALSE (same());
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
    auto& bypass = named<juce::TextButton> (*editor, "BYPASS");
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

    pointer.press (585.0f, 20.0f);  // just beyond the field, and just below it
    pointer.press (400.0f, 36.0f);
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
    const auto pump = [] { juce::MessageManager::getInstance()->runDispatchLoopUntil (400); };

    Pointer (*editor).press (400.0f, 20.0f);
    editor->setSize (1200, 900);
    pump();
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

TEST_F (Editor, ShowsToolTipsOnlyWhereTheMachineWantsThem)
{
    EXPECT_NE (childOf<juce::TooltipWindow> (*editor), nullptr);
    EXPECT_EQ (named<juce::TextButton> (*editor, "UNDO").getTooltip(),
               "Undo last parameter change");
    processor.toolTips = false;
    open();
    EXPECT_EQ (childOf<juce::TooltipWindow> (*editor), nullptr);
    EXPECT_EQ (named<juce::TextButton> (*editor, "BYPASS").getTooltip(),
               "Bypass: Smoothly bypass all processing");
}

TEST_F (Editor, TellsScreenReadersWhatItsButtonsDo)
{
    int buttons = 0;

    for (auto* child : editor->getChildren())
        if (auto* button = dynamic_cast<juce::TextButton*> (child))
        {
            ++buttons;
            EXPECT_FALSE (button->getTitle().isEmpty()) << button->getName();
            EXPECT_FALSE (button->getDescription().isEmpty()) << button->getName();
        }

    EXPECT_EQ (buttons, 5);
    EXPECT_TRUE (named<juce::TextButton> (*editor, "ABOUT").getTooltip().isEmpty());
}

TEST (SharedLook, FallsBackToTheLightTypefaceAndThenToTheFrameworks)
{
    VelkorAudioProcessor processor;
    SharedInterface shared (processor, processor.parameterTree);
    ASSERT_NE (shared.sharedFontLight, nullptr);
    EXPECT_EQ (shared.getMyFont (0, 12.0f).getTypeface(), shared.sharedFontLight);
    EXPECT_EQ (shared.getMyFont (1, 12.0f).getTypeface(), shared.sharedFontLight);
    EXPECT_EQ (shared.getMyFont (2, 12.0f).getTypeface(), shared.sharedFontRegular);
    EXPECT_EQ (shared.getMyFont (2, 22.5f).getHeight(), 22.5f);
    shared.sharedFontRegular = nullptr;
    EXPECT_EQ (shared.getMyFont (2, 12.0f).getTypeface(), nullptr);
}

// Nothing of the editor may reach the sound: the same input gives the same samples with an editor that comes and goes.
TEST (EditorBesideAudio, ComesAndGoesWithoutATraceInTheSound)
{
    constexpr int kBlockSize = 64;
    using Samples = std::vector<float>;

    /** Renders noise until told to stop, and at most so many blocks. */
    const auto render =
        [] (VelkorAudioProcessor& processor, const std::atomic<bool>& stop, std::size_t most)
    {
        Samples result;
        juce::AudioBuffer<float> buffer (2, kBlockSize);
        juce::MidiBuffer midi;
        juce::Random noise (7);

        for (std::size_t block = 0; block < most && ! stop; ++block)
        {
            for (int channel = 0; channel < 2; ++channel)
                for (int i = 0; i < kBlockSize; ++i)
                    buffer.setSample (channel, i, noise.nextFloat() - 0.5f);

            processor.processBlock (buffer, midi);

            for (int channel = 0; channel < 2; ++channel)
                result.insert (result.end(), buffer.getReadPointer (channel),
                               buffer.getReadPointer (channel) + kBlockSize);

            std::this_thread::sleep_for (std::chrono::microseconds (200));
        }

        return result;
    };

    VelkorAudioProcessor watched;
    watched.uiWidth = 900;
    watched.prepareToPlay (48000.0, kBlockSize);
    std::atomic<bool> stop { false };
    Samples heard;
    std::thread audio ([&] { heard = render (watched, stop, 1000000); });

    for (int i = 0; i < 200; ++i)
    {
        const std::unique_ptr<juce::AudioProcessorEditor> editor (watched.createEditor());
        static_cast<VelkorAudioProcessorEditor&> (*editor).timerCallback();

        if (i % 20 == 0)
        {
            editor->setSize (1000, 750);
            EXPECT_TRUE (editor->createComponentSnapshot (editor->getLocalBounds()).isValid());
            watched.uiWidth = 900;
        }
    }

    stop = true;
    audio.join();
    ASSERT_FALSE (heard.empty());

    VelkorAudioProcessor alone;
    alone.prepareToPlay (48000.0, kBlockSize);
    const std::atomic<bool> never { false };
    EXPECT_EQ (heard, render (alone, never, heard.size() / (2 * kBlockSize)));
}
