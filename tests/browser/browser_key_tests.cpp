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
