// SPDX-License-Identifier: AGPL-3.0-or-later
#include "render_run.h"

// That what velkor-render is told about the patch arrives there, and the presets that it starts from and writes.

namespace
{
juce::File factoryFile (const juce::String& title)
{
    return juce::File (VELKOR_TEST_DATA)
        .getSiblingFile ("resources/presets/Factory")
        .getChildFile (title + ".zbpreset");
}
}  // namespace

class RenderPatch : public RenderTest
{
protected:
    RenderPatch()
    {
        auto samples = sine (330.0, 44100.0, 30000, 0.5f);  // something with an attack and an end
        samples.applyGainRamp (0, 20000, 1.0f, 0.0f);
        samples.clear (20000, 10000);
        write ("in.wav", samples);
    }

    /** The samples' file that these arguments make of in.wav. */
    juce::MemoryBlock soundOf (const Words& arguments) const
    {
        render (arguments + Words { "--bits", "32", "--tail", "1", "in.wav", "o.wav" });
        juce::MemoryBlock bytes;
        file ("o.wav").loadFileAsData (bytes);
        EXPECT_TRUE (file ("o.wav").deleteFile());
        return bytes;
    }

    juce::File homePreset (const juce::String& path) const
    {
        return home.getChildFile ("Music/Zubrow Labs/Velkor/Presets").getChildFile (path);
    }
};

TEST_F (RenderPatch, TheBankIsListedAndPreferredByAnyNameUnlessAPathIsGiven)
{
    const auto list = juce::JSON::parse (render ({ "--list-presets", "--json" }).out);
    ASSERT_EQ (list.size(), 64);

    for (int i = 0; i < 64; ++i)
    {
        const auto name = list[i]["name"].toString();
        const auto title = juce::String (i).paddedLeft ('0', 2) + " - " + name;
        EXPECT_TRUE (factoryFile (title).existsAsFile()) << title;
        const auto settings = savedSettings ({ "--preset", name.toStdString() });
        EXPECT_EQ (settings["preset"].toString(), title);
        expectSamePatch (
            settings,
            savedSettings ({ "--preset", factoryFile (title).getFullPathName().toStdString() }));
    }

    for (const auto* name : { "11", "64", "mine.zbpreset" })
        ASSERT_TRUE (factoryFile ("13 - Basic Chorus").copyFileTo (file (name)));

    const auto tape = soundOf ({ "--preset", "TAPE delay" });
    const auto chorus = soundOf ({ "--preset", "13" });
    EXPECT_NE (tape, chorus);

    for (const auto* word : { " 11 - tape delay", "11", "011" })
        EXPECT_EQ (soundOf ({ "--preset", word }), tape) << word;

    for (const auto* word : { "./11", "64", "mine.zbpreset" })
        EXPECT_EQ (soundOf ({ "--preset", word }), chorus) << word;
}

TEST_F (RenderPatch, WhatTheUserHasAtHomeNeitherCountsNorChanges)
{
    const auto fresh = soundOf ({});
    const auto tape = soundOf ({ "--preset", "11" });
    EXPECT_EQ (home.getNumberOfChildFiles (juce::File::findFilesAndDirectories), 0);
    const auto silence = "<VelkorSettings PresetName=\"Mine\"><Parameters>"
                         "<PARAM id=\"Kill\" value=\"1\"/></Parameters></VelkorSettings>";
    const char* const paths[] = { "User/Default.zbpreset", "Factory/11 - Tape Delay.zbpreset" };

    for (const auto* path : paths)
        ASSERT_TRUE (homePreset (path).create() && homePreset (path).replaceWithText (silence));

    EXPECT_EQ (soundOf ({}), fresh);
    EXPECT_EQ (soundOf ({ "--preset", "11" }), tape);
    render ({ "--preset", "11", "--save-preset", "mine.zbpreset" });

    for (const auto* path : paths)
        EXPECT_EQ (homePreset (path).loadFileAsString(), silence);

    EXPECT_EQ (home.getNumberOfChildFiles (juce::File::findFilesAndDirectories), 1);
    EXPECT_EQ (homePreset ({}).getNumberOfChildFiles (juce::File::findFilesAndDirectories), 2);
    EXPECT_EQ (temporaries.getNumberOfChildFiles (juce::File::findFilesAndDirectories), 0);
}

TEST_F (RenderPatch, ASavedPatchComesBackToTheSample)
{
    // Values whose last bit the way through the store costs, faders far down above all; cables made in another
    // order than documents hold them; edits that stand before the preset.
    const Words patches[] = {
        { "--set",     "Delay 1 Time=377.77 ms", "--preset",  "11",
          "--set",     "Filter 1 Freq=1234.5",   "--set",     "LFO 2 Rate=9.469023",
          "--set",     "LFO 1 Wave=random",      "--connect", "Filter 2 > Output 1",
          "--connect", "Delay 1 > Filter 2",     "--connect", "Input R > Output 1",
          "--route",   "LFO 2 > Filter 1",       "--unroute", "LFO 1 > Delay 1" },
        { "--disconnect", "all", "--unroute", "all", "--set", "Dry Level=0.00586348", "--connect",
          "Delay 2 > Output 1", "--connect", "Input L > Delay 2", "--connect", "Input R > Output 1",
          "--connect", "Input L > Output 1", "--set", "Output 1 Level=0.0150606", "--set",
          "Wet Level=0.00186666" },
    };
    const auto plain = soundOf ({ "--preset", "11" });
    EXPECT_NE (soundOf ({ "--set", "Delay 1 Time=377.77 ms", "--preset", "11" }), plain);
    EXPECT_NE (soundOf ({ "--disconnect", "Input L > Delay 1", "--preset", "11" }), plain);
    EXPECT_EQ (
        savedSettings ({ "--unroute", "LFO 2 > Delay 2", "--preset", "11" })["routes"].size(), 1);

    for (const auto& patch : patches)
    {
        SCOPED_TRACE (testing::PrintToString (patch));
        const auto sound = soundOf (patch);
        EXPECT_EQ (soundOf (patch + Words { "--save-preset", "a & b.zbpreset" }), sound);
        EXPECT_EQ (soundOf ({ "--preset", "a & b.zbpreset" }), sound);
    }
}

TEST_F (RenderPatch, FilesAreReplacedThroughLinksAndNothingElseIsLeft)
{
    render ({ "--preset", "20", "--save-preset", "of/late/made.ZBPRESET" });
    file ("real.zbpreset").replaceWithText ("old");
    ASSERT_TRUE (file ("real.zbpreset").createSymbolicLink (file ("link.zbpreset"), false));
    render ({ "--preset", "./of/late/made.ZBPRESET", "--save-preset", "link.zbpreset" });
    EXPECT_TRUE (file ("link.zbpreset").isSymbolicLink());

    ASSERT_TRUE (file ("in.wav").copyFileTo (file ("real.wav")));
    ASSERT_TRUE (file ("real.wav").createSymbolicLink (file ("link.wav"), false));
    render ({ "in.wav", "link.wav" });
    EXPECT_TRUE (file ("link.wav").isSymbolicLink());
    EXPECT_EQ (
        content().joinIntoString (","),
        "in.wav,link.wav,link.zbpreset,of,of/late,of/late/made.ZBPRESET,real.wav,real.zbpreset");
    expectSamePatch (savedSettings ({ "--preset", "real.zbpreset" }),
                     savedSettings ({ "--preset", "20" }));
}
