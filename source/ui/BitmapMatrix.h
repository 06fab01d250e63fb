// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "ui/kept_picture.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <functional>
#include <vector>

/** A grid of switches that knows nothing of what they switch. A press flips a cell, and the drag that follows
    gives every further cell that value. The cells live with whoever gave the functions, who
    repaints it after a change; it remembers only what its kept picture shows. Message
    thread. */
class BitmapMatrix : public juce::Component
{
public:
    using GetCell = std::function<bool (int column, int row)>;
    using SetCell = std::function<void (int column, int row, bool on)>;

    /** The strip holds a cell's off frame above the on frame. Both functions are called on the message thread,
        and only for cells on the grid. */
    BitmapMatrix (int rowCount, int columnCount, const juce::Image& strip, GetCell getCellFunction,
                  SetCell setCellFunction);

    void mouseDown (const juce::MouseEvent& event) override;
    void mouseDrag (const juce::MouseEvent& event) override;
    void paint (juce::Graphics& g) override;

private:
    struct Cell
    {
        int column, row;
        bool operator== (const Cell&) const = default;
    };

    void paintCells (juce::Graphics& g) const;
    Cell cellAt (juce::Point<float> position) const;
    bool isOnGrid (Cell cell) const;

    int rows, columns;
    GetCell getCell;
    SetCell setCell;
    juce::Image offImage, onImage;
    Cell lastCell { -1, -1 };   ///< of the present press
    bool paintValue = true;     ///< what the present press writes
    std::vector<bool> painted;  ///< the cells as the kept picture shows them
    KeptPicture picture;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (BitmapMatrix)
};
