// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/state_carriers.h"
#include "state_fixture.h"

class ProgramList : public StateTest
{
protected:
    void put (const char* path, std::string_view text) const
    {
        putFile (folder.getChildFile (path), text);
    }

    juce::String names()
    {
        processor.refreshProgramList();
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
    processor.setCurrentProgram (0);

    EXPECT_EQ (names(), "Mine");
    EXPECT_EQ (processor.getCurrentProgram(), 0);
    EXPECT_EQ (processor.currentProgram, 5);
    EXPECT_EQ (processor.getProgramName (-1), "Mine");
}

TEST_F (ProgramList, TurnedOnNamesFilesOfAllDialectsOrAsACacheDoesAndLoadsOnlyOurs)
{
    put ("B/two.zbpreset", "<VelkorSettings PresetName=\"Two\"><Parameters/></VelkorSettings>");
    put ("A/ONE.ZBPRESET", "<Other PresetName=\"shadowed\" presetName=\"One\"><x/></Other>");
    put ("a/state.zbpreset",
         "<Other PresetName=\"Outer\"><PLUGINSTATE PresetName=\"Inner\"/></Other>");
    put ("C/broken.zbpreset", "<VelkorSettings");
    put ("C/.away/hidden.zbpreset", "<VelkorSettings/>");
    processor.programFolder = folder;
    EXPECT_EQ (names(), "One|Inner|Two|broken");

    for (const int index : { 2, 0, 3, -1, 99 })  // the first alone is ours and whole
        processor.setCurrentProgram (index);

    EXPECT_EQ (processor.presetName, "Two");
    EXPECT_EQ (processor.getCurrentProgram(), 2);

    put ("preset_info.xml",
         "<presetcache version=\"1\" fileCount=\"99\"><preset path=\"b/TWO.zbpreset\" "
         "name=\"Cached\"/><Preset path=\"A/ONE.zbpreset\" name=\"\"/></presetcache>");
    EXPECT_EQ (names(), "One|Inner|Cached|broken");
}
