// SPDX-License-Identifier: AGPL-3.0-or-later
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
        putPreset ("zero.zbpreset", "Zero", 5.0f);
        putPreset ("../desk/found.zbpreset", "Found", 11.0f);
    }

    ~BrowserWindowChoosers() override { setenv ("PATH", path.c_str(), 1); }

    /** Presses a command and chooses a file in the chooser that it opens, after something else. */
    void command (
        BrowserCommand command, const juce::File& file, const std::function<void()>& first = [] {})
    {
        juce::Timer::callAfterDelay (
            200,
            [file, first]
            {
                auto* const dialog = dynamic_cast<juce::FileChooserDialogBox*> (
                    juce::ModalComponentManager::getInstance()->getModalComponent (0));
                ASSERT_NE (dialog, nullptr);
                auto* const chooser = chooserIn (*dialog);
                ASSERT_NE (chooser, nullptr);
                first();
                chooser->setRoot (file.getParentDirectory());
                chooser->setFileName (file.getFileName());
                dialog->exitModalState (1);
            });
        browser().buttonClicked (browser().buttons[static_cast<std::size_t> (command)].get());
    }

    static juce::FileBrowserComponent* chooserIn (juce::Component& top)
    {
        if (auto* const found = dynamic_cast<juce::FileBrowserComponent*> (&top))
            return found;

        for (auto* const child : top.getChildren())
            if (auto* const found = chooserIn (*child))
                return found;

        return nullptr;
    }

    const std::string path = std::getenv ("PATH");
};

TEST_F (BrowserWindowChoosers, TakeAndGiveWhatIsChosenAndMayOutliveTheBrowser)
{
    show();
    command (kImportCommand, homeFile ("desk/found.zbpreset"));
    EXPECT_EQ (view(), "found|Zero");
    click (onRow (0, "Zero"));
    command (kExportCommand, homeFile ("desk"));
    EXPECT_EQ (bytesOf (homeFile ("desk/zero.zbpreset")), bytesOf (lib ("zero.zbpreset")));

    for (const auto what : { kImportCommand, kExportCommand })
    {
        show();
        command (what, homeFile ("desk"), [this] { manager.reset(); });
        EXPECT_EQ (manager, nullptr);
    }
}
