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
    show();
    EXPECT_EQ (view(), "*A|Zero / *B|Three / *One|Two");
    EXPECT_EQ (focusedColumn(), 2);  // where the current preset is
    key (juce::KeyPress::downKey);
    EXPECT_EQ (view(), "*A|Zero / *B|Three / One|*Two");
    EXPECT_EQ (delay(), 22.0f);

    key (juce::KeyPress::leftKey);
    EXPECT_EQ (focusedColumn(), 1);
    EXPECT_EQ (view(), "*A|Zero / *B|Three / One|*Two");  // moving back selects nothing
    key (juce::KeyPress::downKey);
    EXPECT_EQ (view(), "*A|Zero / B|*Three");
    EXPECT_EQ (delay(), 33.0f);
    key (juce::KeyPress::rightKey);  // there is no next column
    EXPECT_EQ (focusedColumn(), 1);
    key (juce::KeyPress::upKey);
    key (juce::KeyPress::rightKey);
    EXPECT_EQ (focusedColumn(), 2);
    EXPECT_EQ (view(), "*A|Zero / *B|Three / *One|Two");
    EXPECT_EQ (delay(), 11.0f);

    key (juce::KeyPress::leftKey);
    key (juce::KeyPress::leftKey);
    key (juce::KeyPress::leftKey);  // before the first there is none
    EXPECT_EQ (focusedColumn(), 0);
    key (juce::KeyPress::downKey);
    EXPECT_EQ (view(), "A|*Zero");
    EXPECT_EQ (delay(), 5.0f);
    EXPECT_TRUE (browser().isVisible());
}

TEST_F (BrowserWindowKeys, ReturnClosesFromAListAndFromThePanelButNotWithAModifier)
{
    show();

    for (const auto modifier :
         { juce::ModifierKeys::shiftModifier, juce::ModifierKeys::ctrlModifier,
           juce::ModifierKeys::altModifier })
    {
        juce::ModifierKeys::currentModifiers = modifier;  // as the system's events leave them
        key (juce::KeyPress::returnKey, 0, modifier);
        EXPECT_FALSE (browser().keyPressed ({ juce::KeyPress::escapeKey, modifier, 0 }));
    }

    juce::ModifierKeys::currentModifiers = {};
    EXPECT_FALSE (juce::Desktop::getInstance().getAnimator().isAnimating (manager.get()));
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
