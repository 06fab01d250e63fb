// SPDX-License-Identifier: AGPL-3.0-or-later
#include "first_run_fixture.h"
#include "support/small_disk.h"

#include <cstdlib>
#include <sys/wait.h>

// The first start on a disk that is really full: every kind of call may fail there, not only a write.

class FullDisk : public FirstRun
{
protected:
    static constexpr std::size_t kKilobytes = 4096;  ///< the disk: four times as much as is needed,
    static constexpr int kEntries = 200;             ///< and twice as many files and folders

    /** What is left of a disk when it is about to be full. */
    struct Room
    {
        std::size_t kilobytes;
        int entries;
    };

    void SetUp() override
    {
        if (const auto reason = whyNoSmallDisk(); ! reason.empty())
            GTEST_SKIP() << reason;

        ASSERT_TRUE (homeFile ("disk").createDirectory());
    }

    /** Runs the program that makes an instance, or installs an archive, with a home on a disk that has so much
        room left. What is there at the end comes into this test's home. With again, it is run once more
        before that, when there is room. */
    int start (const Room& room, const std::string& argument, bool again = false) const
    {
        homeFile ("Music").deleteRecursively();
        const auto disk = homeFile ("disk").getFullPathName().toStdString();
        const auto options =
            "size=" + std::to_string (kKilobytes) + "k,nr_inodes=" + std::to_string (kEntries);

        // The disk's root and two of the fillers are entries, too.
        const auto fill = "export HOME=\"" + disk + "\"; cd \"$HOME\"; head -c " +
                          std::to_string (kKilobytes - room.kilobytes) +
                          "k /dev/zero >fill; mkdir fillers; for i in $(seq " +
                          std::to_string (kEntries - 3 - room.entries) +
                          "); do : >fillers/$i; done";
        const auto clear = std::string ("rm -r fill fillers; ") +
                           (again ? "\"$@\"; code=$?; " : "") + "cp -r . ..";
        const auto command = onSmallDisk (disk, options, fill, clear) + " " VELKOR_FIRST_START " " +
                             argument + " >" +
                             homeFile ("out.txt").getFullPathName().toStdString() + " 2>&1";
        const int status = std::system (command.c_str());
        return WIFEXITED (status) ? WEXITSTATUS (status) : -1;
    }

    /** What the program said. */
    std::string said() const { return bytesOf (homeFile ("out.txt")); }

    /** What the disk needs for the files of the made-up archive: whole pages. */
    static std::size_t archiveKilobytes()
    {
        const auto pages = [] (std::size_t bytes) { return (bytes + 4095) / 4096; };
        std::size_t sum = pages (kDefault.size());

        for (int n = 0; n < kFactoryFiles; ++n)
            sum += pages (content (n).size());

        return 4 * sum;
    }
};

TEST_F (FullDisk, LeavesNoUserAndWithRoomTheNextStartCompletesIt)
{
    const auto archive = archiveFile().getFullPathName().toStdString();
    const auto whole = archiveKilobytes();

    // Full at once, half-way, in the middle of "User/Default.zbpreset"; and out of entries before and after the
    // first folders are there.
    for (const auto& room : { Room { 0, 100 }, Room { whole / 2, 100 }, Room { whole - 4, 100 },
                              Room { whole, 0 }, Room { whole, 3 }, Room { whole, 30 } })
    {
        SCOPED_TRACE (std::to_string (room.kilobytes) + "k, " + std::to_string (room.entries));
        EXPECT_EQ (start (room, archive), 0);
        EXPECT_EQ (said(), "");
        EXPECT_FALSE (presets ("User").exists());
        expectNothingBeside();

        for (const auto& file : presets().findChildFiles (juce::File::findFiles, true))
            EXPECT_EQ (bytesOf (file), content (file.getFileName().getIntValue()));

        EXPECT_EQ (start (room, archive, true), 0);
        expectComplete();
        expectNothingBeside();
    }

    // To the page: this is all the room that it takes.
    EXPECT_EQ (start ({ whole, 100 }, archive), 0);
    expectComplete();
}

TEST_F (FullDisk, AnInstanceComesUpWithoutPresetsAndLeavesNoHalfFile)
{
    EXPECT_EQ (start ({ 100, 100 }, {}), 0);
    EXPECT_EQ (said(), "- Init -\n");
    EXPECT_FALSE (presets ("User").exists());
    expectNothingBeside();

    // Room comes back when the presets are given up, so the settings may be there; then they are whole.
    const auto settings = bytesOf (globals());
    EXPECT_TRUE (! globals().exists() || settings.ends_with ("glowRenderer=\"1\"/>\r\n"))
        << settings;

    EXPECT_EQ (start ({ 100, 100 }, {}, true), 0);
    EXPECT_EQ (said(), "- Init -\nDefault\n");
    EXPECT_TRUE (presets ("User/Default.zbpreset").existsAsFile());
}
