// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state_fixture.h"

class GlobalSettingsFile : public StateTest
{
protected:
    static void expectDefaults (const VelkorAudioProcessor& p)
    {
        EXPECT_EQ (p.uiWidth, 900);
        EXPECT_EQ (p.uiHeight, 300);
        EXPECT_TRUE (p.toolTips && p.animationPlayer && p.glowRenderer);
    }

    static std::string written (const char* attributes)
    {
        return std::string ("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n\r\n<VelkorGlobals ") +
               attributes + "/>\r\n";
    }
};

TEST_F (GlobalSettingsFile, IsWrittenWithTheDefaultsByTheFirstInstance)
{
    expectDefaults (VelkorAudioProcessor());
    EXPECT_EQ (bytesOf (globals()),
               written ("uiWidth=\"900\" uiHeight=\"300\" toolTips=\"1\" animationPlayer=\"1\"\r\n"
                        "               glowRenderer=\"1\""));
}

TEST_F (GlobalSettingsFile, ReplacesAllDefaultsOnceItParsesWhateverItsRoot)
{
    putFile (globals(), "<VelkorGlobals/>");
    {
        const VelkorAudioProcessor p;
        EXPECT_EQ (p.uiWidth, 0);
        EXPECT_EQ (p.uiHeight, 0);
        EXPECT_FALSE (p.toolTips || p.animationPlayer || p.glowRenderer || p.saveAudio);
    }
    EXPECT_EQ (bytesOf (globals()), "<VelkorGlobals/>");

    putFile (globals(),
             "<Anything uiWidth=\" 1200px\" uiHeight=\"x\" saveAudio=\"1\" toolTips=\"yes\" "
             "animationPlayer=\"True\" glowRenderer=\"on\"/>");
    VelkorAudioProcessor p;
    EXPECT_TRUE (p.saveAudio);
    p.uiHeight = 630;
    p.writeGlobals();
    EXPECT_EQ (bytesOf (globals()),
               written ("uiWidth=\"1200\" uiHeight=\"630\" toolTips=\"1\" animationPlayer=\"1\"\r\n"
                        "               glowRenderer=\"0\""));
}

TEST_F (GlobalSettingsFile, ThatDoesNotParseLeavesTheDefaultsAndItself)
{
    for (const char* const text : { "not markup", "", "<VelkorGlobals uiWidth=\"5\"" })
    {
        putFile (globals(), text);
        expectDefaults (VelkorAudioProcessor());
        EXPECT_EQ (bytesOf (globals()), text);
    }
}
