// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/state_carriers.h"
#include "state_fixture.h"

#include <cmath>

/** A document as it was written once, by whatever wrote it then. */
struct Kept
{
    const char* file;
    const char* name;
    std::vector<std::pair<const char*, float>> values;
    std::vector<std::string> connections, routes;
};

class KeptDocuments : public StateTest
{
protected:
    static std::vector<Kept> documents()
    {
        return {
            { "default_saved.zbpreset",
              "Default",
              { { "Delay 1 Time", 501.0f },
                { "LFO 1 Rate", 0.316228f },
                { "Filter 1 Freq", 40.0f },
                { "Input Level", 0.99909f },
                { "Pan 2", 1.0f } },
              { "0>0", "1>1", "2>8", "3>9" },
              {} },
            // Six decimals and line feeds, the modulation matrix by destination first.
            { "six_decimals.zbpreset",
              "Six & Decimals",
              { { "Delay 1 Time", 187.5f },
                { "Delay 1 Sync", 1.0f },
                { "Delay 1 Feedback", 0.863269f },
                { "Delay 2 Multiplier", 3.0f },
                { "LFO 1 Rate", 5.011872f },
                { "Filter 2 Freq", 1234.567f },
                { "Pan 1 Mod", -0.5f },
                { "Env Attack", 0.012f } },
              { "0>0", "1>1", "2>2", "2>4", "3>2", "3>5", "4>8", "5>8", "5>9" },
              { "0>8", "1>0", "1>4", "2>5", "3>8" } },
            // Numbers of the program itself beside texts of a document, and a parameter too few.
            { "mixed_forms.zbpreset",
              "Mixed forms",
              { { "Delay 1 Time", 320.25f },
                { "Delay 2 Fine", 0.75f },
                { "Saturation 1", 0.3f },
                { "Env Decay", 0.25f } },
              { "6>6", "7>9" },
              { "5>4" } },
        };
    }
};

TEST_F (KeptDocuments, LoadToTheValuesThatTheyWereSavedFromAndStaySoWhenSavedAgain)
{
    for (const auto& kept : documents())
    {
        SCOPED_TRACE (kept.file);
        VelkorAudioProcessor processor;
        const auto file = presets ("User/kept.zbpreset");
        putFile (file, keptDocument (kept.file));

        for (int round = 0; round < 3; ++round)
        {
            scramble (processor, 77);
            processor.parameterTree.getParameter ("Env Decay")->setValueNotifyingHost (0.5f);
            setStateFromFile (processor, file);
            ASSERT_EQ (processor.presetName, round == 0 ? kept.name : "kept");

            for (const auto& [id, value] : kept.values)
                EXPECT_NEAR (valueOf (processor, id), value, std::abs (value) * 1e-5f) << id;

            EXPECT_EQ (sorted (connectionList (processor)), kept.connections);
            EXPECT_EQ (sorted (routeList (processor)), kept.routes);
            ASSERT_TRUE (saveStateToFile (processor, file));
        }
    }
}

TEST_F (KeptDocuments, SavedAgainUnchangedKeepTheSixDecimalsThatTheStoreDoesNotRound)
{
    VelkorAudioProcessor processor;
    setStateFromText (processor, juce::String (keptDocument ("six_decimals.zbpreset")));
    const auto text = textOf (processor);
    EXPECT_EQ (valueTextIn (text, "Delay 1 Time"), "187.500000");
    EXPECT_EQ (valueTextIn (text, "Delay 1 Sync"), "1.000000");
    EXPECT_EQ (valueTextIn (text, "Delay 2 Multiplier"), "3.000000");
    EXPECT_EQ (valueTextIn (text, "Pan 1 Mod"), "-0.500000");
}

TEST_F (KeptDocuments, BringTheirOrderAlong)
{
    VelkorAudioProcessor processor;
    setStateFromText (processor, juce::String (keptDocument ("mixed_forms.zbpreset")));
    const auto text = textOf (processor);
    EXPECT_LT (text.indexOf ("\"Saturation 1\""), text.indexOf ("\"Delay 1 Time\""));
    EXPECT_LT (text.indexOf ("\"Phase Invert 2\""), text.indexOf ("\"Env Decay\""));
}
