// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/browser_fixture.h"
#include "browser/preset_words.h"
#include "support/small_disk.h"

#include <csignal>
#include <cstdlib>
#include <set>
#include <sys/resource.h>
#include <unistd.h>

/** Files can't grow beyond a hundred bytes while this lives. */
class FileSizeLimit
{
public:
    FileSizeLimit()
    {
        signal (SIGXFSZ, SIG_IGN);
        getrlimit (RLIMIT_FSIZE, &before);
        const rlimit small { 100, before.rlim_max };
        setrlimit (RLIMIT_FSIZE, &small);
    }

    ~FileSizeLimit() { setrlimit (RLIMIT_FSIZE, &before); }

    FileSizeLimit (const FileSizeLimit&) = delete;
    FileSizeLimit& operator= (const FileSizeLimit&) = delete;

private:
    rlimit before {};
};

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
};

TEST_F (BrowserOverlays, SaveMakesFoldersAndSelectsThePreset)
{
    select (0, "User");
    processor.presetName = "Sketch";
    command (kSaveCommand);
    ASSERT_NE (browser().saveWindow, nullptr);
    EXPECT_EQ (browser().saveWindow->nameEditor.getText(), "Sketch");
    EXPECT_EQ (browser().saveWindow->getBounds(), browser().getLocalBounds());
    browser().saveWindow->nameEditor.setText ("A/B/C");
    browser().saveWindow->textEditorReturnKeyPressed (browser().saveWindow->nameEditor);
    EXPECT_EQ (browser().saveWindow, nullptr);
    EXPECT_FALSE (browser().isVisible());
    EXPECT_TRUE (lib ("User/A/B/C.zbpreset").loadFileAsString().contains ("PresetName=\"C\""));
    EXPECT_EQ (view(), "*User / *A|One|Two / *B / *C");
    EXPECT_EQ (processor.presetName, "C");
    EXPECT_EQ (browser().presetFiles[processor.currentProgram], lib ("User/A/B/C.zbpreset"));
}

TEST_F (BrowserOverlays, SaveTakesAnyNameTheSystemTakes)
{
    const juce::String names[] = {
        "v1.2",
        "'single' \"double\" <&>",
        " leading",
        ".",
        "..",
        "a..b",
        juce::String::fromUTF8 ("\xd0\x97\xd0\xb2\xd1\x83\xd0\xba \xe6\xb3\xa2 \xf0\x9f\x8c\x8a"),
        juce::String::repeatedString ("n", 246)
    };

    for (const auto& name : names)
    {
        select (0, "User");
        save (name);
        EXPECT_EQ (browser().saveWindow, nullptr) << name;
        const auto file = lib ("User").getFullPathName() + "/" + name + ".zbpreset";
        EXPECT_TRUE (juce::File (file).existsAsFile()) << name;
        EXPECT_EQ (processor.presetName, juce::File (file).getFileNameWithoutExtension());
        open();
        select (0, "User");

        if (! name.startsWith ("."))
        {
            EXPECT_TRUE (("|" + rows (1) + "|").contains ("|" + name + "|")) << rows (1);
        }
    }

    // An empty name is a hidden file, which no row shows.
    save ("");
    EXPECT_TRUE (lib ("User/.zbpreset").existsAsFile());
}

TEST_F (BrowserOverlays, SaveGoesToTheFolderOfWhatIsSelected)
{
    const auto target = [this]
    {
        command (kSaveCommand);
        return browser().saveWindow->folderPath;
    };
    EXPECT_EQ (target(), lib().getFullPathName());
    select (0, "User");
    EXPECT_EQ (target(), lib ("User").getFullPathName());
    select (1, "Two");
    EXPECT_EQ (target(), lib ("User").getFullPathName());
    ASSERT_TRUE (lib ("User/two.zbpreset").deleteFile());
    EXPECT_EQ (target(), lib ("User").getFullPathName());
    browser().toggleFavorite (lib ("User/one.zbpreset").getFullPathName());
    browser().rebuildAndReopen ({ "Favorites" });
    EXPECT_EQ (target(), lib().getFullPathName());
}

TEST_F (BrowserOverlays, SaveOverAFileReplacesItAndAFailedOneKeepsIt)
{
    select (0, "User");
    select (1, "Two");
    select (1, "One");
    save ("two");
    EXPECT_EQ (processor.presetName, "two");
    EXPECT_EQ (
        valueTextIn (lib ("User/two.zbpreset").loadFileAsString(), "Delay 1 Time").getFloatValue(),
        11.0f);

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

    // And a disk that takes no more.
    const auto whole = bytesOf (lib ("User/two.zbpreset"));

    {
        const FileSizeLimit full;
        browser().saveWindow->nameEditor.setText ("two");
        press (*browser().saveWindow, "COMMIT");
        ASSERT_NE (browser().saveWindow, nullptr);
    }

    EXPECT_EQ (bytesOf (lib ("User/two.zbpreset")), whole);
    EXPECT_EQ (bytesOf (lib ("User/file")), "kept");
    EXPECT_EQ (lib ("User").getNumberOfChildFiles (juce::File::findFilesAndDirectories),
               4);  // and nothing half-written

    // The box still works.
    browser().saveWindow->nameEditor.setText ("third");
    press (*browser().saveWindow, "COMMIT");
    EXPECT_TRUE (lib ("User/third.zbpreset").existsAsFile());
}

TEST_F (BrowserOverlays, SaveIntoAReadOnlyFolderKeepsTheBoxAndTheFile)
{
    // Permissions don't stop root, which tests may run as: the folder is on a disk that takes no more writes. That
    // takes another process of this program, in a namespace of its own, which finds the disk by this name.
    static constexpr auto kDisk = "VELKOR_READ_ONLY_DISK";

    if (const char* const disk = std::getenv (kDisk))
    {
        folder = juce::File (disk);
        const auto whole = bytesOf (lib ("User/one.zbpreset"));
        ASSERT_FALSE (whole.empty());
        open();
        browser().setVisible (true);
        select (0, "User");

        for (const auto* name : { "one", "new", "folder/new" })
        {
            save (name);
            ASSERT_NE (browser().saveWindow, nullptr) << name;
            EXPECT_TRUE (browser().isVisible());
        }

        EXPECT_EQ (bytesOf (lib ("User/one.zbpreset")), whole);
        EXPECT_EQ (lib ("User").getNumberOfChildFiles (juce::File::findFilesAndDirectories), 1);
        return;
    }

    if (const auto reason = whyNoSmallDisk(); ! reason.empty())
        GTEST_SKIP() << reason;

    const auto disk = homeFile ("disk").getFullPathName().toStdString();
    ASSERT_TRUE (homeFile ("disk").createDirectory());
    const auto fill = "mkdir \"" + disk + "/User\"; cp \"" +
                      lib ("User/one.zbpreset").getFullPathName().toStdString() + "\" \"" + disk +
                      "/User\"; mount -o remount,ro \"" + disk + "\"; export " + kDisk + "=\"" +
                      disk + "\"";
    const auto program =
        juce::File ("/proc/self/exe").getLinkedTarget().getFullPathName().toStdString();
    const auto* const self = testing::UnitTest::GetInstance()->current_test_info();
    const auto command = onSmallDisk (disk, "size=64k", fill, "") + " \"" + program +
                         "\" --gtest_filter=" + self->test_suite_name() + "." + self->name() +
                         " >\"" + homeFile ("out.txt").getFullPathName().toStdString() + "\" 2>&1";
    EXPECT_EQ (std::system (command.c_str()), 0) << bytesOf (homeFile ("out.txt"));
    EXPECT_TRUE (bytesOf (homeFile ("out.txt")).find ("[  PASSED  ] 1 test.") != std::string::npos);
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

TEST_F (BrowserOverlays, RandomNamesAreTwoCapitalisedWordsOfTheLists)
{
    command (kSaveCommand);
    auto& box = *browser().saveWindow;
    std::set<juce::String> names;

    for (int i = 0; i < 50; ++i)
    {
        press (box, "RAND");
        const auto words = juce::StringArray::fromTokens (box.nameEditor.getText(), " ", {});
        ASSERT_EQ (words.size(), 2);
        EXPECT_TRUE (juce::CharacterFunctions::isUpperCase (words[0][0]) &&
                     juce::CharacterFunctions::isUpperCase (words[1][0]));
        EXPECT_TRUE (presetAdjectives.contains (words[0].toLowerCase())) << words[0];
        EXPECT_TRUE (presetNouns.contains (words[1].toLowerCase())) << words[1];
        names.insert (box.nameEditor.getText());
    }

    EXPECT_GT (names.size(), 45u);
}

TEST_F (BrowserOverlays, WordListsHaveAThousandWordsEachAndNoneTwice)
{
    for (const auto* list : { &presetAdjectives, &presetNouns })
    {
        EXPECT_EQ (list->size(), 1000);
        EXPECT_EQ (std::set<juce::String> (list->begin(), list->end()).size(), 1000u);
        std::set<juce::juce_wchar> initials;

        for (const auto& word : *list)
        {
            EXPECT_TRUE (word.isNotEmpty() && word.containsOnly ("abcdefghijklmnopqrstuvwxyz"))
                << word;
            initials.insert (word[0]);
        }

        EXPECT_EQ (initials.size(), 26u);
    }

    EXPECT_TRUE (presetAdjectives.joinIntoString (" ").startsWith (
        "electric peppery outstanding beautiful curly quixotic "));
    EXPECT_TRUE (presetNouns.joinIntoString (" ").startsWith (
        "time public flight narrative recording consequence "));
}

TEST_F (BrowserOverlays, DeleteTakesAPresetOrAFolderForGood)
{
    putPreset ("User/Sub/deep.zbpreset", "Deep");
    putPreset ("User/Sub/.hidden", "Hidden");
    browser().makeNewTree();
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
    command (kDeleteCommand);
    press (*browser().deleteWindow, "Do it!");
    EXPECT_EQ (processor.programList.size(), 2);
    EXPECT_FALSE (lib ("User/two.zbpreset").exists());
    EXPECT_EQ (browser().deleteWindow, nullptr);
    EXPECT_EQ (view(), "*User / One|Sub");
    EXPECT_EQ (processor.currentProgram, 0);
    EXPECT_EQ (host.changes, 1);
    processor.removeListener (&host);

    select (1, "Sub");
    command (kDeleteCommand);
    EXPECT_EQ (browser().deleteWindow->path, lib ("User/Sub").getFullPathName());
    press (*browser().deleteWindow, "Do it!");
    EXPECT_FALSE (lib ("User/Sub").exists());
    EXPECT_EQ (view(), "*User / One");

    browser().toggleFavorite (lib ("User/one.zbpreset").getFullPathName());
    browser().rebuildAndReopen ({ "Favorites" });
    command (kDeleteCommand);
    EXPECT_EQ (browser().deleteWindow, nullptr);  // that row has no path
}

TEST_F (BrowserOverlays, DeleteTakesAFolderWithNamesThatNoRowShows)
{
    putStrangeNames ("User");
    putFile (homeFile ("elsewhere/kept"), "kept");
    ASSERT_EQ (symlink (homeFile ("elsewhere").getFullPathName().toRawUTF8(),
                        lib ("User/link").getFullPathName().toRawUTF8()),
               0);
    browser().makeNewTree();
    select (0, "User");
    command (kDeleteCommand);
    press (*browser().deleteWindow, "Do it!");
    EXPECT_EQ (browser().deleteWindow, nullptr);
    EXPECT_FALSE (lib ("User").exists());
    EXPECT_EQ (bytesOf (homeFile ("elsewhere/kept")), "kept");
}

TEST_F (BrowserOverlays, GoWithTheBrowser)
{
    select (0, "User");
    command (kSaveCommand);
    command (kDeleteCommand);
    ASSERT_NE (browser().saveWindow, nullptr);
    ASSERT_NE (browser().deleteWindow, nullptr);
    const juce::Component::SafePointer<juce::Component> overlays[] = {
        browser().saveWindow.get(), browser().deleteWindow.get()
    };
    browser().saveWindow->nameEditor.setText ("Posted");  // tells its listeners later
    manager.reset();
    pump();

    for (const auto& overlay : overlays)
        EXPECT_EQ (overlay.getComponent(), nullptr);

    EXPECT_EQ (lib ("User").getNumberOfChildFiles (juce::File::findFiles), 2);
}
