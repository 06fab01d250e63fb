// SPDX-License-Identifier: AGPL-3.0-or-later
#include "render_run.h"

#include <algorithm>
#include <cstdlib>

// What velkor-render refuses, in which words, and that nothing is left behind.

namespace
{
/** Arguments that must not work. */
struct Refusal
{
    Words arguments;
    int exitCode;
    const char* culprit;  ///< what the message must name
};
}  // namespace

class RenderRefusal : public RenderTest
{
protected:
    RenderRefusal()
    {
        write ("in.wav", impulses (3000, 10, 0.5f, 0.5f));
        file ("text.wav").replaceWithText ("not a sound");
        file ("text.mid").replaceWithText ("MThd or not");
        file ("other.xml").replaceWithText ("<OtherSettings/>");
    }

    void expectRefusal (const Refusal& refusal, const std::string& setUp = {}) const
    {
        SCOPED_TRACE (testing::PrintToString (refusal.arguments));
        const auto before = content();
        const auto result = run (refusal.arguments, setUp);
        EXPECT_EQ (result.exitCode, refusal.exitCode);
        EXPECT_EQ (result.out, "");
        EXPECT_TRUE (result.err.starts_with ("velkor-render: ")) << result.err;
        EXPECT_NE (result.err.find (refusal.culprit), std::string::npos) << result.err;
        EXPECT_EQ (std::count (result.err.begin(), result.err.end(), '\n'), 1) << result.err;
        EXPECT_EQ (content(), before);
        EXPECT_EQ (temporaries.getNumberOfChildFiles (juce::File::findFilesAndDirectories), 0);
    }
};

TEST_F (RenderRefusal, FilesAndWordsThatCannotBeUsedOrMeant)
{
    write ("other/in.wav", impulses (10, 0, 0.5f, 0.5f));
    ASSERT_TRUE (file ("in.wav").createSymbolicLink (file ("link.wav"), false));
    ASSERT_TRUE (file ("there").createDirectory().wasOk());
    write ("six.wav", juce::AudioBuffer<float> (6, 100));
    juce::MemoryBlock whole;
    file ("in.wav").loadFileAsData (whole);
    file ("short.wav").replaceWithData (whole.getData(), whole.getSize() / 2);

    for (const auto& refusal : {
             Refusal { { "new\nline.wav", "o.wav" }, 1, "new line.wav" },
             Refusal { { "text.wav", "o.wav" }, 1, "text.wav" },
             Refusal { { "short.wav", "o.wav" }, 1, "short.wav" },
             Refusal { { "six.wav", "o.wav" }, 1, "six.wav" },
             Refusal { { "--midi", "text.mid", "in.wav", "o.wav" }, 1, "text.mid" },
             Refusal { { "in.wav", "text.wav/o.wav" }, 1, "text.wav/o.wav" },
             Refusal { { "--save-preset", "in.wav", "o.wav" }, 2, "in.wav" },
             Refusal { { "--save-preset", "p.zbpreset", "gone.wav", "o.wav" }, 1, "gone.wav" },
             Refusal { { "in.wav", "text.wav", "folder/" }, 1, "text.wav" },
             Refusal { { "in.wav", "o.mp3" }, 2, "o.mp3" },
             Refusal { { "link.wav", "./in.wav" }, 2, "in.wav" },
             Refusal { { "in.wav", "other/in.wav", "there" }, 2, "there/in.wav" },
             Refusal { { "--bits", "32", "in.wav", "o.flac" }, 2, "o.flac" },
             Refusal { { "--nonsense", "in.wav", "o.wav" }, 2, "--nonsense" },
             Refusal { { "--set", "Dealy 1 Time=5", "in.wav", "o.wav" }, 2, "Dealy 1 Time" },
             Refusal { { "--set", "Delay 1 Time=1001", "in.wav", "o.wav" }, 2, "1001" },
             Refusal { { "--set", "Delay 1 Time=1/8D", "in.wav", "o.wav" }, 2, "Delay 1 Sync" },
             Refusal { { "--set", "Filter 1 Freq=nan", "in.wav", "o.wav" }, 2, "nan" },
             Refusal { { "--connect", "Delay 3 > Filter 1", "in.wav", "o.wav" }, 2, "Delay 3" },
         })
        expectRefusal (refusal);
}

TEST_F (RenderRefusal, PresetsThatCannotBeUsed)
{
    const juce::String document = "<VelkorSettings PresetName=\"x\"><Parameters/></VelkorSettings>";
    file ("cut.zbpreset").replaceWithText (document.dropLastCharacters (4));
    file ("entity.zbpreset")
        .replaceWithText ("<!DOCTYPE VelkorSettings [<!ENTITY a \"x&a;\">]>" +
                          document.replace ("\"x\"", "\"&a;\""));
    ASSERT_EQ (
        std::system (("mkfifo '" + file ("pipe.zbpreset").getFullPathName() + "'").toRawUTF8()), 0);

    for (const auto* preset : { "gone/11.zbpreset", "other.xml", "cut.zbpreset", "entity.zbpreset",
                                "pipe.zbpreset", "Tape Dely", "64", "11 - Basic Sync" })
        expectRefusal ({ { "--preset", preset, "in.wav", "o.wav" }, 1, preset });
}

TEST_F (RenderRefusal, AFullDiskLeavesNothingAndWhatWasThereStays)
{
    // A limit on file sizes fails a write as a full disk does. dash counts in 512 bytes, bash in 1024.
    const std::string limit = "trap '' XFSZ; ulimit -f 8;";

    for (const auto* name : { "o.wav", "o.aiff", "o.flac" })
        expectRefusal ({ { "--demo", name }, 1, name }, limit);

    file ("old.wav").replaceWithText ("precious");
    expectRefusal ({ { "--demo", "old.wav" }, 1, "old.wav" }, limit);
    EXPECT_EQ (file ("old.wav").loadFileAsString(), "precious");
    file ("old.zbpreset").replaceWithText ("precious");
    expectRefusal ({ { "--save-preset", "old.zbpreset" }, 1, "old.zbpreset" },
                   "trap '' XFSZ; ulimit -f 2;");
    EXPECT_EQ (file ("old.zbpreset").loadFileAsString(), "precious");

    // So little is missing, in pieces so small, that the stream still holds it when the header is written.
    const Words small = { "--tail", "0", "--bits", "16", "--block", "64", "in.wav" };
    render (small + Words { "fits.wav" });
    const auto size = std::to_string (file ("fits.wav").getSize());
    expectRefusal ({ small + Words { "o.wav" }, 1, "o.wav" },
                   "trap '' XFSZ; [ -n \"$BASH\" ] && unit=1024 || unit=512; ulimit -f $((" + size +
                       " / unit));");
}

TEST_F (RenderRefusal, AnInterruptedRenderClearsUp)
{
    const auto before = content();
    const auto result =
        run ({ "--demo", "--tail", "3600", "--block", "1", "o.wav" }, "timeout -s INT 1");
    EXPECT_NE (result.exitCode, 0);
    EXPECT_EQ (content(), before);
    EXPECT_EQ (temporaries.getNumberOfChildFiles (juce::File::findFilesAndDirectories), 0);
}
