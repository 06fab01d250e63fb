// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/browser_window_fixture.h"

#include <cstdlib>

class BrowserWindowMouse : public BrowserWindow
{
protected:
    BrowserWindowMouse()
    {
        putPreset ("A/one.zbpreset", "One", 11.0f);
        putPreset ("A/two.zbpreset", "Two", 22.0f);
        putPreset ("B/three.zbpreset", "Three", 33.0f);
        putPreset ("zero.zbpreset", "Zero", 5.0f);
        lib ("C").createDirectory();
    }
};

TEST_F (BrowserWindowMouse, AClickAuditionsAndADoubleClickCloses)
{
    show();
    click (onRow (0, "A"));
    EXPECT_EQ (view(), "*A|B|C|Zero / One|Two");
    click (onRow (1, "Two"));
    EXPECT_EQ (delay(), 22.0f);
    EXPECT_TRUE (browser().isVisible());
    click (onRow (1, "One"), 2);
    EXPECT_EQ (delay(), 11.0f);
    EXPECT_TRUE (hasClosed());

    reopen();
    click (onRow (0, "B"), 2);
    pump (300);
    EXPECT_TRUE (browser().isVisible());  // a folder only opens
    EXPECT_EQ (view(), "A|*B|C|Zero / Three");
}

TEST_F (BrowserWindowMouse, CancelAndEscapeGoBackAndCloseKeeps)
{
    processor.presetName = "Mine";
    processor.currentProgram = 2;
    show();
    const float before = delay();
    const int programBefore = processor.currentProgram;

    for (const bool byKey : { false, true })
    {
        click (onRow (0, "Zero"));
        EXPECT_EQ (delay(), 5.0f);
        putFile (lib ("A/one.zbpreset"), "spoilt");
        click (onRow (0, "A"));
        click (onRow (1, browser().getColumn (1)->tree.getChild (0)["name"].toString()));
        EXPECT_EQ (processor.presetName, "Error Loading Preset");

        if (byKey)
            key (juce::KeyPress::escapeKey);
        else
            click (on (*browser().buttons[kCancelCommand]));

        EXPECT_TRUE (hasClosed());
        EXPECT_EQ (delay(), before);
        EXPECT_EQ (processor.presetName, "Mine");
        EXPECT_EQ (processor.currentProgram, programBefore);
        EXPECT_FALSE (processor.undoManager.canUndo());
        reopen();
    }

    click (onRow (0, "Zero"));
    click (on (*browser().buttons[kCloseCommand]));
    EXPECT_TRUE (hasClosed());
    EXPECT_EQ (delay(), 5.0f);

    // Name and program are those of the moment of opening, whatever the document says.
    reopen();
    browser().undoPresetName = "Opened With";
    browser().undoProgram = 1;
    key (juce::KeyPress::escapeKey);
    EXPECT_EQ (processor.presetName, "Opened With");
    EXPECT_EQ (processor.currentProgram, 1);
    EXPECT_TRUE (hasClosed());

    // Nothing to go back to: only closes.
    reopen();
    browser().undoState.clear();
    click (on (*browser().buttons[kCancelCommand]));
    EXPECT_TRUE (hasClosed());
    EXPECT_EQ (delay(), 5.0f);
}

TEST_F (BrowserWindowMouse, TheStarTogglesAndReopensTheFolder)
{
    show();
    click (onRow (0, "A"));
    const float zone = 3.0f * browser().unit;
    click (onRow (1, "Two", -zone - 1.0f));
    pump();
    EXPECT_EQ (view(), "*A|B|C|Zero / One|*Two");  // just beside it: only selected

    click (onRow (1, "Two", -zone));
    EXPECT_EQ (view(),
               "*A|B|C|Zero / One|*Two");  // not yet: the rebuild waits for the click to end
    pump();
    EXPECT_EQ (view(), "Favorites|*A|B|C|Zero / One|Two");
    EXPECT_EQ (browser().favorites, juce::StringArray ({ "A/two.zbpreset" }));
    EXPECT_EQ (delay(), 22.0f);

    // In the favourites' own column, which goes with its last row.
    click (onRow (0, "Favorites"));
    click (onRow (1, "Two", -5.0f));
    pump();
    EXPECT_EQ (view(), "A|B|C|Zero");
    EXPECT_TRUE (browser().favorites.isEmpty());

    // A folder has no star.
    click (onRow (0, "A", -5.0f));
    pump();
    EXPECT_TRUE (browser().favorites.isEmpty());
    EXPECT_EQ (view(), "*A|B|C|Zero / One|Two");
}

TEST_F (BrowserWindowMouse, ADragMovesAFile)
{
    putPreset ("A/Sub/Deep.zbpreset", "Deep", 44.0f);
    show();
    click (onRow (0, "A"));
    click (onRow (1, "Sub"));
    click (onRow (2, "Deep"));
    HostListener host;
    processor.addListener (&host);
    drag (onRow (2, "Deep"), onRow (0, "B"));
    EXPECT_TRUE (lib ("B/Deep.zbpreset").existsAsFile());
    EXPECT_FALSE (lib ("A/Sub/Deep.zbpreset").exists());
    EXPECT_EQ (view(), "*A|B|C|Zero / One|*Sub|Two / ");
    EXPECT_EQ (browser().presetFiles[processor.currentProgram], lib ("B/Deep.zbpreset"));
    EXPECT_TRUE (host.last.programChanged);
    processor.removeListener (&host);

    // Onto a preset of another folder's column means into that folder, and so does the space below the rows.
    ASSERT_TRUE (lib ("B/Deep.zbpreset").moveFileTo (lib ("A/Sub/Deep.zbpreset")));
    putPreset ("A/Sub/More.zbpreset", "More");
    browser().rebuildAndReopen ({ "A", "Sub" });
    drag (onRow (2, "Deep"), onRow (1, "One"));
    EXPECT_TRUE (lib ("A/Deep.zbpreset").existsAsFile());
    EXPECT_EQ (view(), "*A|B|C|Zero / Deep|One|*Sub|Two / More");
    drag (onRow (2, "More"), onRow (1, "Two").translated (0.0f, 200.0f));
    EXPECT_TRUE (lib ("A/More.zbpreset").existsAsFile());

    // Folders move with all that is in them.
    drag (onRow (0, "B"), onRow (0, "C"));
    EXPECT_TRUE (lib ("C/B/three.zbpreset").existsAsFile());
    pump (300);  // the dragged picture fades
}

TEST_F (BrowserWindowMouse, ADragThatMovesNothingChangesNothing)
{
    putPreset ("B/one.zbpreset", "Other One");
    show();
    click (onRow (0, "A"));
    const auto files = [this]
    {
        juce::StringArray paths;

        for (const auto& file : folder.findChildFiles (juce::File::findFilesAndDirectories, true))
            paths.add (file.getRelativePathFrom (folder));

        paths.sort (false);
        return paths.joinIntoString (" ");
    };
    const auto before = files();
    const auto viewBefore = view();

    drag (onRow (1, "One"), onRow (0, "B"));  // one of that name is there
    drag (onRow (1, "One"), onRow (0, "A"));  // it is there already
    drag (onRow (1, "One"), onRow (1, "Two"));
    drag (onRow (1, "One"), { 60.0f, 500.0f });  // no column at all
    EXPECT_EQ (view(), viewBefore.replace ("One", "*One"));
    drag (onRow (0, "B"),
          onRow (0, "B").translated (0.0f, 300.0f));  // the first column has no folder
    EXPECT_EQ (files(), before);

    // A folder into itself or below fails, and the view comes back.
    putPreset ("B/Sub/deep.zbpreset", "Deep");
    browser().rebuildAndReopen ({ "B" });
    drag (onRow (0, "B"), onRow (1, "Sub"));
    EXPECT_TRUE (lib ("B/Sub/deep.zbpreset").existsAsFile());
    lib ("Empty").createDirectory();
    browser().rebuildAndReopen ({ "Empty" });
    drag (onRow (0, "Empty"), on (*browser().getColumn (1)));
    EXPECT_TRUE (lib ("Empty").isDirectory());
    EXPECT_EQ (lib ("Empty").getNumberOfChildFiles (juce::File::findFilesAndDirectories), 0);

    // Less than eight pixels are a click.
    pump (400);  // until the last picture has faded
    browser().rebuildAndReopen ({});
    press (onRow (0, "Zero"));
    moveTo (onRow (0, "Zero").translated (5.0f, 5.0f));
    EXPECT_FALSE (browser().isDragAndDropActive());
    moveTo (onRow (0, "Zero").translated (6.0f, 6.0f));
    EXPECT_TRUE (browser().isDragAndDropActive());
    release (onRow (0, "Zero"));
    EXPECT_FALSE (browser().getColumn (0)->dragHovering);

    // Favourites stay where they are.
    browser().toggleFavorite (lib ("zero.zbpreset").getFullPathName());
    browser().rebuildAndReopen ({});
    press (onRow (0, "Favorites"));
    moveTo (onRow (0, "A"));
    EXPECT_TRUE (browser().getColumn (0)->dragPath.isEmpty());
    release (onRow (0, "A"));
    pump (300);
}

TEST_F (BrowserWindowMouse, TheScrollBarDragsNoRow)
{
    for (int i = 0; i < 60; ++i)
        putPreset ("A/p" + juce::String (i) + ".zbpreset", "P" + juce::String (i));

    show();
    click (onRow (0, "A"));
    auto& bar = browser().getColumn (1)->listBox->getVerticalScrollBar();
    ASSERT_TRUE (bar.isVisible());
    const auto thumb = window.getLocalPoint (&bar, juce::Point<float> (2.0f, 20.0f));
    press (thumb);
    moveTo (thumb.translated (0.0f, 60.0f));
    EXPECT_FALSE (browser().isDragAndDropActive());
    EXPECT_GT (bar.getCurrentRangeStart(), 0.0);
    moveTo (onRow (0, "B"));
    release (onRow (0, "B"));
    EXPECT_EQ (lib ("B").getNumberOfChildFiles (juce::File::findFiles), 1);
    EXPECT_EQ (lib ("A").getNumberOfChildFiles (juce::File::findFiles), 62);
    pump (300);
}

TEST_F (BrowserWindowMouse, TheEndOfADragOfASelectedRowIsNoClick)
{
    show();
    click (onRow (0, "Zero"));
    drag (onRow (0, "Zero"), onRow (0, "Zero", -4.0f));  // ends on its own star
    pump();
    EXPECT_TRUE (browser().favorites.isEmpty());
    click (onRow (0, "Zero", -4.0f));
    pump();
    EXPECT_EQ (browser().favorites.size(), 1);  // and the next click is one again
}

TEST_F (BrowserWindowMouse, ThePressedButtonShows)
{
    show();
    auto& button = *browser().buttons[kCloseCommand];
    const auto corner =
        button.getBounds().getTopLeft() + juce::Point<int> (button.getHeight() / 2, 2);
    const auto looksLike = [&] (juce::Colour wanted)
    {
        const auto seen = browser()
                              .createComponentSnapshot (browser().getLocalBounds())
                              .getPixelAt (corner.x, corner.y);
        return std::abs (seen.getRed() - wanted.getRed()) +
                   std::abs (seen.getGreen() - wanted.getGreen()) +
                   std::abs (seen.getBlue() - wanted.getBlue()) <=
               3;
    };
    EXPECT_TRUE (looksLike (juce::Colour (0xff171717).overlaidWith (juce::Colour (0x400094d8))));
    press (on (button));
    EXPECT_TRUE (looksLike (juce::Colour (0xff50d2d7)));
    moveTo ({ 5.0f, 400.0f });
    release ({ 5.0f, 400.0f });
    EXPECT_TRUE (browser().isVisible());
}

TEST_F (BrowserWindowMouse, CopyAndPasteGoThroughTheClipboard)
{
    show();
    click (onRow (0, "Zero"));
    click (on (*browser().buttons[kCopyCommand]));
    EXPECT_FALSE (browser().isVisible());  // at once
    EXPECT_EQ (juce::SystemClipboard::getTextFromClipboard(), textOf (processor));

    reopen();
    click (onRow (0, "A"));
    click (onRow (1, "Two"));
    EXPECT_EQ (delay(), 22.0f);
    click (on (*browser().buttons[kPasteCommand]));
    EXPECT_FALSE (browser().isVisible());
    EXPECT_EQ (delay(), 5.0f);

    reopen();
    juce::SystemClipboard::copyTextToClipboard ("no document");
    click (on (*browser().buttons[kPasteCommand]));
    EXPECT_FALSE (browser().isVisible());
    EXPECT_EQ (delay(), 5.0f);
}

TEST_F (BrowserWindowMouse, NothingDanglesWhenTheBrowserGoes)
{
    const float zone = 5.0f;
    show();
    click (onRow (0, "Zero", -zone));  // its toggle is on the way
    manager.reset();
    pump();
    EXPECT_FALSE (lib ("favorites.xml").exists());

    show();
    press (onRow (0, "Zero"));
    moveTo (onRow (0, "A"));  // in the middle of a drag
    manager.reset();
    release ({ 10.0f, 10.0f });
    pump (300);

    show();
    browser().close();  // in the middle of a fade
    manager.reset();
    pump (300);

    show();
    click (on (*browser().buttons[kSaveCommand]));
    ASSERT_NE (browser().saveWindow, nullptr);
    juce::MessageManager::callAsync ([this] { manager.reset(); });
    key (juce::KeyPress::returnKey);  // is posted, and arrives after that
    pump (300);
    EXPECT_EQ (manager, nullptr);
}
