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

TEST_F (RenderRefusal, FilesThatCannotBeUsedOrMeant)
{
    write ("in.aiff", impulses (10, 0, 0.5f, 0.5f), 44100.0, 24);
    ASSERT_TRUE (file ("in.wav").createSymbolicLink (file ("link.wav"), false));
    ASSERT_TRUE (file ("there").createDirectory().wasOk());
    write ("six.wav", juce::AudioBuffer<float> (6, 100));
    juce::MemoryBlock whole;
    file ("in.wav").loadFileAsData (whole);
    file ("short.wav").replaceWithData (whole.getData(), whole.getSize() / 2);

    for (const auto& refusal : {
             Refusal { { "gone.wav", "o.wav" }, 1, "gone.wav" },
             Refusal { { "text.wav", "o.wav" }, 1, "text.wav" },
             Refusal { { "short.wav", "o.wav" }, 1, "short.wav" },
             Refusal { { "six.wav", "o.wav" }, 1, "six.wav" },
             Refusal { { "new\nline.wav", "o.wav" }, 1, "new line.wav" },
             Refusal { { "--midi", "text.mid", "in.wav", "o.wav" }, 1, "text.mid" },
             Refusal { { "in.wav", "text.wav/o.wav" }, 1, "text.wav/o.wav" },
             Refusal { { "--save-preset", "text.wav/p.zbpreset" }, 1, "text.wav/p.zbpreset" },
             Refusal { { "--save-preset", "in.wav", "o.wav" }, 2, "in.wav" },
             Refusal { { "--save-preset", "" }, 2, "--save-preset" },
             Refusal { { "--save-preset", "p.zbpreset", "in.wav" }, 2, "OUTPUT" },
             Refusal { { "--save-preset", "p.zbpreset", "gone.wav", "o.wav" }, 1, "gone.wav" },
             Refusal { { "in.wav", "text.wav", "folder/" }, 1, "text.wav" },
             Refusal { {}, 2, "INPUT" },
             Refusal { { "in.wav" }, 2, "OUTPUT" },
             Refusal { { "--demo", "in.wav", "o.wav" }, 2, "in.wav" },
             Refusal { { "in.wav", "o.mp3" }, 2, "o.mp3" },
             Refusal { { "link.wav", "./in.wav" }, 2, "in.wav" },
             Refusal { { "in.wav", "in.aiff", "o.wav" }, 2, "o.wav" },
             Refusal { { "in.wav", "in.aiff", "there" }, 2, "there/in.wav" },
             Refusal { { "--format", "flac", "in.wav", "o.wav" }, 2, "o.wav" },
             Refusal { { "--bits", "32", "in.wav", "o.flac" }, 2, "o.flac" },
             Refusal { { "--bits", "20", "in.wav", "o.wav" }, 2, "20" },
         })
        expectRefusal (refusal);
}

TEST_F (RenderRefusal, PresetsThatCannotBeUsed)
{
    const juce::String document = "<VelkorSettings PresetName=\"x\"><Parameters/></VelkorSettings>";
    file ("cut.zbpreset").replaceWithText (document.dropLastCharacters (4));
    file ("bare.zbpreset").replaceWithText ("<VelkorSettings PresetName=\"x\"/>");
    file ("entity.zbpreset")
        .replaceWithText ("<!DOCTYPE VelkorSettings [<!ENTITY a \"x&a;\">]>" +
                          document.replace ("\"x\"", "\"&a;\""));
    file ("folder.zbpreset").createDirectory();
    ASSERT_EQ (
        std::system (("mkfifo '" + file ("pipe.zbpreset").getFullPathName() + "'").toRawUTF8()), 0);

    for (const auto* preset :
         { "gone.zbpreset", "gone/11.zbpreset", "text.wav", "other.xml", "cut.zbpreset",
           "bare.zbpreset", "entity.zbpreset", "folder.zbpreset", "pipe.zbpreset", "Tape Dely",
           "64", "11 - Basic Sync", "Default" })
        expectRefusal ({ { "--preset", preset, "in.wav", "o.wav" }, 1, preset });

    expectRefusal (
        { { "--preset", "Tape Dely", "--save-preset", "o.zbpreset" }, 1, "--list-presets" });
}

TEST_F (RenderRefusal, WordsThatMeanNothing)
{
    const std::vector<std::pair<Words, const char*>> options = {
        { { "--nonsense" }, "--nonsense" },
        { { "--set", "Dealy 1 Time=5" }, "Dealy 1 Time" },
        { { "--set", "Delay 1 Time=1001" }, "1001" },
        { { "--set", "Delay 1 Time=5 kHz" }, "5 kHz" },
        { { "--set", "Delay 1 Time=1/8D" }, "Delay 1 Sync" },
        { { "--set", "Delay 1 Multiplier=x3" }, "x3" },
        { { "--set", "Dry Level=+4 dB" }, "+4 dB" },
        { { "--set", "Filter 1 Freq=nan" }, "nan" },
        { { "--connect", "Delay 3 > Filter 1" }, "Delay 3" },
        { { "--disconnect", "everything" }, "everything" },
        { { "--unroute", "LFO 1 > Output 1" }, "Output 1" },
        { { "--block", "16385" }, "16385" },
        { { "--rate", "100" }, "100" },
        { { "--tail", "-1" }, "-1" },
    };

    for (const auto& [words, culprit] : options)
        expectRefusal ({ words + Words { "in.wav", "o.wav" }, 2, culprit });
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
    render ({ "in.wav", "old.wav" });
    EXPECT_EQ (read ("old.wav").format, "WAV file");

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
