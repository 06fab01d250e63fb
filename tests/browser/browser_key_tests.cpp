// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/archive_bench.h"
#include "browser/browser_window_fixture.h"

class BrowserWindowKeys : public BrowserWindow
{
protected:
    BrowserWindowKeys()
    {
        putPreset ("A/B/one.zbpreset", "One", 11.0f);
        putPreset ("A/B/two.zbpreset", "Two", 22.0f);
        putPreset ("A/three.zbpreset", "Three", 33.0f);
        putPreset ("zero.zbpreset", "Zero", 5.0f);
        processor.presetName = "one";
    }
};

TEST_F (BrowserWindowKeys, ArrowsWalkTheColumnsAndLoadWhatTheyReach)
{
    using Key = juce::KeyPress;
    show();
    EXPECT_EQ (view(), "*A|Zero / *B|Three / *One|Two");
    EXPECT_EQ (focusedColumn(), 2);  // where the current preset is

    struct Step
    {
        int key, focus;
        const char* view;
        float delay;
    };

    for (const auto& step : {
             Step { Key::downKey, 2, "*A|Zero / *B|Three / One|*Two", 22.0f },
             Step { Key::leftKey, 1, "*A|Zero / *B|Three / One|*Two", 22.0f },  // selects nothing
             Step { Key::downKey, 1, "*A|Zero / B|*Three", 33.0f },
             Step { Key::rightKey, 1, "*A|Zero / B|*Three", 33.0f },  // there is no next column
             Step { Key::upKey, 1, "*A|Zero / *B|Three / One|Two", 33.0f },
             Step { Key::rightKey, 2, "*A|Zero / *B|Three / *One|Two", 11.0f },
             Step { Key::leftKey, 1, "*A|Zero / *B|Three / *One|Two", 11.0f },
             Step { Key::leftKey, 0, "*A|Zero / *B|Three / *One|Two", 11.0f },
             Step { Key::leftKey, 0, "*A|Zero / *B|Three / *One|Two", 11.0f },
             Step { Key::downKey, 0, "A|*Zero", 5.0f },
         })
    {
        key (step.key);
        EXPECT_EQ (focusedColumn(), step.focus) << step.view;
        EXPECT_EQ (view(), step.view);
        EXPECT_EQ (delay(), step.delay) << step.view;
    }
}

TEST_F (BrowserWindowKeys, ReturnClosesFromAListAndFromThePanel)
{
    show();
    key (juce::KeyPress::downKey);
    key (juce::KeyPress::returnKey);
    EXPECT_TRUE (hasClosed());
    EXPECT_EQ (delay(), 22.0f);

    browser().rebuildAndReopen ({});
    processor.currentProgram = 99;
    reopen();
    EXPECT_EQ (view(), "A|Zero");  // nothing selected
    EXPECT_EQ (focusedColumn(), 0);
    key (juce::KeyPress::returnKey);
    EXPECT_TRUE (hasClosed());
}

// The rebuild deletes the columns, the one with the focus too.
TEST_F (BrowserWindowKeys, GoOnFromTheSameRowAfterEveryRebuild)
{
    using Key = juce::KeyPress;

    for (int i = 0; i < 80; ++i)
        putPreset ("Many/p" + juce::String (i + 10) + ".zbpreset", "P" + juce::String (i + 10),
                   100.0f + static_cast<float> (i + 10));

    show();
    click (onRow (0, "Many"));
    browser().getColumn (1)->listBox->getViewport()->setViewPosition (0, 600);
    auto row = onRow (1, "P43");

    // The row under the mouse, the focus, and what an arrow key leads to.
    const auto expect = [&] (int arrow, float wanted, const char* after)
    {
        pump();
        EXPECT_EQ (onRow (1, "P43"), row) << after;
        EXPECT_EQ (focusedColumn(), 1) << after;
        key (arrow);
        EXPECT_EQ (delay(), wanted) << after;
    };
    const auto current = [&] { return browser().presetFiles[processor.currentProgram]; };

    click (onRow (1, "P40", -5.0f));
    pump();
    EXPECT_EQ (current(), lib ("Many/p40.zbpreset"));  // though its file has another name
    EXPECT_EQ (browser().getColumn (1)->listBox->getSelectedRow(), -1);
    expect (Key::downKey, 141.0f, "a star");

    for (const bool byKey : { false, true })
    {
        click (on (*browser().buttons[kDeleteCommand]));
        auto& doIt = *browser().deleteWindow->getChildComponent (0);

        if (byKey)
        {
            doIt.grabKeyboardFocus();
            key (Key::returnKey);
            pump();
        }
        else
            click (on (doIt));

        row.y -= 22.0f;  // the row that went was above
        expect (byKey ? Key::upKey : Key::downKey, byKey ? 140.0f : 142.0f, "a deletion");
    }

    drag (onRow (1, "P40"), onRow (0, "A"));
    row.y -= 22.0f;
    expect (Key::upKey, 139.0f, "a drop");

    putFile (homeFile ("Pack.zip"), "empty");
    browser().importFile (homeFile ("Pack.zip"));
    EXPECT_EQ (browser().selectedPath, lib ("Many/p39.zbpreset").getFullPathName());
    EXPECT_EQ (current(), lib ("Many/p39.zbpreset"));
    expect (Key::downKey, 143.0f, "an import");
    pump (300);  // the dragged picture fades
}

// The row of favourites comes and goes above the others.
TEST_F (BrowserWindowKeys, AStarLeavesTheRowUnderTheMouse)
{
    for (int i = 0; i < 60; ++i)
        putPreset ("z" + juce::String (i + 10) + ".zbpreset", "Z" + juce::String (i + 10));

    show();
    browser().getColumn (0)->listBox->getViewport()->setViewPosition (0, 505);
    const auto star = onRow (0, "Z40", -5.0f);

    for (const int favorites : { 1, 0 })
    {
        click (star);
        pump();
        EXPECT_EQ (onRow (0, "Z40", -5.0f), star);
        EXPECT_EQ (browser().favorites.size(), favorites);
    }
}

TEST_F (BrowserWindowKeys, AreKeptFromABrowserThatIsAtWork)
{
    const auto archive = homeFile ("Pack.zip");
    const auto bytes = makeArchive ({ { "p.zbpreset", "x" } });
    putFile (archive, { bytes.begin(), bytes.getSize() });
    show();
    const auto before = delay();
    bool seen = false;

    juce::MessageManager::callAsync (
        [&]
        {
            seen = browser().busyCover != nullptr;
            key (juce::KeyPress::downKey);
            key (juce::KeyPress::tabKey);
            key (juce::KeyPress::returnKey);
        });
    browser().importFile (archive);
    EXPECT_TRUE (seen);
    EXPECT_EQ (delay(), before);
    EXPECT_TRUE (browser().isVisible());
    EXPECT_FALSE (hasClosed());
    key (juce::KeyPress::returnKey);
    EXPECT_TRUE (hasClosed());
}
