// SPDX-License-Identifier: AGPL-3.0-or-later
#include "render_run.h"
#include "support/small_disk.h"

#include <algorithm>

// A disk that is really full, to the page.

class RenderFullDisk : public RenderTest
{
protected:
    static constexpr juce::int64 kPage = 4096;  ///< what tmpfs hands out

    void SetUp() override
    {
        if (const auto reason = whyNoSmallDisk(); ! reason.empty())
            GTEST_SKIP() << reason;

        ASSERT_TRUE (file ("disk").createDirectory().wasOk());
    }

    static juce::int64 pagesOf (const juce::File& file)
    {
        return (file.getSize() + kPage - 1) / kPage;
    }

    /** Runs the program with a disk of so many pages at "disk" and leaves a copy of it, as it is then, in
        "seen". before is a script to run before the program, in its shell. */
    Outcome runOnDisk (juce::int64 pages, const Words& arguments,
                       const std::string& before = "true") const
    {
        file ("seen").deleteRecursively();
        return run (arguments, onSmallDisk ("disk", "size=" + std::to_string (pages * kPage),
                                            before, "cp -a disk seen"));
    }

    void expectRefusal (const Outcome& outcome, const std::string& culprit) const
    {
        EXPECT_EQ (outcome.exitCode, 1);
        EXPECT_EQ (outcome.out, "");
        EXPECT_TRUE (outcome.err.starts_with ("velkor-render: " + culprit)) << outcome.err;
        EXPECT_EQ (std::count (outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
        EXPECT_EQ (temporaries.getNumberOfChildFiles (juce::File::findFilesAndDirectories), 0);
    }

    /** What stood on the disk at the end, hidden files too. */
    std::string seen() const
    {
        juce::StringArray names;

        for (const auto& entry :
             file ("seen").findChildFiles (juce::File::findFilesAndDirectories, true))
            names.add (entry.getRelativePathFrom (file ("seen")));

        names.sort (false);
        return names.joinIntoString (",").toStdString();
    }
};

TEST_F (RenderFullDisk, ARenderIsThereWholeOrNotAtAll)
{
    write ("in.wav", sine (440.0, 44100.0, 20000, 0.5f));

    for (const std::string name : { "o.wav", "o.aiff", "o.flac" })
    {
        SCOPED_TRACE (name);
        const auto place = "disk/" + name;
        render ({ "--tail", "0", "in.wav", name });
        const auto pages = pagesOf (file (name));
        ASSERT_GT (pages, 2);

        for (const auto room : { juce::int64 { 1 }, pages / 2, pages - 1 })
        {
            expectRefusal (runOnDisk (room, { "--tail", "0", "in.wav", place }), place);
            EXPECT_EQ (seen(), "");
        }

        const Words saving = { "--tail", "0", "in.wav", place };
        expectRefusal (runOnDisk (pages, saving, "printf precious >" + place), place);
        EXPECT_EQ (seen(), name);
        EXPECT_EQ (file ("seen/" + name).loadFileAsString(), "precious");

        EXPECT_EQ (runOnDisk (pages + 1, saving, "printf precious >" + place).exitCode, 0);
        EXPECT_EQ (seen(), name);
        EXPECT_TRUE (file ("seen/" + name).hasIdenticalContentTo (file (name)));
    }
}

TEST_F (RenderFullDisk, SavingOverAPresetKeepsTheOldOneWhole)
{
    // Parameters of a later version are kept, and make the document long enough to be cut.
    juce::String more;

    for (int i = 0; i < 200; ++i)
        more << "<PARAM id=\"More " << i << "\" value=\"0.5\"/>";

    file ("long.zbpreset")
        .replaceWithText ("<VelkorSettings><Parameters>" + more + "</Parameters></VelkorSettings>");
    render ({ "--preset", "1", "--save-preset", "p.zbpreset" });
    render ({ "--preset", "long.zbpreset", "--save-preset", "new/p.zbpreset" });
    const auto old = pagesOf (file ("p.zbpreset"));
    const auto fresh = pagesOf (file ("new/p.zbpreset"));
    ASSERT_GT (fresh, 2);
    const Words saving = { "--preset", "long.zbpreset", "--save-preset", "disk/p.zbpreset" };

    for (const auto room : { juce::int64 { 0 }, fresh - 1 })
    {
        expectRefusal (runOnDisk (old + room, saving, "cp p.zbpreset disk"), "disk/p.zbpreset");
        EXPECT_EQ (seen(), "p.zbpreset");
        EXPECT_TRUE (file ("seen/p.zbpreset").hasIdenticalContentTo (file ("p.zbpreset")));
    }

    EXPECT_EQ (runOnDisk (old + fresh, saving, "cp p.zbpreset disk").exitCode, 0);
    EXPECT_EQ (seen(), "p.zbpreset");
    EXPECT_TRUE (file ("seen/p.zbpreset").hasIdenticalContentTo (file ("new/p.zbpreset")));
}

TEST_F (RenderFullDisk, NoRoomForTemporaryFilesChangesNoSound)
{
    render ({ "--demo", "--tail", "0", "want.wav" });
    const auto full = runOnDisk (1, { "--demo", "--tail", "0", "o.wav" },
                                 "export TMPDIR=\"$PWD/disk\"; head -c 4096 /dev/zero >disk/fill");
    EXPECT_EQ (full.exitCode, 0) << full.err;
    EXPECT_EQ (seen(), "fill");
    EXPECT_TRUE (file ("o.wav").hasIdenticalContentTo (file ("want.wav")));
}
