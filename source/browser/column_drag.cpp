// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/browser_strings.h"
#include "browser/zb_PresetManager.h"
#include "browser/zb_PresetManagerColumn.h"
#include "state/folder_listing.h"

// Dragging rows: the one way in which the browser moves files.

/** A press that stays within this distance is a click, pixels. */
static constexpr int kDragDistance = 8;

/** Widest image under the mouse, pixels. */
static constexpr int kMaxImageWidth = 200;

int zb_PresetManagerColumn::rowAt (juce::Point<int> position) const
{
    const auto inList = listBox->getLocalPoint (this, position);
    return listBox->getLocalBounds().contains (inList)
               ? listBox->getRowContainingPosition (inList.x, inList.y)
               : -1;
}

// --- source --------------------------------------------------------------------------------------------

void zb_PresetManagerColumn::mouseDown (const juce::MouseEvent& event)
{
    dragStarted = false;
    dragPath.clear();
    dragRow = -1;

    const auto position = event.getEventRelativeTo (this).getPosition();

    // The scroll bar has rows beside it, but nobody who drags it means them.
    if (listBox->getLocalPoint (this, position).x >= listBox->getVisibleRowWidth())
        return;

    const int row = rowAt (position);
    const auto item = itemAt (row);
    const auto path = item["path"].toString();

    if (! item.isValid() || path.isEmpty() || item.hasType (typeString[kFavoritesNode]) ||
        item.hasType (typeString[kRootNode]))
        return;

    dragRow = row;
    dragPath = path;
}

void zb_PresetManagerColumn::mouseDrag (const juce::MouseEvent& event)
{
    if (dragStarted || dragPath.isEmpty() || event.getDistanceFromDragStart() < kDragDistance)
        return;

    dragStarted = true;
    manager().startDragging (dragPath, this, makeDragImage(), false, nullptr, &event.source);
}

void zb_PresetManagerColumn::mouseUp (const juce::MouseEvent&)
{
    dragStarted = false;  // after the list has had the event: it must see that this was a drag
}

juce::ScaledImage zb_PresetManagerColumn::makeDragImage()
{
    const float scale = juce::Component::getApproximateScaleFactorForComponent (this);
    const int width = juce::jmax (1, juce::jmin (getWidth(), kMaxImageWidth));
    const int height = listBox->getRowHeight();
    juce::Image image (
        juce::Image::ARGB, juce::jmax (1, juce::roundToInt (static_cast<float> (width) * scale)),
        juce::jmax (1, juce::roundToInt (static_cast<float> (height) * scale)), true);
    juce::Graphics g (image);
    g.addTransform (juce::AffineTransform::scale (scale));
    g.beginTransparencyLayer (0.7f);
    paintListBoxItem (dragRow, g, width, height, false);
    g.endTransparencyLayer();
    return { image, static_cast<double> (scale) };
}

// --- target --------------------------------------------------------------------------------------------

void zb_PresetManagerColumn::itemDragEnter (const SourceDetails& source)
{
    dragHovering = true;
    dropRow = rowAt (source.localPosition);
    listBox->repaint();
    repaint();
}

void zb_PresetManagerColumn::itemDragMove (const SourceDetails& source)
{
    const int row = rowAt (source.localPosition);

    if (row == dropRow)
        return;

    dropRow = row;
    listBox->repaint();
}

void zb_PresetManagerColumn::itemDragExit (const SourceDetails&)
{
    dragHovering = false;
    dropRow = -1;
    listBox->repaint();
    repaint();
}

juce::File zb_PresetManagerColumn::dropTarget (int row) const
{
    if (const auto item = itemAt (row); item.hasType (typeString[kFolderNode]))
        if (const juce::File folder (item["path"].toString()); folder.isDirectory())
            return folder;

    const auto ownPath = tree["path"].toString();
    return ownPath.isNotEmpty() ? juce::File (ownPath) : juce::File();
}

void zb_PresetManagerColumn::itemDropped (const SourceDetails& source)
{
    const int row = rowAt (source.localPosition);
    const auto path = source.description.toString();
    itemDragExit (source);

    if (! juce::File::isAbsolutePath (path))
        return;

    const juce::File file (path);
    const auto target = dropTarget (row);

    if (! file.exists() || ! target.isDirectory() ||
        file.getParentDirectory().getFullPathName().equalsIgnoreCase (target.getFullPathName()))
        return;

    const auto moved = childOf (target, file.getFileName());

    if (moved.exists())
        return;

    auto& browser = manager();
    const auto openFolders = browser.getCurrentPath();

    // Where the system refuses to move an empty folder into itself, the framework would go on to copy it.
    if (target != file && ! target.isAChildOf (file))
        browser.moveOnDisk (file, moved);

    browser.folderChanged (openFolders);  // deletes this column
}
