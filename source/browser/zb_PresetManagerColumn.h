// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "browser/browser_look.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <memory>
#include <optional>

class zb_PresetManager;

/** A column of the browser: the children of a node as a list. A row that gets selected is opened or loaded, a
    star at its end makes it a favourite, and a row dragged onto a folder moves its file there. Message
    thread. */
class zb_PresetManagerColumn : public juce::Component,
                               public juce::ListBoxModel,
                               public juce::DragAndDropTarget
{
public:
    /** The manager and its look outlive the column. */
    zb_PresetManagerColumn (juce::Component& manager, const BrowserLook& browserLook,
                            const juce::ValueTree& node, int index);
    ~zb_PresetManagerColumn() override;

    /** Hands a row to the manager; ignores one that doesn't exist. */
    void handleRowSelection (int row);

    /** Selects a row as it was before a rebuild: its preset is not loaded again. */
    void selectWithoutLoad (int row);

    /** Whether a row is one that can be heard, and so has a star. */
    static bool isPreset (const juce::ValueTree& item);

    int getNumRows() override { return tree.getNumChildren(); }
    void paintListBoxItem (int row, juce::Graphics& g, int width, int height,
                           bool selected) override;
    juce::String getNameForRow (int row) override;
    void listBoxItemClicked (int row, const juce::MouseEvent& event) override;
    void listBoxItemDoubleClicked (int row, const juce::MouseEvent& event) override;
    void selectedRowsChanged (int lastRow) override;

    void mouseDown (const juce::MouseEvent& event) override;
    void mouseDrag (const juce::MouseEvent& event) override;
    void mouseUp (const juce::MouseEvent& event) override;
    void paintOverChildren (juce::Graphics& g) override;
    bool keyPressed (const juce::KeyPress& key) override;
    void resized() override;

    bool isInterestedInDragSource (const SourceDetails&) override { return true; }
    void itemDragEnter (const SourceDetails& source) override;
    void itemDragMove (const SourceDetails& source) override;
    void itemDragExit (const SourceDetails& source) override;

    /** Moves the file to the folder under the drop, never over another. Deletes the column if it did. */
    void itemDropped (const SourceDetails& source) override;

    float unit = 9.0f;  ///< the manager's, pixels
    juce::Component& owner;
    juce::ValueTree tree;
    const int columnIndex;
    std::unique_ptr<juce::ListBox> listBox;
    bool dragHovering = false;  ///< a drag is over this column
    int dropRow = -1;           ///< row under that drag
    bool dragStarted = false;   ///< the present press has become a drag
    int dragRow = -1;           ///< row of the press
    juce::String dragPath;      ///< path of that row; empty where it can't be dragged

    /** Rows that the arrow keys lead to from a row that was selected before a rebuild. */
    struct KeyStart
    {
        int above = -1, below = 0;
    };

    std::optional<KeyStart> keyStart;  ///< only while no row is selected

private:
    /** Width of the zone at the end of a row that is its star, in units. */
    static constexpr float kStarZone = 3.0f;

    zb_PresetManager& manager() const;
    juce::ValueTree itemAt (int row) const { return tree.getChild (row); }
    int rowAt (juce::Point<int> position) const;
    void toggleStarLater (const juce::String& path);
    juce::File dropTarget (int row) const;
    juce::ScaledImage makeDragImage();
    void paintIcon (juce::Graphics& g, const juce::ValueTree& item, int height,
                    bool selected) const;
    void paintSample (juce::Graphics& g, juce::Rectangle<float> zone, float opacity) const;
    void paintStar (juce::Graphics& g, const juce::ValueTree& item, int width, int height,
                    bool selected) const;

    const BrowserLook& look;
    const std::unique_ptr<juce::Drawable> folderIcon, favoritesIcon, starOn, starOff;
    const juce::Image sampleImage, smallSampleImage;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (zb_PresetManagerColumn)
};
