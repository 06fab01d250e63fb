// SPDX-License-Identifier: AGPL-3.0-or-later
#include "render_run.h"

#include <juce_core/juce_core.h>

// The presets that velkor-render starts from and writes. Documents and names that it refuses are in
// velkor_render_refusal_tests.cpp.

namespace
{
juce::File factoryFile (const juce::String& title)
{
    return juce::File (VELKOR_TEST_DATA)
        .getSiblingFile ("resources/presets/Factory")
        .getChildFile (title + ".zbpreset");
}

/** The settings of a report. */
juce::var settingsOf (const Outcome& outcome)
{
    return juce::JSON::parse (juce::String (outcome.out))["settings"];
}

/** That a report tells of the values and the numbers of cables and routes that a document holds. */
void expectPatchOf (const juce::var& settings, const juce::XmlElement& document)
{
    int parameters = 0;

    for (const auto* param : document.getChildByName ("Parameters")->getChildIterator())
    {
        const auto id = param->getStringAttribute ("id");
        const auto want = param->getDoubleAttribute ("value");
        EXPECT_NEAR (static_cast<double> (settings["parameters"][juce::Identifier (id)]), want,
                     1e-5 * std::max (1.0, std::abs (want)))
            << id;
        ++parameters;
    }

    EXPECT_EQ (parameters, 57);
    EXPECT_EQ (settings["connections"].size(),
               document.getChildByName ("SignalMatrix")->getNumChildElements());
    EXPECT_EQ (settings["routes"].size(),
               document.getChildByName ("ModMatrix")->getNumChildElements());
}

/** Something with an attack and an end. */
juce::AudioBuffer<float> burst()
{
    auto samples = sine (330.0, 44100.0, 30000, 0.5f);
    samples.applyGainRamp (0, 20000, 1.0f, 0.0f);
    samples.clear (20000, 10000);
    return samples;
}
}  // namespace

class RenderPresets : public RenderTest
{
protected:
    RenderPresets() { write ("in.wav", burst()); }

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

TEST_F (RenderPresets, EachOfTheBankIsListedAndRendersAsItsDocumentSays)
{
    juce::StringArray titles;
    titles.addLines (juce::String (render ({ "--list-presets" }).out));
    titles.removeEmptyStrings();
    const auto list =
        juce::JSON::parse (juce::String (render ({ "--list-presets", "--json" }).out));
    ASSERT_EQ (titles.size(), 64);
    ASSERT_EQ (list.size(), 64);
    write ("short.wav", impulses (600, 10, 0.5f, 0.25f));

    for (int i = 0; i < 64; ++i)
    {
        SCOPED_TRACE (titles[i]);
        const auto document = juce::parseXML (factoryFile (titles[i]));
        ASSERT_NE (document, nullptr);
        const auto name = list[i]["name"].toString();
        EXPECT_EQ (static_cast<int> (list[i]["number"]), i);
        EXPECT_EQ (name, document->getStringAttribute ("PresetName"));
        EXPECT_EQ (titles[i], juce::String (i).paddedLeft ('0', 2) + " - " + name);

        const auto settings = settingsOf (render (
            { "--preset", name.toStdString(), "--json", "--tail", "0", "short.wav", "o.wav" }));
        EXPECT_EQ (settings["preset"].toString(), titles[i]);
        expectPatchOf (settings, *document);
        EXPECT_EQ (read ("o.wav").length(), 600);
    }
}

TEST_F (RenderPresets, NamesTitlesNumbersAndPathsMeanTheSame)
{
    ASSERT_TRUE (factoryFile ("11 - Tape Delay").copyFileTo (file ("mine.zbpreset")));
    const auto want = soundOf ({ "--preset", "Tape Delay" });
    EXPECT_NE (want, soundOf ({}));
    EXPECT_NE (want, soundOf ({ "--preset", "1" }));

    for (const auto& word :
         Words { "TAPE delay", "11 - Tape Delay", " 11 - tape delay", "11", "011", "mine.zbpreset",
                 "./mine.zbpreset", file ("mine.zbpreset").getFullPathName().toStdString() })
        EXPECT_EQ (soundOf ({ "--preset", word }), want) << word;
}

TEST_F (RenderPresets, TheBankComesBeforeAFileOfTheSameName)
{
    for (const auto* name : { "11", "Tape Delay", "64" })
        ASSERT_TRUE (factoryFile ("13 - Basic Chorus").copyFileTo (file (name)));

    const auto chorus = soundOf ({ "--preset", "13" });
    EXPECT_NE (soundOf ({ "--preset", "11" }), chorus);
    EXPECT_NE (soundOf ({ "--preset", "Tape Delay" }), chorus);
    EXPECT_EQ (soundOf ({ "--preset", "./11" }), chorus);
    EXPECT_EQ (soundOf ({ "--preset", "./Tape Delay" }), chorus);
    EXPECT_EQ (soundOf ({ "--preset", "64" }), chorus);
}

TEST_F (RenderPresets, WhatTheUserHasAtHomeNeitherCountsNorChanges)
{
    const auto fresh = soundOf ({});
    const auto tape = soundOf ({ "--preset", "11" });
    const auto silence = "<VelkorSettings PresetName=\"Mine\"><Parameters>"
                         "<PARAM id=\"Kill\" value=\"1\"/></Parameters></VelkorSettings>";

    for (const auto* path : { "User/Default.zbpreset", "Factory/11 - Tape Delay.zbpreset" })
        ASSERT_TRUE (homePreset (path).create() && homePreset (path).replaceWithText (silence));

    EXPECT_EQ (soundOf ({}), fresh);
    EXPECT_EQ (soundOf ({ "--preset", "11" }), tape);
    render ({ "--preset", "11", "--save-preset", "mine.zbpreset" });

    for (const auto* path : { "User/Default.zbpreset", "Factory/11 - Tape Delay.zbpreset" })
        EXPECT_EQ (homePreset (path).loadFileAsString(), silence);

    EXPECT_EQ (home.getNumberOfChildFiles (juce::File::findFilesAndDirectories), 1);
    EXPECT_EQ (homePreset ({}).getNumberOfChildFiles (juce::File::findFilesAndDirectories), 2);
    EXPECT_EQ (temporaries.getNumberOfChildFiles (juce::File::findFilesAndDirectories), 0);
}

TEST_F (RenderPresets, ASavedPatchComesBackToTheSample)
{
    // Values whose last bit the way through the store costs, faders far down above all; cables made in another
    // order than documents hold them.
    const Words patches[] = {
        {},
        { "--preset", "Swamp Thing" },
        { "--preset",  "11",
          "--set",     "Delay 1 Time=377.77 ms",
          "--set",     "Filter 1 Freq=1234.5",
          "--set",     "Delay 2 Feedback=-3.3 dB",
          "--set",     "LFO 2 Rate=9.469023",
          "--set",     "Env Attack=17 ms",
          "--set",     "LFO 1 Wave=random",
          "--connect", "Filter 2 > Output 1",
          "--connect", "Delay 1 > Filter 2",
          "--connect", "Input R > Output 1",
          "--route",   "LFO 2 > Filter 1",
          "--unroute", "LFO 1 > Delay 1" },
        { "--disconnect", "all", "--unroute", "all", "--set", "Dry Level=0.00586348", "--connect",
          "Delay 2 > Output 1", "--connect", "Input L > Delay 2", "--connect", "Input R > Output 1",
          "--connect", "Input L > Output 1", "--set", "Output 1 Level=0.0150606", "--set",
          "Wet Level=0.00186666" },
    };

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

TEST_F (RenderPresets, SavingNeedsNoSoundAndReplacesTheFileWhole)
{
    const auto said = [this] (const Words& arguments) { return render (arguments).out; };
    EXPECT_EQ (said ({ "--preset", "20", "--save-preset", "of/late/made.ZBPRESET" }),
               "of/late/made.ZBPRESET: preset saved\n");
    const auto document = juce::parseXML (file ("of/late/made.ZBPRESET"));
    ASSERT_NE (document, nullptr);

    // What is in the way is replaced, and a link stays one.
    file ("real.zbpreset").replaceWithText ("old");
    ASSERT_TRUE (file ("real.zbpreset").createSymbolicLink (file ("link.zbpreset"), false));
    const auto report = render (
        { "--json", "--preset", "./of/late/made.ZBPRESET", "--save-preset", "link.zbpreset" });
    EXPECT_EQ (juce::JSON::parse (juce::String (report.out))["files"].size(), 0);
    EXPECT_EQ (settingsOf (report)["preset"].toString(), "./of/late/made.ZBPRESET");
    EXPECT_EQ (settingsOf (report)["savedPreset"].toString(), "link.zbpreset");
    expectPatchOf (settingsOf (report), *document);
    EXPECT_TRUE (file ("link.zbpreset").isSymbolicLink());
    const auto real = juce::parseXML (file ("real.zbpreset"));
    ASSERT_NE (real, nullptr);
    EXPECT_EQ (real->getStringAttribute ("PresetName"), "real");
    EXPECT_EQ (content().joinIntoString (","),
               "in.wav,link.zbpreset,of,of/late,of/late/made.ZBPRESET,real.zbpreset");
}
