// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/zb_PresetManagerColumn.h"

#include "browser/browser_icons.h"
#include "browser/browser_strings.h"
#include "browser/zb_PresetManager.h"

/** Height of a row in units. */
static constexpr float kRowUnits = 2.5f;

namespace
{

/** A list that leaves the return key to its column, with a selected row as without one. */
class ColumnList : public juce::ListBox
{
public:
    explicit ColumnList (zb_PresetManagerColumn& owner)
        : juce::ListBox (juce::String(), &owner), column (owner)
    {
    }

    bool keyPressed (const juce::KeyPress& key) override
    {
        using Key = juce::KeyPress;

        if (key.isKeyCode (Key::returnKey))
            return false;

        if (! column.keyStart || getSelectedRow() >= 0)
            return juce::ListBox::keyPressed (key);

        const auto [above, below] = *column.keyStart;
        const int page = getViewport()->getHeight() / getRowHeight();

        if (key.isKeyCode (Key::upKey))
            goTo (above);
        else if (key.isKeyCode (Key::downKey))
            goTo (below);
        else if (key.isKeyCode (Key::pageUpKey))
            goTo (above + 1 - page);
        else if (key.isKeyCode (Key::pageDownKey))
            goTo (below - 1 + page);
        else
            return juce::ListBox::keyPressed (key);

        return true;
    }

private:
    void goTo (int row)
    {
        if (const int last = column.getNumRows() - 1; last >= 0)
            selectRow (juce::jlimit (0, last, row));
    }

    zb_PresetManagerColumn& column;
};

}  // namespace

zb_PresetManagerColumn::zb_PresetManagerColumn (juce::Component& browser,
                                                const BrowserLook& browserLook,
                                                const juce::ValueTree& node, int index)
    : owner (browser), tree (node), columnIndex (index),
      listBox (std::make_unique<ColumnList> (*this)), look (browserLook),
      folderIcon (makeFolderIcon()), favoritesIcon (makeFavoritesIcon()), starOn (makeStarOn()),
      starOff (makeStarOff()),
      sampleImage (
          makeSampleImage (look.colours.colourText.withAlpha (static_cast<juce::uint8> (0x99)))),
      smallSampleImage (halved (halved (sampleImage)))
{
    setTitle ("Column " + juce::String (index + 1));
    listBox->setTitle (node["name"].toString());
    listBox->setColour (juce::ListBox::backgroundColourId,
                        look.colours.colourBackground.withAlpha (static_cast<juce::uint8> (0)));
    listBox->setColour (juce::ListBox::textColourId, look.colours.colourText);
    listBox->getVerticalScrollBar().setColour (
        juce::ScrollBar::thumbColourId,
        look.colours.colourDim.withAlpha (static_cast<juce::uint8> (0x80)));
    listBox->addMouseListener (this, true);
    addAndMakeVisible (*listBox);
    listBox->updateContent();  // until its first update a list takes no selection
}

zb_PresetManagerColumn::~zb_PresetManagerColumn()
{
    listBox->removeMouseListener (this);
    listBox->setModel (nullptr);
}

zb_PresetManager& zb_PresetManagerColumn::manager() const
{
    return dynamic_cast<zb_PresetManager&> (owner);
}

void zb_PresetManagerColumn::resized()
{
    // The height first: a list has a component for each row that fits, and the old rows may be far
    // lower.
    listBox->setRowHeight (
        juce::roundToInt (unit * kRowUnits));  // at least 1, and the steps with it
    listBox->setBounds (getLocalBounds());

    const int thickness = juce::roundToInt (unit * 0.5f);
    listBox->getViewport()->setScrollBarThickness (
        thickness > 0 ? thickness : getLookAndFeel().getDefaultScrollbarWidth());
}

// --- selection -----------------------------------------------------------------------------------------

void zb_PresetManagerColumn::handleRowSelection (int row)
{
    if (! juce::isPositiveAndBelow (row, getNumRows()))
        return;

    auto& browser = manager();
    browser.itemSelected (itemAt (row), columnIndex);
    browser.getTopLevelComponent()->repaint();
}

void zb_PresetManagerColumn::selectWithoutLoad (int row)
{
    const juce::ScopedValueSetter<bool> forShow (manager().navigating, true);
    listBox->selectRow (row, true);
}

void zb_PresetManagerColumn::selectedRowsChanged (int lastRow)
{
    keyStart.reset();
    handleRowSelection (lastRow);
}

juce::String zb_PresetManagerColumn::getNameForRow (int row)
{
    return itemAt (row)["name"].toString();
}

bool zb_PresetManagerColumn::isPreset (const juce::ValueTree& item)
{
    return item.hasType (typeString[kPresetNode]) || item.hasType (typeString[kSampleNode]);
}

void zb_PresetManagerColumn::listBoxItemClicked (int row, const juce::MouseEvent& event)
{
    // The list reports the end of a drag of a selected row as a click on it, wherever the mouse is by then.
    if (dragStarted)
        return;

    const auto item = itemAt (row);
    const auto path = item["path"].toString();
    const auto starStart =
        static_cast<float> (listBox->getRowPosition (row, true).getWidth()) - kStarZone * unit;

    if (isPreset (item) && event.position.x >= starStart && path.isNotEmpty())
        toggleStarLater (path);
    else
        handleRowSelection (row);
}

void zb_PresetManagerColumn::toggleStarLater (const juce::String& path)
{
    // The rebuild deletes this column, which is handling a click of its own list.
    juce::MessageManager::callAsync (
        [browser = juce::Component::SafePointer<zb_PresetManager> (&manager()), path,
         openFolders = manager().getCurrentPath()]
        {
            if (browser != nullptr)
                browser->toggleAndReopen (path, openFolders);
        });
}

void zb_PresetManagerColumn::listBoxItemDoubleClicked (int row, const juce::MouseEvent&)
{
    const auto item = itemAt (row);

    if (! item.hasType (typeString[kFolderNode]) && ! item.hasType (typeString[kFavoritesNode]))
        manager().close();
}

// --- keys ----------------------------------------------------------------------------------------------

bool zb_PresetManagerColumn::keyPressed (const juce::KeyPress& key)
{
    if (key == juce::KeyPress (juce::KeyPress::returnKey))
    {
        manager().close();
        return true;
    }

    if (key == juce::KeyPress (juce::KeyPress::rightKey))
    {
        if (auto* const next = manager().getColumn (columnIndex + 1))
        {
            next->listBox->grabKeyboardFocus();
            next->listBox->selectRow (0);
        }

        return true;
    }

    if (key == juce::KeyPress (juce::KeyPress::leftKey))
    {
        if (columnIndex > 0)
            manager().getColumn (columnIndex - 1)->listBox->grabKeyboardFocus();

        return true;
    }

    return false;
}
