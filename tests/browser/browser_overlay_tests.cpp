// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/browser_fixture.h"

#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

class BrowserOverlays : public BrowserTest
{
protected:
    BrowserOverlays()
    {
        putPreset ("User/one.zbpreset", "One", 11.0f);
        putPreset ("User/two.zbpreset", "Two", 22.0f);
        open();
        browser().setVisible (true);
    }

    void command (BrowserCommand command) const
    {
        browser().buttonClicked (browser().buttons[command].get());
    }

    /** Presses a button of an overlay by its name. */
    template <typename Overlay>
    static void press (Overlay& overlay, const juce::String& name)
    {
        for (auto* const child : overlay.getChildren())
            if (auto* const button = dynamic_cast<juce::Button*> (child))
                if (button->getName() == name)
                    return overlay.buttonClicked (button);

        FAIL() << name;
    }

    /** Opens the save box, types and saves. */
    void save (const juce::String& name) const
    {
        command (kSaveCommand);
        browser().saveWindow->nameEditor.setText (name);
        press (*browser().saveWindow, "COMMIT");
    }

    void confirmDelete() const
    {
        command (kDeleteCommand);
        press (*browser().deleteWindow, "Do it!");
    }
};

TEST_F (BrowserOverlays, SaveMakesFoldersAndSelectsThePreset)
{
    select (0, "User");
    processor.presetName = "Sketch";
    command (kSaveCommand);
    EXPECT_EQ (browser().saveWindow->nameEditor.getText(), "Sketch");
    save ("A/B/C");
    EXPECT_EQ (browser().saveWindow, nullptr);
    EXPECT_FALSE (browser().isVisible());
    EXPECT_TRUE (lib ("User/A/B/C.zbpreset").loadFileAsString().contains ("PresetName=\"C\""));
    EXPECT_EQ (view(), "*User / *A|One|Two / *B / *C");
    EXPECT_EQ (processor.presetName, "C");
    EXPECT_EQ (browser().presetFiles[processor.currentProgram], lib ("User/A/B/C.zbpreset"));
}

TEST_F (BrowserOverlays, SaveTakesAnyNameTheSystemTakes)
{
    select (0, "User");

    for (const auto& name : { juce::String ("v1.2"), juce::String ("'single' \"double\" <&>"),
                              juce::String (" leading"), juce::String (".."), juce::String(),
                              juce::String::fromUTF8 ("\xd0\x97 \xe6\xb3\xa2 \xf0\x9f\x8c\x8a"),
                              juce::String::repeatedString ("n", 246) })
    {
        save (name);
        EXPECT_EQ (browser().saveWindow, nullptr) << name;
        const juce::File file (lib ("User").getFullPathName() + "/" + name + ".zbpreset");
        EXPECT_TRUE (file.existsAsFile()) << name;
        EXPECT_EQ (processor.presetName, file.getFileNameWithoutExtension());
        open();
        select (0, "User");
        const bool hidden = name.isEmpty() || name.startsWith (".");
        EXPECT_EQ (("|" + rows (1) + "|").contains ("|" + name + "|"), ! hidden) << rows (1);
    }
}

TEST_F (BrowserOverlays, SaveGoesToTheFolderOfWhatIsSelected)
{
    const auto expectTarget = [this] (const juce::File& wanted)
    {
        command (kSaveCommand);
        EXPECT_EQ (browser().saveWindow->folderPath, wanted.getFullPathName());
    };
    expectTarget (lib());
    select (0, "User");
    expectTarget (lib ("User"));
    select (1, "Two");
    expectTarget (lib ("User"));
    browser().toggleFavorite (lib ("User/one.zbpreset").getFullPathName());
    browser().rebuildAndReopen ({ "Favorites" });
    expectTarget (lib());
    command (kDeleteCommand);
    EXPECT_EQ (browser().deleteWindow, nullptr);  // that row has no path
}

TEST_F (BrowserOverlays, SaveOverAFileReplacesItAndAFailedOneKeepsIt)
{
    select (0, "User");
    select (1, "One");
    save ("two");
    const auto saved = lib ("User/two.zbpreset").loadFileAsString();
    EXPECT_EQ (valueTextIn (saved, "Delay 1 Time").getFloatValue(), 11.0f);

    // A folder of that name stands in the way; a file stands where a folder is wanted; the name is too long.
    lib ("User/block.zbpreset").createDirectory();
    putFile (lib ("User/file"), "kept");
    browser().setVisible (true);

    for (const auto& name : { juce::String ("block"), juce::String ("file/new"),
                              juce::String::repeatedString ("n", 247) })
    {
        save (name);
        ASSERT_NE (browser().saveWindow, nullptr) << name;
        EXPECT_TRUE (browser().isVisible());
        EXPECT_EQ (browser().saveWindow->nameEditor.getText(), name);
    }

    // And a disk that takes no more: no file can grow beyond a hundred bytes.
    rlimit before {};
    getrlimit (RLIMIT_FSIZE, &before);
    const rlimit small { 100, before.rlim_max };
    signal (SIGXFSZ, SIG_IGN);
    setrlimit (RLIMIT_FSIZE, &small);
    save ("two");
    setrlimit (RLIMIT_FSIZE, &before);
    ASSERT_NE (browser().saveWindow, nullptr);
    EXPECT_EQ (lib ("User/two.zbpreset").loadFileAsString(), saved);
    EXPECT_EQ (bytesOf (lib ("User/file")), "kept");
    EXPECT_EQ (lib ("User").getNumberOfChildFiles (juce::File::findFilesAndDirectories),
               4);  // and nothing half-written
}

TEST_F (BrowserOverlays, CancelOfTheSaveBoxLeavesTheBrowserAndKeepsTheSound)
{
    browser().getStateAsText (browser().undoState);
    select (0, "User");
    select (1, "Two");
    command (kSaveCommand);
    press (*browser().saveWindow, "CANCEL");
    EXPECT_EQ (browser().saveWindow, nullptr);
    EXPECT_FALSE (browser().isVisible());
    EXPECT_EQ (delay(), 22.0f);
    EXPECT_EQ (processor.presetName, "Two");
}

TEST_F (BrowserOverlays, NoneIsThereAtTheNextOpening)
{
    select (0, "User");

    for (const auto way : { kCancelCommand, kCloseCommand, kCopyCommand, kPasteCommand })
    {
        browser().setVisible (true);
        command (kDeleteCommand);
        command (kSaveCommand);
        command (way);
        EXPECT_EQ (browser().deleteWindow, nullptr) << way;
        EXPECT_EQ (browser().saveWindow, nullptr) << way;
        EXPECT_EQ (browser().getNumChildComponents(), kNumCommands + 2) << way;
    }
}

TEST_F (BrowserOverlays, DeleteTakesAPresetOrAFolderForGood)
{
    command (kDeleteCommand);
    EXPECT_EQ (browser().deleteWindow, nullptr);  // nothing is selected

    select (0, "User");
    select (1, "Two");
    command (kDeleteCommand);
    press (*browser().deleteWindow, "Cancel");
    EXPECT_EQ (browser().deleteWindow, nullptr);
    EXPECT_TRUE (lib ("User/two.zbpreset").existsAsFile());

    HostListener host;
    processor.addListener (&host);
    processor.programFolder = folder;  // as a product does whose presets are the host's programs
    confirmDelete();
    processor.removeListener (&host);
    EXPECT_FALSE (lib ("User/two.zbpreset").exists());
    EXPECT_EQ (browser().deleteWindow, nullptr);
    EXPECT_EQ (view(), "*User / One");
    EXPECT_EQ (processor.currentProgram, 0);
    EXPECT_EQ (processor.programList.size(), 1);
    EXPECT_EQ (host.changes, 1);

    // A folder goes with what no row shows, but not with what its links lead to.
    putPreset ("User/Sub/.hidden", "Hidden");
    putStrangeNames ("User/Sub");
    putFile (homeFile ("elsewhere/kept"), "kept");
    ASSERT_EQ (symlink (homeFile ("elsewhere").getFullPathName().toRawUTF8(),
                        lib ("User/Sub/link").getFullPathName().toRawUTF8()),
               0);
    browser().rebuildAndReopen ({ "User" });
    select (1, "Sub");
    confirmDelete();
    EXPECT_FALSE (lib ("User/Sub").exists());
    EXPECT_EQ (view(), "*User / One");
    EXPECT_EQ (bytesOf (homeFile ("elsewhere/kept")), "kept");
}
