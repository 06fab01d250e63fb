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

    juce::String buttonTexts() const
    {
        return browser().buttons[kExportCommand]->getButtonText() + ", " +
               browser().buttons[kDeleteCommand]->getButtonText();
    }
};

TEST_F (BrowserNavigation, SelectingARowOpensAFolderOrLoadsAPreset)
{
    HostListener host;
    processor.addListener (&host);
    EXPECT_EQ (buttonTexts(), "Export Folder As Zip, Delete Folder");
    select (0, "A");
    select (1, "B");
    EXPECT_EQ (view(), "*A|D / *B|Three / One|Two");
    EXPECT_EQ (host.changes, 0);
    select (2, "Two");
    EXPECT_EQ (processor.presetName, "Two");
    EXPECT_EQ (delay(), 22.0f);
    EXPECT_EQ (processor.currentProgram, 1);
    EXPECT_EQ (browser().selectedPath, lib ("A/B/two.zbpreset").getFullPathName());
    EXPECT_EQ (host.changes, 2);
    EXPECT_TRUE (host.last.programChanged && host.last.latencyChanged &&
                 host.last.parameterInfoChanged);
    EXPECT_EQ (buttonTexts(), "Export Single Preset, Delete Preset");

    select (1, "Three");
    EXPECT_EQ (view(), "*A|D / B|*Three");
    select (0, "D");
    EXPECT_EQ (view(), "A|*D / Four");
    EXPECT_EQ (buttonTexts(), "Export Folder As Zip, Delete Folder");
    EXPECT_EQ (processor.presetName, "Three");
    processor.removeListener (&host);
}

TEST_F (BrowserNavigation, WalksToTheCurrentPresetWithoutLoadingIt)
{
    const float before = delay();
    processor.presetName = "kept";

    for (const int program : { -1, 4, 99 })
    {
        processor.currentProgram = program;
        browser().navigateToCurrentPreset();
        EXPECT_EQ (view(), "A|D");
    }

    processor.currentProgram = 1;
    browser().navigateToCurrentPreset();
    EXPECT_EQ (view(), "*A|D / *B|Three / One|*Two");
    EXPECT_EQ (processor.presetName, "kept");
    EXPECT_EQ (delay(), before);

    // From any other view, and from itself.
    for (int i = 0; i < 2; ++i)
    {
        processor.currentProgram = 3;
        browser().navigateToCurrentPreset();
        EXPECT_EQ (view(), "A|*D / *Four");
    }

    ASSERT_TRUE (lib ("A/B/one.zbpreset").deleteFile());
    ASSERT_TRUE (lib ("A/B/one.zbpreset").createDirectory());
    processor.currentProgram = 0;
    browser().navigateToCurrentPreset();
    EXPECT_EQ (view(), "A|*D / *Four");
}

TEST_F (BrowserNavigation, ReopensTheFoldersThatAreStillThere)
{
    select (0, "A");
    select (1, "B");
    select (2, "One");
    EXPECT_EQ (browser().getCurrentPath(), juce::StringArray ({ "A", "B" }));

    const auto reopened = [this] (const juce::StringArray& path)
    {
        browser().rebuildAndReopen (path);
        return view();
    };
    EXPECT_EQ (reopened ({ "A", "B" }), "*A|D / *B|Three / One|Two");

    // A name that is not found is passed over, and the next one looked for in the same node.
    EXPECT_EQ (reopened ({ "A", "gone", "B" }), "*A|D / B|Three");
    EXPECT_EQ (reopened ({ "gone" }), "A|D");
    EXPECT_EQ (reopened ({ "A", "Three" }), "*A|D / B|Three");  // files are no folders

    browser().toggleFavorite (lib ("D/four.zbpreset").getFullPathName());
    EXPECT_EQ (reopened ({ "Favorites" }), "*Favorites|A|D / Four");
    EXPECT_EQ (browser().getCurrentPath(), juce::StringArray ({ "Favorites" }));
    browser().toggleFavorite (lib ("D/four.zbpreset").getFullPathName());
    EXPECT_EQ (reopened ({ "Favorites" }), "A|D");
}
