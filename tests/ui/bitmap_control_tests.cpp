// SPDX-License-Identifier: AGPL-3.0-or-later
#include "ui/BitmapMatrix.h"
#include "ui/BitmapSlider.h"
#include "ui/ValueLabel.h"
#include "ui/bitmap_switches.h"
#include "ui/ui_fixture.h"

#include <gtest/gtest.h>
#include <set>
#include <tuple>
#include <utility>

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
};

}  // namespace

TEST_F (BitmapControls, FaderPutsItsHandleUnderThePointer)
{
    const auto fader = makeFader (WetLevel);
    Pointer pointer (*fader);

    for (const auto& [x, expected] :
         { std::pair (0.0f, 0.0f), std::pair (8.0f, 0.0f), std::pair (47.5f, 0.5f),
           std::pair (87.0f, 1.0f), std::pair (95.0f, 1.0f) })
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
}

TEST_F (BitmapControls, FaderDragIsOneGestureAndOneUndoStep)
{
    const auto fader = makeFader (WetLevel);
    const auto before = valueOf (processor, WetLevel);
    HostLog host (processor);
    Pointer pointer (*fader);
    pointer.press (20.0f);
    pointer.drag (40.0f);
    pointer.drag (40.0f);
    pointer.drag (60.0f);
    pointer.release();
    EXPECT_EQ (host.heard, "begin value value value end ");

    processor.parameterTree.copyState();  // the store notes changes for undo when it looks
    ASSERT_TRUE (processor.undoManager.undo());
    EXPECT_EQ (valueOf (processor, WetLevel), before);
    EXPECT_FALSE (processor.undoManager.canUndo());
}

TEST_F (BitmapControls, FaderGoesToItsDefaultOnADoubleClickOutsideOfTheGesture)
{
    const auto fader = makeFader (DryLevel);
    HostLog host (processor);
    Pointer (*fader).doubleClick (20.0f);
    EXPECT_NEAR (normalised (DryLevel), parameterOf (processor, DryLevel).getDefaultValue(),
                 1.0e-6);
    EXPECT_EQ (host.heard, "begin value end begin end value ");
}

TEST_F (BitmapControls, ChoicesSplitTheirWidthEvenlyAndQuartersCountDownTheColumns)
{
    const juce::Image strip (juce::Image::ARGB, 92, 72, true);
    BitmapChoiceH choice (parameterOf (processor, Delay1Multiplier), strip, 4,
                          &processor.undoManager);
    choice.setSize (92, 18);

    for (const auto& [x, item] :
         { std::pair (92.0f, 3), std::pair (0.0f, 0), std::pair (22.9f, 0), std::pair (23.0f, 1),
           std::pair (68.9f, 2), std::pair (69.0f, 3), std::pair (-40.0f, 0) })
    {
        Pointer (choice).press (x);
        EXPECT_NEAR (normalised (Delay1Multiplier), static_cast<float> (item) / 3.0f, 1.0e-6) << x;
    }

    BitmapSelector2x2 selector (parameterOf (processor, LFO1Wave), strip, &processor.undoManager);
    selector.setSize (94, 36);

    for (const auto& [x, y, quarter] :
         { std::tuple (47.0f, 18.0f, 3.0f), std::tuple (46.9f, 17.9f, 0.0f),
           std::tuple (46.9f, 18.0f, 1.0f), std::tuple (47.0f, 17.9f, 2.0f) })
    {
        Pointer (selector).press (x, y);
        EXPECT_EQ (valueOf (processor, LFO1Wave), quarter) << x << " " << y;
    }
}

TEST_F (BitmapControls, TimeLabelFollowsItsTimeAndTheSyncSwitch)
{
    ValueLabel label (parameterOf (processor, Delay1Time), &parameterOf (processor, Delay1Sync));
    label.setSize (57, 18);
    auto& repaints = RepaintCount::watch (label);
    parameterOf (processor, Delay1Time).setValueNotifyingHost (0.25f);
    EXPECT_EQ (repaints.whole, 1);
    parameterOf (processor, Delay1Sync).setValueNotifyingHost (1.0f);
    EXPECT_EQ (repaints.whole, 2);
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
