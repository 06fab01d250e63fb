// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/browser_window_fixture.h"
#include "browser/disk_limits.h"

#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

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

TEST_F (BrowserWindowMouse, CancelAndEscapeGoBackAndCloseKeeps)
{
    processor.presetName = "Mine";
    show();
    const float before = delay();
    processor.currentProgram = 2;

    for (const bool byKey : { false, true })
    {
        reopen();
        click (onRow (0, "Zero"));
        EXPECT_EQ (delay(), 5.0f);
        putFile (lib ("B/three.zbpreset"), "spoilt");
        click (onRow (0, "B"));
        click (onRow (1, "Three"));
        EXPECT_EQ (processor.presetName, "Error Loading Preset");

        // Name and program are those of the moment of opening, whatever the document says.
        browser().undoPresetName = "Opened With";

        if (byKey)
            key (juce::KeyPress::escapeKey);
        else
            click (on (*browser().buttons[kCancelCommand]));

        EXPECT_TRUE (hasClosed());
        EXPECT_EQ (delay(), before);
        EXPECT_EQ (processor.presetName, "Opened With");
        EXPECT_EQ (processor.currentProgram, 2);
        EXPECT_FALSE (processor.undoManager.canUndo());
    }

    reopen();
    click (onRow (0, "Zero"));
    click (on (*browser().buttons[kCloseCommand]));
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
    EXPECT_TRUE (browser().favorites.isEmpty());  // not yet: the rebuild waits for the click to end
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
}

TEST_F (BrowserWindowMouse, ADragMovesAFile)
{
    putPreset ("A/Sub/Deep.zbpreset", "Deep", 44.0f);
    show();
    click (onRow (0, "A"));
    click (onRow (1, "Sub"));
    click (onRow (2, "Deep"));
    drag (onRow (2, "Deep"), onRow (0, "B"));
    EXPECT_TRUE (lib ("B/Deep.zbpreset").existsAsFile());
    EXPECT_FALSE (lib ("A/Sub/Deep.zbpreset").exists());
    EXPECT_EQ (view(), "*A|B|C|Zero / One|*Sub|Two / ");
    EXPECT_EQ (browser().presetFiles[processor.currentProgram], lib ("B/Deep.zbpreset"));

    // Onto a preset of another folder's column means into that folder, and so does the space below the rows.
    putPreset ("A/Sub/Low.zbpreset", "Low");
    putPreset ("A/Sub/More.zbpreset", "More");
    browser().rebuildAndReopen ({ "A", "Sub" });
    drag (onRow (2, "Low"), onRow (1, "One"));
    EXPECT_EQ (view(), "*A|B|C|Zero / Low|One|*Sub|Two / More");
    drag (onRow (2, "More"), onRow (1, "Two").translated (0.0f, 200.0f));
    EXPECT_TRUE (lib ("A/Low.zbpreset").existsAsFile() && lib ("A/More.zbpreset").existsAsFile());

    // Folders move with all that is in them.
    drag (onRow (0, "B"), onRow (0, "C"));
    EXPECT_TRUE (lib ("C/B/three.zbpreset").existsAsFile());
    pump (300);  // the dragged picture fades
}

TEST_F (BrowserWindowMouse, ADragOntoAnotherDeviceMovesAllOrNothing)
{
    const OtherDevice other;
    ASSERT_TRUE (other.isOtherThan (lib()));
    ASSERT_TRUE (other.folder.createSymbolicLink (lib ("D"), false));
    putFile (lib ("A/Sub/.hidden"), std::string (9000, 'h'));
    putPreset ("A/Sub/Deep/deep.zbpreset", "Deep", 44.0f);
    ASSERT_EQ (symlink ("nowhere", lib ("A/Sub/link").getFullPathName().toRawUTF8()), 0);
    const SmallDisk full (lib ("E"), 8);

    if (full.isThere())
        putFile (lib ("E/filler"), std::string (8192, 'f'));

    const auto written = juce::Time (2020, 0, 1, 0, 0);
    ASSERT_TRUE (lib ("A/one.zbpreset").setLastModificationTime (written));
    show();
    click (onRow (0, "A"));
    const auto one = bytesOf (lib ("A/one.zbpreset"));
    const auto before = contents (lib ("A"));

    for (const auto* name : { "One", "Sub" })
    {
        const FileSizeLimit limit (100);
        drag (onRow (1, name), onRow (0, "D"));
        EXPECT_EQ (contents (lib ("A")), before) << name;
        EXPECT_EQ (contents (other.folder), "") << name;
    }

    for (const auto* name : { "One", "Sub" })
        if (full.isThere())
        {
            drag (onRow (1, name), onRow (0, "E"));
            EXPECT_EQ (contents (lib ("A")), before) << name;
            EXPECT_EQ (lib ("E").getNumberOfChildFiles (juce::File::findFilesAndDirectories), 1);
        }

    // A pipe can't be copied, so the folder stays, whole.
    ASSERT_EQ (mkfifo (lib ("A/Sub/pipe").getFullPathName().toRawUTF8(), 0600), 0);
    drag (onRow (1, "Sub"), onRow (0, "D"));
    EXPECT_EQ (contents (other.folder), "");
    ASSERT_TRUE (lib ("A/Sub/pipe").deleteFile());
    const auto folderBefore = contents (lib ("A/Sub"));
    putStrangeNames ("A/Sub/Deep");

    for (const auto* name : { "One", "Sub" })
        drag (onRow (1, name), onRow (0, "D"));

    EXPECT_EQ (contents (lib ("A")), "two.zbpreset=" + lib ("A/two.zbpreset").loadFileAsString());
    EXPECT_EQ (bytesOf (other.folder.getChildFile ("one.zbpreset")), one);
    EXPECT_EQ (other.folder.getChildFile ("one.zbpreset").getLastModificationTime(), written);
    int moved = 0;

    for (const auto& entry : std::filesystem::directory_iterator (
             other.folder.getChildFile ("Sub/Deep").getFullPathName().toStdString()))
    {
        ++moved;

        if (entry.path().filename() != "deep.zbpreset")
            std::filesystem::remove (entry);
    }

    EXPECT_EQ (moved, 4);
    EXPECT_EQ (contents (other.folder.getChildFile ("Sub")), folderBefore);
    EXPECT_TRUE (other.folder.getChildFile ("Sub/link").isSymbolicLink());
    pump (400);  // until the last picture has faded
}

TEST_F (BrowserWindowMouse, ADragTakesTheStarsAlong)
{
    putPreset ("A/Sub/Deep.zbpreset", "Deep");
    putPreset ("A/Submarine.zbpreset", "Submarine");
    show();

    for (const auto* path :
         { "A/Sub/Deep.zbpreset", "zero.zbpreset", "A/Submarine.zbpreset", "A/one.zbpreset" })
        browser().toggleFavorite (lib (path).getFullPathName());

    browser().rebuildAndReopen ({ "A" });
    drag (onRow (1, "One"), onRow (0, "B"));
    drag (onRow (1, "Sub"), onRow (0, "C"));
    EXPECT_TRUE (lib ("C/Sub/Deep.zbpreset").existsAsFile());
    open();
    EXPECT_EQ (browser().favorites.joinIntoString ("|"),
               "C/Sub/Deep.zbpreset|zero.zbpreset|A/Submarine.zbpreset|B/one.zbpreset");
    pump (400);  // until the last picture has faded
}

TEST_F (BrowserWindowMouse, ADragThatMovesNothingChangesNothing)
{
    putPreset ("B/one.zbpreset", "Other One");
    putPreset ("B/Sub/deep.zbpreset", "Deep");
    lib ("Empty").createDirectory();
    show();
    click (onRow (0, "A"));
    const auto before = contents (lib());
    const auto viewBefore = view();

    drag (onRow (1, "One"), onRow (0, "B"));  // one of that name is there
    drag (onRow (1, "One"), onRow (0, "A"));  // it is there already
    drag (onRow (1, "One"), onRow (1, "Two"));
    drag (onRow (1, "One"), { 60.0f, 500.0f });  // no column at all
    EXPECT_EQ (view(), viewBefore.replace ("One", "*One"));
    drag (onRow (0, "B"),
          onRow (0, "B").translated (0.0f, 300.0f));  // the first column has no folder

    // A folder goes neither into itself nor below.
    browser().rebuildAndReopen ({ "B" });
    drag (onRow (0, "B"), onRow (1, "Sub"));
    browser().rebuildAndReopen ({ "Empty" });
    drag (onRow (0, "Empty"), on (*browser().getColumn (1)));
    EXPECT_EQ (contents (lib()), before);
    pump (400);  // until the last picture has faded
}

TEST_F (BrowserWindowMouse, ADragBeginsAfterEightPixelsAndNotOnTheScrollBar)
{
    for (int i = 0; i < 60; ++i)
        putPreset ("C/p" + juce::String (i) + ".zbpreset", "P" + juce::String (i));

    show();
    press (onRow (0, "Zero"));
    moveTo (onRow (0, "Zero").translated (5.0f, 5.0f));
    EXPECT_FALSE (browser().isDragAndDropActive());
    moveTo (onRow (0, "Zero").translated (6.0f, 6.0f));
    EXPECT_TRUE (browser().isDragAndDropActive());
    release (onRow (0, "Zero"));

    // The end of a drag is no click, not even on the row's own star.
    click (onRow (0, "Zero"));
    drag (onRow (0, "Zero"), onRow (0, "Zero", -4.0f));
    pump (400);  // until the picture has faded
    EXPECT_TRUE (browser().favorites.isEmpty());

    // The bar lies over rows.
    click (onRow (0, "C"));
    auto& bar = browser().getColumn (1)->listBox->getVerticalScrollBar();
    ASSERT_TRUE (bar.isVisible());
    const auto thumb = window.getLocalPoint (&bar, juce::Point<float> (2.0f, 20.0f));
    drag (thumb, onRow (0, "B"));
    EXPECT_EQ (lib ("C").getNumberOfChildFiles (juce::File::findFiles), 60);
    pump (400);  // until the picture has faded
}

TEST_F (BrowserWindowMouse, CopyAndPasteGoThroughTheClipboard)
{
    show();
    click (onRow (0, "Zero"));
    click (on (*browser().buttons[kCopyCommand]));
    EXPECT_FALSE (browser().isVisible());  // at once
    EXPECT_EQ (juce::SystemClipboard::getTextFromClipboard(), textOf (processor));

    for (const float pasted : { 5.0f, 22.0f })
    {
        reopen();
        click (onRow (0, "A"));
        click (onRow (1, "Two"));
        EXPECT_EQ (delay(), 22.0f);
        click (on (*browser().buttons[kPasteCommand]));
        EXPECT_FALSE (browser().isVisible());
        EXPECT_EQ (delay(), pasted);
        juce::SystemClipboard::copyTextToClipboard ("no document");
    }
}

TEST_F (BrowserWindowMouse, AClosedBrowserDeletesNothing)
{
    show();
    click (onRow (0, "A"));
    click (onRow (1, "Two"));
    click (on (*browser().buttons[kDeleteCommand]));
    const auto doIt = on (*browser().deleteWindow->getChildComponent (0));
    key (juce::KeyPress::escapeKey);
    click (doIt);  // while it fades
    EXPECT_TRUE (hasClosed());
    reopen();
    click (doIt);
    EXPECT_TRUE (lib ("A/two.zbpreset").existsAsFile());
}

TEST_F (BrowserWindowMouse, NothingDanglesWhenTheBrowserGoes)
{
    show();
    click (onRow (0, "Zero", -5.0f));  // its toggle is on the way
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
