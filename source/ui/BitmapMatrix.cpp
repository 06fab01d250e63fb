// SPDX-License-Identifier: AGPL-3.0-or-later
#include "ui/BitmapMatrix.h"

#include "ui/image_strip.h"

#include <utility>

BitmapMatrix::BitmapMatrix (int rowCount, int columnCount, const juce::Image& strip,
                            GetCell getCellFunction, SetCell setCellFunction)
    : rows (rowCount), columns (columnCount), getCell (std::move (getCellFunction)),
      setCell (std::move (setCellFunction)), offImage (stripFrame (strip, 0, 2)),
      onImage (stripFrame (strip, 1, 2)),
      painted (static_cast<std::size_t> (juce::jmax (0, rows) * juce::jmax (0, columns)))
{
}

void BitmapMatrix::mouseDown (const juce::MouseEvent& event)
{
    lastCell = cellAt (event.position);

    if (! isOnGrid (lastCell))
        return;

    paintValue = ! getCell (lastCell.column, lastCell.row);
    setCell (lastCell.column, lastCell.row, paintValue);
    repaint();
}

void BitmapMatrix::mouseDrag (const juce::MouseEvent& event)
{
    const auto cell = cellAt (event.position);

    if (! isOnGrid (cell) || cell == lastCell)
        return;

    lastCell = cell;
    setCell (cell.column, cell.row, paintValue);
    repaint();
}

void BitmapMatrix::paint (juce::Graphics& g)
{
    if (rows < 1 || columns < 1)
        return;

    // Most repaints come from the editor's timer and find nothing new.
    auto changed = false;

    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column)
        {
            const auto on = getCell (column, row);
            const auto cell = painted.begin() + (row * columns + column);
            changed = changed || *cell != on;
            *cell = on;
        }

    if (changed)
        picture.forget();

    picture.draw (g, getWidth(), getHeight(), false,
                  [this] (juce::Graphics& inside) { paintCells (inside); });
}

void BitmapMatrix::paintCells (juce::Graphics& g) const
{
    const auto cellWidth = static_cast<float> (getWidth()) / static_cast<float> (columns);
    const auto cellHeight = static_cast<float> (getHeight()) / static_cast<float> (rows);

    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column)
        {
            const auto on = painted[static_cast<std::size_t> (row * columns + column)];
            drawStretched (g, on ? onImage : offImage,
                           { static_cast<float> (column) * cellWidth,
                             static_cast<float> (row) * cellHeight, cellWidth, cellHeight });
        }
}

// Truncation goes toward zero, so the grid reaches up to one cell beyond its left and upper edges.
BitmapMatrix::Cell BitmapMatrix::cellAt (juce::Point<float> position) const
{
    const auto width = static_cast<float> (getWidth());
    const auto height = static_cast<float> (getHeight());
    return { static_cast<int> (static_cast<float> (columns) * (position.x / width)),
             static_cast<int> (static_cast<float> (rows) * (position.y / height)) };
}

bool BitmapMatrix::isOnGrid (Cell cell) const
{
    return juce::isPositiveAndBelow (cell.column, columns) &&
           juce::isPositiveAndBelow (cell.row, rows);
}
