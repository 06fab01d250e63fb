// SPDX-License-Identifier: AGPL-3.0-or-later
#include "render_run.h"

#include <algorithm>
#include <map>

// That what velkor-render is told about the patch arrives there, and the presets that it starts from and writes.

namespace
{
juce::File factoryFile (const juce::String& title)
{
    return juce::File (VELKOR_TEST_DATA)
        .getSiblingFile ("resources/presets/Factory")
        .getChildFile (title + ".zbpreset");
}

juce::var parse (const std::string& json)
{
    return juce::JSON::parse (juce::String (json));
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

TEST_F (RenderPatch, EveryWayToWriteAValueIsUnderstood)
{
    struct Case
    {
        const char *id, *text;
        double want;
    };

    const Case cases[] = {
        { "Dry Level", "-6 dB", 0.501187 },
        { "Output 1 Level", "50%", 0.5 },
        { "Input Level", "-INF dB", 0.0 },
        { "Delay 1 Feedback", "0.25", 0.25 },
        { "Delay 1 Time", "0.75 s", 750.0 },
        { "Delay 1 Fine", "x1.25", 1.25 },
        { "Delay 2 Fine", "75%", 0.75 },
        { "LFO 1 Mod", "+2.5 Hz", 2.5 },
        { "LFO 2 Wave", "random", 3.0 },
        { "Delay 1 Multiplier", "x8", 3.0 },
        { "Delay 2 Multiplier", "0", 0.0 },
        { "Filter 1 Freq", "2.5 kHz", 2500 },
        { "Filter 1 Mod", "-50%", -0.5 },
        { "Filter 2 Mode", "Highpass", 1.0 },
        { "Pan 1", "L 10", 0.0 },
        { "Pan 2", "R 5", 0.75 },
        { "Env Attack", "100 ms", 0.1 },
        { "Delay 1 Reverse", "Reverse", 1.0 },
        { "Kill", "yes", 1.0 },
        { "Phase Invert 2", "inverted", 1.0 },
    };
    Words words { "--parameters", "--json" };

    for (const auto& c : cases)
        words = words + Words { "--set", std::string (c.id) + "=" + c.text };

    std::map<juce::String, double> values;
    const auto list = parse (render (words).out);

    for (int i = 0; i < list.size(); ++i)
        values[list[i]["id"].toString()] = list[i]["value"];

    EXPECT_EQ (values.size(), 57u);

    for (const auto& c : cases)
        EXPECT_NEAR (values[c.id], c.want, 1e-4 * std::max (1.0, c.want)) << c.id;
}

TEST_F (RenderPatch, NodeNamesStandForTheNumbersThatPresetsStore)
{
    const Words sources = { "Input L",  "Input R",  "Delay 1",      "Delay 2",
                            "Filter 1", "Filter 2", "Saturation 1", "Saturation 2" };
    const Words dests = { "Delay 1",  "Delay 2",  "Delay 1 feedback", "Delay 2 feedback",
                          "Filter 1", "Filter 2", "Saturation 1",     "Saturation 2",
                          "Output 1", "Output 2" };
    const Words modSources = { "Envelope", "LFO 1", "LFO 2", "Note", "Gate", "Wheel" };
    const Words modDests = { "Delay 1",  "Delay 2", "LFO 1", "LFO 2",   "Filter 1",
                             "Filter 2", "Pan 1",   "Pan 2", "Level 1", "Level 2" };

    render ({ "--disconnect", "all", "--unroute", "all", "--connect", "input l>output 2",
              "--save-preset", "one.zbpreset" });

    for (std::size_t i = 0; i < dests.size(); ++i)
    {
        const auto cable = sources[i % 8] + " > " + dests[i];
        const auto route = modSources[i % 6] + " > " + modDests[i];
        const auto report = parse (
            render ({ "--preset", "one.zbpreset", "--disconnect", "Input L > Output 2", "--connect",
                      cable, "--route", route, "--json", "--save-preset", "p.zbpreset" })
                .out);
        EXPECT_EQ (report["settings"]["connections"][0].toString().toStdString(), cable);
        EXPECT_EQ (report["settings"]["routes"][0].toString().toStdString(), route);
        const auto stored = file ("p.zbpreset").loadFileAsString();
        const juce::String text ("<SignalMatrix>\r\n    <Connection input=\"I\" output=\"N\"/>\r\n"
                                 "  </SignalMatrix>\r\n  <ModMatrix>\r\n"
                                 "    <Connection source=\"S\" dest=\"N\"/>\r\n  </ModMatrix>");
        EXPECT_TRUE (stored.contains (text.replace ("\"I\"", juce::String (i % 8).quoted())
                                          .replace ("\"S\"", juce::String (i % 6).quoted())
                                          .replace ("\"N\"", juce::String (i).quoted())))
            << stored;
    }
}

TEST_F (RenderPatch, TheBankIsListedAndPreferredByAnyNameUnlessAPathIsGiven)
{
    const auto list = parse (render ({ "--list-presets", "--json" }).out);
    ASSERT_EQ (list.size(), 64);

    for (int i = 0; i < 64; ++i)
    {
        const auto name = list[i]["name"].toString();
        const auto title = juce::String (i).paddedLeft ('0', 2) + " - " + name;
        EXPECT_TRUE (factoryFile (title).existsAsFile()) << title;
        const auto report = parse (
            render ({ "--preset", name.toStdString(), "--json", "--save-preset", "p.zbpreset" })
                .out);
        EXPECT_EQ (report["settings"]["preset"].toString(), title);
        expectSamePatch (file ("p.zbpreset"), factoryFile (title));
    }

    for (const auto* name : { "11", "Tape Delay", "64", "mine.zbpreset" })
        ASSERT_TRUE (factoryFile ("13 - Basic Chorus").copyFileTo (file (name)));

    const auto tape = soundOf ({ "--preset", "Tape Delay" });
    const auto chorus = soundOf ({ "--preset", "13" });
    EXPECT_NE (tape, chorus);

    for (const auto* word : { "TAPE delay", " 11 - tape delay", "11", "011" })
        EXPECT_EQ (soundOf ({ "--preset", word }), tape) << word;

    for (const auto& word :
         { std::string ("./11"), std::string ("64"), std::string ("mine.zbpreset"),
           file ("Tape Delay").getFullPathName().toStdString() })
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
    EXPECT_NE (soundOf ({ "--set", "Delay 1 Time=377.77 ms", "--preset", "11" }),
               soundOf ({ "--preset", "11" }));

    for (const auto& patch : patches)
    {
        SCOPED_TRACE (testing::PrintToString (patch));
        const auto sound = soundOf (patch);
        EXPECT_EQ (soundOf (patch + Words { "--save-preset", "a & b.zbpreset" }), sound);
        EXPECT_EQ (soundOf ({ "--preset", "a & b.zbpreset" }), sound);
        EXPECT_TRUE (file ("a & b.zbpreset")
                         .loadFileAsString()
                         .startsWith ("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n\r\n"
                                      "<VelkorSettings PresetName=\"a &amp; b\" Version="));
    }
}

TEST_F (RenderPatch, SavingNeedsNoSoundAndReplacesTheFileWhole)
{
    EXPECT_EQ (render ({ "--preset", "20", "--save-preset", "of/late/made.ZBPRESET" }).out,
               "of/late/made.ZBPRESET: preset saved\n");

    // What is in the way is replaced, and a link stays one.
    file ("real.zbpreset").replaceWithText ("old");
    ASSERT_TRUE (file ("real.zbpreset").createSymbolicLink (file ("link.zbpreset"), false));
    const auto report = parse (render ({ "--json", "--preset", "./of/late/made.ZBPRESET",
                                         "--save-preset", "link.zbpreset" })
                                   .out);
    EXPECT_EQ (report["files"].size(), 0);
    EXPECT_EQ (report["settings"]["savedPreset"].toString(), "link.zbpreset");
    expectSamePatch (file ("real.zbpreset"), file ("of/late/made.ZBPRESET"));
    EXPECT_TRUE (file ("link.zbpreset").isSymbolicLink());
    EXPECT_EQ (content().joinIntoString (","),
               "in.wav,link.zbpreset,of,of/late,of/late/made.ZBPRESET,real.zbpreset");
}
