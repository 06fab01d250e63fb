// SPDX-License-Identifier: AGPL-3.0-or-later
#include "ui/BitmapMatrix.h"
#include "ui/BitmapSlider.h"
#include "ui/MidiLed.h"
#include "ui/ValueLabel.h"
#include "ui/bitmap_switches.h"
#include "ui/ui_fixture.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <set>

using Lines = std::vector<std::string>;

namespace
{

struct BitmapControls : testing::Test
{
    /** A fader of the size that most have on the panel: a handle of 16 on a travel of 79 pixels. */
    std::unique_ptr<BitmapSlider> makeFader (NumericalParamID id)
    {
        auto fader =
            std::make_unique<BitmapSlider> (parameterOf (processor, id), &processor.undoManager);
        fader->thumbImage = juce::Image (juce::Image::ARGB, 16, 15, true);
        fader->setSize (95, 15);
        return fader;
    }

    float normalised (NumericalParamID id) { return parameterOf (processor, id).getValue(); }

    VelkorAudioProcessor processor;
    juce::Image strip { juce::Image::ARGB, 92, 72, true };
};

}  // namespace

TEST_F (BitmapControls, FaderPutsItsHandleUnderThePointer)
{
    const auto fader = makeFader (WetLevel);
    Pointer pointer (*fader);

    for (const auto& [x, expected] : std::vector<std::pair<float, float>> {
             { 0.0f, 0.0f }, { 8.0f, 0.0f }, { 47.5f, 0.5f }, { 87.0f, 1.0f }, { 95.0f, 1.0f } })
    {
        pointer.press (x);
        EXPECT_NEAR (normalised (WetLevel), expected, 1.0e-6) << x;
        pointer.release();
    }

    pointer.press (20.0f);
    pointer.drag (1.0e6f);
    EXPECT_EQ (normalised (WetLevel), 1.0f);
    pointer.drag (-1.0e6f);
    EXPECT_EQ (normalised (WetLevel), 0.0f);
    pointer.release();

    // Twice the size, and the same place of the pointer relative to it.
    fader->setSize (190, 30);
    pointer.press (95.0f);
    EXPECT_NEAR (normalised (WetLevel), 0.5f, 1.0e-6);
    pointer.release();
}

TEST_F (BitmapControls, FaderDragIsOneGestureAndOneUndoStep)
{
    const auto fader = makeFader (WetLevel);
    const auto before = valueOf (processor, WetLevel);
    const auto index = std::to_string (WetLevel);
    HostLog host (processor);
    Pointer pointer (*fader);
    pointer.press (20.0f);
    pointer.drag (40.0f);
    pointer.drag (40.0f);
    pointer.drag (60.0f);
    pointer.release();
    EXPECT_EQ (host.lines, (Lines { "begin " + index, "value " + index, "value " + index,
                                    "value " + index, "end " + index }));

    processor.parameterTree.copyState();  // the store notes changes for undo when it looks
    ASSERT_TRUE (processor.undoManager.undo());
    EXPECT_EQ (valueOf (processor, WetLevel), before);
    EXPECT_FALSE (processor.undoManager.canUndo());
}

TEST_F (BitmapControls, FaderGoesToItsDefaultOnADoubleClickOutsideOfTheGesture)
{
    const auto fader = makeFader (DryLevel);
    const auto index = std::to_string (DryLevel);
    HostLog host (processor);
    Pointer (*fader).doubleClick (20.0f);
    EXPECT_NEAR (normalised (DryLevel), parameterOf (processor, DryLevel).getDefaultValue(),
                 1.0e-6);
    EXPECT_EQ (host.lines, (Lines { "begin " + index, "value " + index, "end " + index,  //
                                    "begin " + index, "end " + index,                    //
                                    "value " + index }));
}

TEST_F (BitmapControls, SwitchesChangeOnThePressAsOneGestureEach)
{
    BitmapToggle toggle (parameterOf (processor, Delay1Loop), &processor.undoManager);
    toggle.setSize (47, 18);
    const auto index = std::to_string (Delay1Loop);
    HostLog host (processor);
    Pointer pointer (toggle);
    pointer.press (10.0f);
    EXPECT_EQ (valueOf (processor, Delay1Loop), 1.0f);
    EXPECT_EQ (host.lines, (Lines { "begin " + index, "value " + index, "end " + index }));
    pointer.release();
    EXPECT_EQ (host.lines.size(), 3u);

    parameterOf (processor, Delay1Loop).setValueNotifyingHost (0.5f);
    pointer.press (10.0f);
    EXPECT_EQ (valueOf (processor, Delay1Loop), 0.0f);
}

TEST_F (BitmapControls, RowOfChoicesSplitsItsWidthEvenly)
{
    BitmapChoiceH choice (parameterOf (processor, Delay1Multiplier), strip, 4,
                          &processor.undoManager);
    choice.setSize (92, 18);
    Pointer pointer (choice);

    for (const auto& [x, item] : std::vector<std::pair<float, float>> { { 92.0f, 3.0f },
                                                                        { 0.0f, 0.0f },
                                                                        { 22.9f, 0.0f },
                                                                        { 23.0f, 1.0f },
                                                                        { 68.9f, 2.0f },
                                                                        { 69.0f, 3.0f },
                                                                        { -40.0f, 0.0f },
                                                                        { 400.0f, 3.0f } })
    {
        pointer.press (x);
        EXPECT_NEAR (normalised (Delay1Multiplier), item / 3.0f, 1.0e-6) << x;
    }
}

TEST_F (BitmapControls, QuartersCountDownTheColumns)
{
    BitmapSelector2x2 selector (parameterOf (processor, LFO1Wave), strip, &processor.undoManager);
    selector.setSize (94, 36);
    Pointer pointer (selector);

    for (const auto& [x, y, quarter] :
         std::vector<std::tuple<float, float, float>> { { 47.0f, 18.0f, 3.0f },
                                                        { 46.9f, 17.9f, 0.0f },
                                                        { 46.9f, 18.0f, 1.0f },
                                                        { 47.0f, 17.9f, 2.0f } })
    {
        pointer.press (x, y);
        EXPECT_EQ (valueOf (processor, LFO1Wave), quarter) << x << " " << y;
    }
}

TEST_F (BitmapControls, RepaintWhenTheHostMovesTheirParameter)
{
    const auto fader = makeFader (Pan1);
    auto& repaints = RepaintCount::watch (*fader);
    parameterOf (processor, Pan1).setValueNotifyingHost (0.25f);
    EXPECT_EQ (repaints.count, 1);
    parameterOf (processor, Pan2).setValueNotifyingHost (0.25f);
    EXPECT_EQ (repaints.count, 1);
}

TEST_F (BitmapControls, TimeLabelFollowsTheSyncSwitch)
{
    auto& time = parameterOf (processor, Delay1Time);
    ValueLabel label (time, &parameterOf (processor, Delay1Sync));
    label.setSize (57, 18);
    bool clicks = true, childClicks = true;
    label.getInterceptsMouseClicks (clicks, childClicks);
    EXPECT_FALSE (clicks || childClicks);

    const auto free = time.getCurrentValueAsText();
    const auto freePicture = label.createComponentSnapshot (label.getLocalBounds());
    auto& repaints = RepaintCount::watch (label);
    parameterOf (processor, Delay1Sync).setValueNotifyingHost (1.0f);
    EXPECT_EQ (repaints.count, 1);
    EXPECT_NE (time.getCurrentValueAsText(), free);

    label.setCachedComponentImage (nullptr);
    const auto syncedPicture = label.createComponentSnapshot (label.getLocalBounds());
    auto differs = false;

    for (int y = 0; y < 18; ++y)
        for (int x = 0; x < 57; ++x)
            differs = differs || freePicture.getPixelAt (x, y) != syncedPicture.getPixelAt (x, y);

    EXPECT_TRUE (differs);
}

// --- the grid ------------------------------------------------------------------------------------------

namespace
{

/** A grid of 8 columns and 10 rows, a cell 10 by 10 pixels, over a set of cells. */
struct Grid : testing::Test
{
    Grid() { matrix.setSize (80, 100); }

    using Cells = std::set<std::pair<int, int>>;

    Cells on;
    int writes = 0;
    BitmapMatrix matrix { 10, 8, juce::Image(),
                          [this] (int column, int row) {
                              return on.contains ({ column, row });
                          },
                          [this] (int column, int row, bool value)
                          {
                              ++writes;

                              if (value)
                                  on.insert ({ column, row });
                              else
                                  on.erase ({ column, row });
                          } };
    Pointer pointer { matrix };
};

}  // namespace

TEST_F (Grid, DragPaintsWhatThePressWrote)
{
    on = { { 1, 0 }, { 3, 0 } };
    pointer.press (5.0f, 5.0f);  // turns (0, 0) on, and so every cell of this press
    pointer.drag (15.0f, 5.0f);
    pointer.drag (25.0f, 5.0f);
    pointer.drag (28.0f, 8.0f);  // the same cell: not written again
    EXPECT_EQ (writes, 3);
    pointer.drag (5.0f, 5.0f);    // back over the first
    pointer.drag (75.0f, 95.0f);  // a jump leaves the cells between alone
    pointer.release();
    EXPECT_EQ (on, (Cells { { 0, 0 }, { 1, 0 }, { 2, 0 }, { 3, 0 }, { 7, 9 } }));

    pointer.press (35.0f, 5.0f);  // turns (3, 0) off, and so every further cell
    pointer.drag (45.0f, 5.0f);
    pointer.drag (5.0f, 5.0f);
    pointer.release();
    EXPECT_EQ (on, (Cells { { 1, 0 }, { 2, 0 }, { 7, 9 } }));
}

TEST_F (Grid, ReachesOneCellBeyondItsLeftAndUpperEdgesOnly)
{
    pointer.press (-9.0f, -9.0f);
    EXPECT_EQ (on, (Cells { { 0, 0 } }));
    pointer.press (80.0f, 5.0f);
    pointer.press (5.0f, 100.0f);
    pointer.press (-10.0f, 5.0f);
    EXPECT_EQ (writes, 1);

    // Leaves the grid and comes back into the cell that it left, then into another.
    pointer.press (5.0f, 25.0f);
    pointer.drag (-20.0f, 25.0f);
    pointer.drag (5.0f, 25.0f);
    EXPECT_EQ (writes, 2);
    pointer.drag (15.0f, 25.0f);
    EXPECT_EQ (on, (Cells { { 0, 0 }, { 0, 2 }, { 1, 2 } }));
}

TEST_F (Grid, PaintsWhereAPressThatBeganOutsideComesIn)
{
    pointer.press (5.0f, 5.0f);
    pointer.release();
    pointer.press (5.0f, 5.0f);  // off again
    pointer.release();
    pointer.press (300.0f, 5.0f);  // keeps the value of the press before
    on = { { 7, 0 } };
    pointer.drag (75.0f, 5.0f);
    EXPECT_EQ (on, Cells {});
}

// A preset changes the cells behind the grid's back; the picture that it keeps must not outlive that.
TEST (GridPicture, FollowsCellsThatChangeUnderneath)
{
    juce::Image strip (juce::Image::RGB, 14, 24, true);
    strip.clear ({ 0, 12, 14, 12 }, juce::Colours::white);
    std::set<std::pair<int, int>> on { { 4, 2 } };
    BitmapMatrix matrix (
        3, 5, strip,
        [&on] (int column, int row) {
            return on.contains ({ column, row });
        },
        [] (int, int, bool) {});
    matrix.setSize (70, 36);

    const auto expectShown = [&]
    {
        const auto picture = matrix.createComponentSnapshot (matrix.getLocalBounds());

        for (int row = 0; row < 3; ++row)
            for (int column = 0; column < 5; ++column)
                EXPECT_EQ (picture.getPixelAt (column * 14 + 7, row * 12 + 6) ==
                               juce::Colours::white,
                           on.contains ({ column, row }))
                    << column << " " << row;
    };

    expectShown();
    on = { { 0, 1 }, { 3, 0 } };
    expectShown();
    on = { { 4, 2 } };
    expectShown();
}

// --- what is painted -----------------------------------------------------------------------------------

namespace
{

/** A strip whose frames have one grey each, the first black. */
juce::Image greyStrip (int width, int frameHeight, int frames)
{
    juce::Image strip (juce::Image::RGB, width, frameHeight * frames, true);

    for (int i = 0; i < frames; ++i)
        strip.clear (
            { 0, i * frameHeight, width, frameHeight },
            juce::Colour::greyLevel (static_cast<float> (i) / static_cast<float> (frames - 1)));

    return strip;
}

/** The brightness in the middle of a control, 0 to 1. */
float middleOf (juce::Component& control)
{
    const auto centre = control.getLocalBounds().getCentre();
    return control.createComponentSnapshot (control.getLocalBounds())
        .getPixelAt (centre.x, centre.y)
        .getBrightness();
}

}  // namespace

TEST_F (BitmapControls, PaintTheFrameOfTheirValue)
{
    BitmapToggle toggle (parameterOf (processor, Delay2Loop), nullptr);
    const auto two = greyStrip (47, 18, 2);
    toggle.offImage = two.getClippedImage ({ 0, 0, 47, 18 });
    toggle.onImage = two.getClippedImage ({ 0, 18, 47, 18 });
    toggle.setSize (60, 22);

    BitmapChoiceH choice (parameterOf (processor, Delay2Multiplier), greyStrip (92, 18, 4), 4,
                          nullptr);
    choice.setSize (110, 22);

    BitmapSelector2x2 selector (parameterOf (processor, LFO2Wave), greyStrip (93, 36, 4), nullptr);
    selector.setSize (112, 43);

    for (int item = 0; item < 4; ++item)
    {
        const auto value = static_cast<float> (item) / 3.0f;

        for (const auto id : { Delay2Loop, Delay2Multiplier, LFO2Wave })
            parameterOf (processor, id).setValueNotifyingHost (value);

        EXPECT_NEAR (middleOf (toggle), item < 2 ? 0.0f : 1.0f, 0.02) << item;
        EXPECT_NEAR (middleOf (choice), value, 0.02) << item;
        EXPECT_NEAR (middleOf (selector), value, 0.02) << item;
    }

    MidiLed lamp (greyStrip (20, 19, 2));
    lamp.setSize (24, 23);
    EXPECT_NEAR (middleOf (lamp), 0.0f, 0.02);
    lamp.lit = true;
    EXPECT_NEAR (middleOf (lamp), 1.0f, 0.02);
}
