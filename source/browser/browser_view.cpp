// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/browser_view.h"

#include "browser/zb_PresetManager.h"

#include <algorithm>

static const juce::Identifier& pathId()
{
    static const juce::Identifier id ("path");
    return id;
}

/** Row of a path in a column; -1 if there is none. */
static int rowOf (const zb_PresetManagerColumn& column, const juce::String& path)
{
    return column.tree.indexOf (column.tree.getChildWithProperty (pathId(), path));
}

BrowserView::BrowserView (const zb_PresetManager& manager)
{
    for (int i = 0; i < manager.columns.size(); ++i)
    {
        const auto& column = *manager.getColumn (i);
        columns.push_back (viewOf (column));

        if (column.listBox->hasKeyboardFocus (true))
            focused = i;
    }
}

BrowserView::Column BrowserView::viewOf (const zb_PresetManagerColumn& column)
{
    const auto& list = *column.listBox;
    const auto* const viewport = list.getViewport();
    Column view { column.tree[pathId()],
                  column.tree.getType(),
                  viewport->getViewPositionY(),
                  list.getSelectedRow(),
                  0,
                  {} };

    const int firstVisible = view.scroll / list.getRowHeight();
    const int lastVisible = (view.scroll + viewport->getViewHeight()) / list.getRowHeight();
    view.firstRow = view.selected >= 0 ? std::min (firstVisible, view.selected) : firstVisible;
    const int end =
        std::min (std::max (lastVisible, view.selected + 1) + 1, column.tree.getNumChildren());

    for (int row = view.firstRow; row < end; ++row)
        view.rowPaths.add (column.tree.getChild (row)[pathId()]);

    return view;
}

void BrowserView::restore (zb_PresetManager& manager, bool selectsPreset) const
{
    const auto isSame = [&] (std::size_t i)
    {
        const auto* const column = manager.getColumn (static_cast<int> (i));
        return column != nullptr && column->tree.hasType (columns[i].type) &&
               column->tree[pathId()] == columns[i].path;
    };

    for (std::size_t i = 0; i < columns.size() && isSame (i); ++i)
    {
        restoreSelection (*manager.getColumn (static_cast<int> (i)), columns[i], selectsPreset);
        restoreScroll (*manager.getColumn (static_cast<int> (i)), columns[i]);
    }

    if (focused >= 0)
        manager.getColumn (std::min (focused, manager.columns.size() - 1))
            ->listBox->grabKeyboardFocus();
}

void BrowserView::restoreSelection (zb_PresetManagerColumn& column, const Column& view,
                                    bool selectsPreset)
{
    if (view.selected < 0 || column.listBox->getSelectedRow() >= 0)
        return;

    const int row = rowOf (column, view.rowPath (view.selected));

    // A folder that is not selected again is not on the path that was reopened.
    if (row >= 0 && selectsPreset && column.isPreset (column.tree.getChild (row)))
        column.selectWithoutLoad (row);
    else if (row >= 0)
        column.keyStart = { row - 1, row + 1 };
    else
    {
        // The row has gone. The next one that has not is where it was.
        int next = -1;

        for (int old = view.selected + 1; old < view.rowsEnd() && next < 0; ++old)
            next = rowOf (column, view.rowPath (old));

        next = next >= 0 ? next : std::min (view.selected, column.tree.getNumChildren());
        column.keyStart = { next - 1, next };
    }
}

void BrowserView::restoreScroll (zb_PresetManagerColumn& column, const Column& view)
{
    const int rowHeight = column.listBox->getRowHeight();
    int scroll = view.scroll;

    // The first visible row that is still there stays where it is. At the top, a row that comes
    // shows.
    for (int old = view.scroll / rowHeight; view.scroll > 0 && old < view.rowsEnd(); ++old)
        if (const int row = rowOf (column, view.rowPath (old)); row >= 0)
        {
            scroll += (row - old) * rowHeight;
            break;
        }

    column.listBox->getViewport()->setViewPosition (0, std::max (0, scroll));
}
