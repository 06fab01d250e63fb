// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/name_cache.h"
#include "state/state_carriers.h"
#include "state_fixture.h"

#include <unistd.h>

class ProgramList : public StateTest
{
protected:
    void turnOn()
    {
        folder = homeFile ("programs");
        putFile (folder.getChildFile ("B/two.zbpreset"),
                 "<VelkorSettings PresetName=\"Two\"><Parameters><PARAM id=\"Delay 1 Time\" "
                 "value=\"2.5\"/></Parameters></VelkorSettings>");
        putFile (folder.getChildFile ("A/one.zbpreset"),
                 "<Other PresetName=\"shadowed\" presetName=\"One\"><x/></Other>");
        putFile (folder.getChildFile ("A/state.zbpreset"),
                 "<Other PresetName=\"Outer\"><PLUGINSTATE PresetName=\"Inner\"/></Other>");
        putFile (folder.getChildFile ("C/empty.zbpreset"),
                 "<VelkorSettings PresetName=\"\"><Parameters/></VelkorSettings>");
        putFile (folder.getChildFile ("C/broken.zbpreset"), "<VelkorSettings");
        putFile (folder.getChildFile ("D/bare.zbpreset"),
                 "<VelkorSettings PresetName=\"Bare\"><SignalMatrix/></VelkorSettings>");
        putFile (folder.getChildFile ("C/.hidden.zbpreset"), "<VelkorSettings/>");
        putFile (folder.getChildFile ("C/other.txt"), "<VelkorSettings/>");
        processor.programFolder = folder;
        processor.refreshProgramList();
    }

    juce::StringArray names()
    {
        juce::StringArray result;

        for (int i = 0; i < processor.getNumPrograms(); ++i)
            result.add (processor.getProgramName (i));

        return result;
    }

    VelkorAudioProcessor processor;
    juce::File folder;
};

TEST_F (ProgramList, OfThisProductIsOneProgramNamedAfterThePreset)
{
    processor.currentProgram = 5;
    ASSERT_TRUE (saveStateToFile (processor, presets ("User/Mine.zbpreset")));
    processor.refreshProgramList();
    processor.changeProgramName (0, "ignored");
    processor.setCurrentProgram (0);

    EXPECT_EQ (processor.getNumPrograms(), 1);
    EXPECT_EQ (processor.getCurrentProgram(), 0);
    EXPECT_EQ (processor.currentProgram, 5);
    EXPECT_EQ (processor.getProgramName (0), "Mine");
    EXPECT_EQ (processor.getProgramName (-1), "Mine");
    EXPECT_EQ (processor.programList.size(), 0);
}

TEST_F (ProgramList, TurnedOnFindsTheNamesInFilesOfAllDialects)
{
    turnOn();
    EXPECT_EQ (names(), juce::StringArray ({ "One", "Inner", "Two", "broken", "empty", "Bare" }));

    // A name is looked up once.
    putFile (folder.getChildFile ("B/two.zbpreset"), "<VelkorSettings PresetName=\"Later\"/>");
    EXPECT_EQ (processor.getProgramName (2), "Two");
    EXPECT_EQ (processor.getProgramName (6), processor.presetName);
}

TEST_F (ProgramList, IgnoresTheCaseOfPathsAndExtensionsAndGoesRoundNoCircle)
{
    const auto put = [this] (const char* path, const juce::String& name)
    {
        putFile (homeFile ("programs").getChildFile (path),
                 ("<VelkorSettings PresetName=\"" + name + "\"><Parameters/></VelkorSettings>")
                     .toStdString());
    };
    put ("a/Z.ZBPRESET", "Zed");
    put ("b/m.zbpreset", "Em");
    put ("b/.away/n.zbpreset", "never");
    ASSERT_EQ (symlink (homeFile ("programs").getFullPathName().toRawUTF8(),
                        homeFile ("programs/b/up").getFullPathName().toRawUTF8()),
               0);
    turnOn();
    EXPECT_EQ (names(), juce::StringArray (
                            { "One", "Inner", "Zed", "Em", "Two", "broken", "empty", "Bare" }));
}

TEST_F (ProgramList, TakesNamesFromTheCacheOfAnyVersionAndCase)
{
    putFile (homeFile ("programs/preset_info.xml"),
             "<presetcache version=\"1\" fileCount=\"99\"><preset path=\"b/TWO.zbpreset\" "
             "name=\"Cached\"/><Preset path=\"A/one.zbpreset\" name=\"\"/>"
             "<Else path=\"A/state.zbpreset\" name=\"wrong\"/></presetcache>");
    turnOn();
    EXPECT_EQ (names(),
               juce::StringArray ({ "One", "Inner", "Cached", "broken", "empty", "Bare" }));

    putFile (homeFile ("programs/preset_info.xml"),
             "<Other><Preset path=\"B/two.zbpreset\" name=\"Cached\"/></Other>");
    processor.refreshProgramList();
    EXPECT_EQ (processor.getProgramName (2), "Two");
}

TEST_F (ProgramList, ReadsTheNamesOfALargeCollection)
{
    KnownPresets known;

    for (int i = 0; i < 50000; ++i)
        known["Collections/Somebody's/Preset number " + juce::String (i) + ".zbpreset"] = {
            "Preset number " + juce::String (i), 2
        };

    ASSERT_TRUE (writeNameCache (presets(), "Velkor", known));
    const auto names = readNameCache (presets());
    ASSERT_EQ (names.size(), known.size());
    EXPECT_EQ (names.at ("Collections/Somebody's/Preset number 44444.zbpreset"),
               "Preset number 44444");
}

TEST_F (ProgramList, LoadsAProgramOfOursAndNoOther)
{
    turnOn();
    HostListener host;
    processor.addListener (&host);
    processor.setCurrentProgram (2);
    EXPECT_EQ (processor.presetName, "Two");
    EXPECT_EQ (valueOf (processor, "Delay 1 Time"), 2.5f);
    EXPECT_EQ (processor.getCurrentProgram(), 2);
    EXPECT_EQ (host.changes, 2);  // once for the document and once for the program

    for (const int index : { 0, 3, 5, -1, 99 })  // of another product, broken, without parameters
        processor.setCurrentProgram (index);

    EXPECT_EQ (processor.presetName, "Two");
    EXPECT_EQ (processor.currentProgram, 2);
    EXPECT_EQ (host.changes, 2);

    // A shorter list limits what the host is told and not what is kept.
    ASSERT_TRUE (folder.getChildFile ("C").deleteRecursively());
    ASSERT_TRUE (folder.getChildFile ("A").deleteRecursively());
    ASSERT_TRUE (folder.getChildFile ("D").deleteRecursively());
    processor.refreshProgramList();
    EXPECT_EQ (processor.getNumPrograms(), 1);
    EXPECT_EQ (processor.getCurrentProgram(), 0);
    EXPECT_EQ (processor.currentProgram, 2);

    // And a folder that is gone keeps the old list.
    ASSERT_TRUE (folder.deleteRecursively());
    processor.refreshProgramList();
    EXPECT_EQ (processor.programList.size(), 1);
    processor.removeListener (&host);
}
