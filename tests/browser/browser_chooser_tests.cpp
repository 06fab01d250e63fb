// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/archive_bench.h"
#include "browser/browser_window_fixture.h"

#include <cstdlib>
#include <functional>

/** Import and export through the framework's own file chooser, which stands in where the desktop has none. */
class BrowserWindowChoosers : public BrowserWindow
{
protected:
    BrowserWindowChoosers()
    {
        setenv ("PATH", "", 1);  // or a desktop's chooser would be found
        putPreset ("A/one.zbpreset", "One", 11.0f);
        putPreset ("zero.zbpreset", "Zero", 5.0f);
        homeFile ("desk").createDirectory();
    }

    ~BrowserWindowChoosers() override { setenv ("PATH", path.c_str(), 1); }

    static juce::FileBrowserComponent* chooserIn (juce::Component& top)
    {
        if (auto* const found = dynamic_cast<juce::FileBrowserComponent*> (&top))
            return found;

        for (auto* const child : top.getChildren())
            if (auto* const found = chooserIn (*child))
                return found;

        return nullptr;
    }

    /** Presses a command, which opens a chooser, and acts on that once it is there: act gives what it returns. */
    void command (BrowserCommand command,
                  const std::function<int (juce::FileBrowserComponent&)>& act)
    {
        title.clear();
        juce::Timer::callAfterDelay (
            200,
            [this, act]
            {
                auto* const dialog =
                    juce::ModalComponentManager::getInstance()->getModalComponent (0);
                ASSERT_NE (dialog, nullptr);
                auto* const chooser = chooserIn (*dialog);
                ASSERT_NE (chooser, nullptr);
                title = dialog->getName();
                dialog->exitModalState (act (*chooser));
            });
        browser().buttonClicked (browser().buttons[static_cast<std::size_t> (command)].get());
    }

    static std::function<int (juce::FileBrowserComponent&)> choose (const juce::File& file)
    {
        return [file] (juce::FileBrowserComponent& chooser)
        {
            chooser.setRoot (file.getParentDirectory());
            chooser.setFileName (file.getFileName());
            return 1;
        };
    }

    static int giveUp (juce::FileBrowserComponent&) { return 0; }

    const std::string path = std::getenv ("PATH");
    juce::String title;
};

TEST_F (BrowserWindowChoosers, ImportTakesTheFileThatIsChosen)
{
    show();
    const auto archive = makeArchive ({ { "new.zbpreset", "x" } });
    putFile (homeFile ("desk/Pack.zip"), { archive.begin(), archive.getSize() });
    click (onRow (0, "A"));
    command (kImportCommand, giveUp);
    EXPECT_EQ (title, "Import Preset Or Zip...");
    EXPECT_EQ (view(), "*A|Zero / One");
    command (kImportCommand, choose (homeFile ("desk/Pack.zip")));
    EXPECT_EQ (view(), "*A|Zero / One|Pack");
}

TEST_F (BrowserWindowChoosers, ExportGoesToTheFolderThatIsChosen)
{
    show();
    const auto desk = homeFile ("desk");
    const auto filesOnDesk = [&] { return desk.getNumberOfChildFiles (juce::File::findFiles); };
    browser().selectedPath.clear();
    command (kExportCommand, choose (desk));  // nothing is selected: there is nothing to copy
    EXPECT_EQ (title, "Export to...");
    click (onRow (0, "Zero"));
    command (kExportCommand, giveUp);
    EXPECT_EQ (filesOnDesk(), 0);
    command (kExportCommand, choose (desk));
    EXPECT_EQ (bytesOf (homeFile ("desk/zero.zbpreset")), bytesOf (lib ("zero.zbpreset")));

    click (onRow (0, "A"));
    command (kExportCommand, choose (desk));
    EXPECT_NE (juce::ZipFile (homeFile ("desk/A.zip")).getEntry ("one.zbpreset"), nullptr);
    EXPECT_EQ (filesOnDesk(), 2);
    juce::File::getSpecialLocation (juce::File::tempDirectory).getChildFile ("A.zip").deleteFile();
}

TEST_F (BrowserWindowChoosers, MayOutliveTheBrowser)
{
    for (const auto what : { kImportCommand, kExportCommand })
    {
        show();
        click (onRow (0, "Zero"));
        command (what,
                 [this] (juce::FileBrowserComponent& chooser)
                 {
                     manager.reset();
                     return choose (homeFile ("desk")) (chooser);
                 });
        EXPECT_EQ (manager, nullptr);
    }

    EXPECT_EQ (homeFile ("desk").getNumberOfChildFiles (juce::File::findFiles), 0);
}
