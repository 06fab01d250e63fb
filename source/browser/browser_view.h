// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <vector>

class zb_PresetManager;
class zb_PresetManagerColumn;

/** What the user sees of the columns: which one has the keyboard's focus, the rows in sight,
    and the selected row. A rebuild of the tree deletes the columns; this carries it over to the new
    ones. Message thread. */
class BrowserView
{
public:
    /** Notes the view of the present columns. */
    explicit BrowserView (const zb_PresetManager& manager);

    /** Gives it to those new columns that show the same folders. A preset that was selected is
        so again, without a load, unless selectsPreset is false; then the arrow keys go on from its
        row, as they do where it has gone. */
    void restore (zb_PresetManager& manager, bool selectsPreset) const;

private:
    /** One column. Rows are known by their paths: a rebuild may change their numbers. */
    struct Column
    {
        juce::String path;  ///< of its folder
        juce::Identifier type;
        int scroll = 0;     ///< pixels above the visible part
        int selected = -1;  ///< row
        int firstRow = 0;   ///< row of the first of rowPaths
        juce::StringArray
            rowPaths;  ///< of the visible rows and those from there to the selected one

        const juce::String& rowPath (int row) const { return rowPaths[row - firstRow]; }
        int rowsEnd() const { return firstRow + rowPaths.size(); }
    };

    static Column viewOf (const zb_PresetManagerColumn& column);
    static void restoreScroll (zb_PresetManagerColumn& column, const Column& view);
    static void restoreSelection (zb_PresetManagerColumn& column, const Column& view,
                                  bool selectsPreset);

    std::vector<Column> columns;
    int focused = -1;  ///< column; -1 if none has the focus
};
