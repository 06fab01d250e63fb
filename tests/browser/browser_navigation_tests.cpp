// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/browser_fixture.h"

class BrowserNavigation : public BrowserTest
{
protected:
    BrowserNavigation()
    {
        putPreset ("A/B/one.zbpreset", "One", 11.0f);
        putPreset ("A/B/two.zbpreset", "Two", 22.0f);
        putPreset ("A/three.zbpreset", "Three", 33.0f);
        putPreset ("D/four.zbpreset", "Four", 44.0f);
        open();
    }

    juce::String viewOf (int program) const
    {
        browser().processor.currentProgram = program;
        browser().navigateToCurrentPreset();
        return view();
    }

    juce::String viewAfter (const juce::StringArray& path) const
    {
        browser().rebuildAndReopen (path);
        return view();
    }
};

TEST_F (BrowserNavigation, SelectingAPresetLoadsItAndTellsTheHost)
{
    HostListener host;
    processor.addListener (&host);
    select (0, "A");
    select (1, "B");
    EXPECT_EQ (host.changes, 0);
    select (2, "Two");
    EXPECT_EQ (processor.presetName, "Two");
    EXPECT_EQ (processor.currentProgram, 1);
    EXPECT_TRUE (host.last.programChanged && host.last.latencyChanged &&
                 host.last.parameterInfoChanged);
    processor.removeListener (&host);
}

TEST_F (BrowserNavigation, WalksToTheCurrentPresetWithoutLoadingIt)
{
    const float before = delay();
    processor.presetName = "kept";

    for (const int program : { -1, 4, 99 })
        EXPECT_EQ (viewOf (program), "A|D");

    EXPECT_EQ (viewOf (1), "*A|D / *B|Three / One|*Two");
    EXPECT_EQ (viewOf (3), "A|*D / *Four");  // from another view, and from itself
    EXPECT_EQ (viewOf (3), "A|*D / *Four");
    EXPECT_EQ (processor.presetName, "kept");
    EXPECT_EQ (delay(), before);

    ASSERT_TRUE (lib ("A/B/one.zbpreset").deleteFile());
    ASSERT_TRUE (lib ("A/B/one.zbpreset").createDirectory());
    EXPECT_EQ (viewOf (0), "A|*D / *Four");
}

TEST_F (BrowserNavigation, ReopensTheFoldersThatAreStillThere)
{
    select (0, "A");
    select (1, "B");
    select (2, "One");
    EXPECT_EQ (browser().getCurrentPath(), juce::StringArray ({ "A", "B" }));
    EXPECT_EQ (viewAfter ({ "A", "B" }), "*A|D / *B|Three / *One|Two");

    // A name that is not found is passed over, and the next one looked for in the same node.
    EXPECT_EQ (viewAfter ({ "A", "gone", "B" }), "*A|D / B|Three");
    EXPECT_EQ (viewAfter ({ "gone" }), "A|D");
    EXPECT_EQ (viewAfter ({ "A", "Three" }), "*A|D / B|Three");  // files are no folders

    browser().toggleFavorite (lib ("D/four.zbpreset").getFullPathName());
    EXPECT_EQ (viewAfter ({ "Favorites" }), "*Favorites|A|D / Four");
    EXPECT_EQ (browser().getCurrentPath(), juce::StringArray ({ "Favorites" }));
}
