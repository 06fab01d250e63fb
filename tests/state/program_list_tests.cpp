// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/state_carriers.h"
#include "state_fixture.h"

#include <unistd.h>

class ProgramList : public StateTest
{
protected:
    void put (const char* path, std::string_view text) const
    {
        putFile (folder.getChildFile (path), text);
    }

    /** Makes presets of all dialects and the list of them, which this product leaves empty. */
    void turnOn()
    {
        put ("B/two.zbpreset",
             "<VelkorSettings PresetName=\"Two\"><Parameters><PARAM id=\"Delay 1 Time\" "
             "value=\"2.5\"/></Parameters></VelkorSettings>");
        put ("A/ONE.ZBPRESET", "<Other PresetName=\"shadowed\" presetName=\"One\"><x/></Other>");
        put ("a/state.zbpreset",
             "<Other PresetName=\"Outer\"><PLUGINSTATE PresetName=\"Inner\"/></Other>");
        put ("C/empty.zbpreset", "<VelkorSettings PresetName=\"\"><Parameters/></VelkorSettings>");
        put ("C/broken.zbpreset", "<VelkorSettings");
        put ("C/.hidden.zbpreset", "<VelkorSettings/>");
        put ("C/.away/hidden.zbpreset", "<VelkorSettings/>");
        put ("C/other.txt", "<VelkorSettings/>");
        ASSERT_EQ (symlink (folder.getFullPathName().toRawUTF8(),
                            folder.getChildFile ("up").getFullPathName().toRawUTF8()),
                   0);
        processor.programFolder = folder;
        processor.refreshProgramList();
    }

    juce::String names()
    {
        juce::StringArray result;

        for (int i = 0; i < processor.getNumPrograms(); ++i)
            result.add (processor.getProgramName (i));

        return result.joinIntoString ("|");
    }

    VelkorAudioProcessor processor;
    const juce::File folder = homeFile ("programs");
};

TEST_F (ProgramList, OfThisProductIsOneProgramNamedAfterThePreset)
{
    processor.currentProgram = 5;
    ASSERT_TRUE (saveStateToFile (processor, presets ("User/Mine.zbpreset")));
    processor.refreshProgramList();
    processor.setCurrentProgram (0);

    EXPECT_EQ (processor.getNumPrograms(), 1);
    EXPECT_EQ (processor.getCurrentProgram(), 0);
    EXPECT_EQ (processor.currentProgram, 5);
    EXPECT_EQ (processor.getProgramName (0), "Mine");
    EXPECT_EQ (processor.getProgramName (-1), "Mine");
}

TEST_F (ProgramList, TurnedOnFindsTheNamesInFilesOfAllDialectsOnceOrInACacheOfAnyVersion)
{
    turnOn();
    EXPECT_EQ (names(), "One|Inner|Two|broken|empty");
    put ("B/two.zbpreset", "<VelkorSettings PresetName=\"Later\"/>");
    EXPECT_EQ (names(), "One|Inner|Two|broken|empty");

    put ("preset_info.xml",
         "<presetcache version=\"1\" fileCount=\"99\"><preset path=\"b/TWO.zbpreset\" "
         "name=\"Cached\"/><Preset path=\"A/ONE.zbpreset\" name=\"\"/>"
         "<Else path=\"a/state.zbpreset\" name=\"wrong\"/></presetcache>");
    processor.refreshProgramList();
    EXPECT_EQ (names(), "One|Inner|Cached|broken|empty");

    put ("preset_info.xml", "<Other><Preset path=\"B/two.zbpreset\" name=\"Cached\"/></Other>");
    processor.refreshProgramList();
    EXPECT_EQ (names(), "One|Inner|Later|broken|empty");
}

TEST_F (ProgramList, LoadsAProgramOfOursAndNoOther)
{
    turnOn();
    processor.setCurrentProgram (2);
    EXPECT_EQ (processor.presetName, "Two");
    EXPECT_EQ (valueOf (processor, "Delay 1 Time"), 2.5f);

    for (const int index : { 0, 3, -1, 99 })  // of another product, broken
        processor.setCurrentProgram (index);

    EXPECT_EQ (processor.presetName, "Two");
    EXPECT_EQ (processor.getCurrentProgram(), 2);

    // A shorter list limits what the host is told and not what is kept; without a folder it stays.
    ASSERT_TRUE (folder.getChildFile ("C").deleteRecursively());
    ASSERT_TRUE (folder.getChildFile ("A").deleteRecursively());
    ASSERT_TRUE (folder.getChildFile ("a").deleteRecursively());
    processor.refreshProgramList();
    ASSERT_TRUE (folder.getChildFile ("up").deleteFile() && folder.deleteRecursively());
    processor.refreshProgramList();
    EXPECT_EQ (processor.programList.size(), 1);
    EXPECT_EQ (processor.getCurrentProgram(), 0);
    EXPECT_EQ (processor.currentProgram, 2);
}
