// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/state_carriers.h"
#include "state_fixture.h"

class PresetReader : public StateTest
{
protected:
    PresetReader() { processor.addListener (&host); }
    ~PresetReader() override { processor.removeListener (&host); }

    void load (const juce::String& text) { setStateFromText (processor, text); }

    VelkorAudioProcessor processor;
    HostListener host;
};

static const juce::String kNoMatrices = documentWith ("<Parameters/>", "Bare");

TEST_F (PresetReader, IgnoresADocumentOfAnotherRootOrWithoutParameters)
{
    scramble (processor, 1);
    const auto before = textOf (processor);
    host.changes = 0;

    load ("<Other PresetName=\"x\"><Parameters/><SignalMatrix/></Other>");
    load ("<VelkorSettings2 PresetName=\"x\"><Parameters/><SignalMatrix/></VelkorSettings2>");
    load ("<VelkorSettings PresetName=\"x\"><SignalMatrix/><ModMatrix/></VelkorSettings>");
    load ("<VelkorSettings PresetName=\"x\"><Parameters/><SignalMatrix/>");
    load ("no markup at all");
    load ({});
    processor.loadStateFromXML (nullptr);

    EXPECT_EQ (textOf (processor), before);
    EXPECT_EQ (host.changes, 0);
}

TEST_F (PresetReader, LeavesMatricesThatTheDocumentLacksAndClearsThoseThatAreEmpty)
{
    scramble (processor, 2);
    const auto connections = connectionList (processor);
    const auto routes = routeList (processor);
    ASSERT_FALSE (connections.empty());
    ASSERT_FALSE (routes.empty());

    load (kNoMatrices);
    EXPECT_EQ (processor.presetName, "Bare");
    EXPECT_EQ (connectionList (processor), connections);
    EXPECT_EQ (routeList (processor), routes);

    load (documentWith ("<Parameters/><SignalMatrix/>"));
    EXPECT_TRUE (connectionList (processor).empty());
    EXPECT_EQ (routeList (processor), routes);

    load (documentWith ("<Parameters/><ModMatrix/>"));
    EXPECT_TRUE (routeList (processor).empty());
    EXPECT_TRUE (textOf (processor).contains ("<SignalMatrix/>\r\n  <ModMatrix/>"));
}

TEST_F (PresetReader, TakesConnectionsInTheirOrderOnceEachAndSkipsThoseOutOfRange)
{
    load (documentWith (
        "<Parameters/><SignalMatrix>"
        "<Connection input=\"7\" output=\"9\"/><Connection input=\"0\" output=\"4\"/>"
        "<Connection input=\"7\" output=\"9\"/><Connection input=\"8\" output=\"0\"/>"
        "<Connection input=\"0\" output=\"10\"/><Connection input=\"-1\" output=\"0\"/>"
        "<Connection input=\"4294967297\" output=\"3\"/>"
        "<Connection input=\"1\" output=\"18446744073709551617\"/>"
        "<Connection input=\"99999999999999999999999\" output=\"1\"/>"
        "<Connection output=\"3\"/><connection input=\"six\" output=\"5\"/>"
        "<Connection input=\" 2x\" output=\"+6\"/><Konnection input=\"1\" output=\"1\"/>"
        "<Connection Input=\"5\" OUTPUT=\"5\"/>"
        "</SignalMatrix><ModMatrix>"
        "<Connection source=\"5\" dest=\"9\"/><CONNECTION source=\"0\" dest=\"1\"/>"
        "<Connection source=\"5\" dest=\"9\"/><Connection source=\"6\" dest=\"0\"/>"
        "<Connection source=\"0\" dest=\"10\"/><Connection source=\"-1\" dest=\"0\"/>"
        "<Connection source=\"4294967298\" dest=\"2\"/><Connection source=\"none\" dest=\"3\"/>"
        "</ModMatrix>"));

    // Attribute names count exactly: a connection that gives none in ours is 0 to 0.
    EXPECT_EQ (connectionList (processor),
               (std::vector<std::string> { "7>9", "0>4", "0>3", "0>5", "2>6", "0>0" }));
    EXPECT_EQ (routeList (processor), (std::vector<std::string> { "5>9", "0>1", "0>3" }));
    EXPECT_TRUE (processor.getModConnection (5, 9));
    EXPECT_FALSE (processor.getModConnection (1, 2));
    EXPECT_EQ (processor.engine->filter1.active, 1);
    EXPECT_EQ (processor.engine->filter2.active, 1);

    load (documentWith ("<Parameters/><SignalMatrix><Connection input=\"0\" output=\"5\"/>"
                        "</SignalMatrix>"));
    EXPECT_EQ (processor.engine->filter1.active, 0);
    EXPECT_EQ (processor.engine->filter2.active, 1);
}

TEST_F (PresetReader, KeepsAParameterThatTheDocumentLacksAndAppendsTheMissingOnesById)
{
    scramble (processor, 3);
    std::vector<float> before;

    for (auto* parameter : processor.getParameters())
        before.push_back (parameter->getValue());

    load (documentWithParams ("<PARAM id=\"Kill\" value=\"1.000000\"/><PARAM id=\"Dry Level\"/>"));

    before[Kill] = 1.0f;

    for (int i = 0; i < processor.getParameters().size(); ++i)
        EXPECT_EQ (processor.getParameters()[i]->getValue(), before[static_cast<std::size_t> (i)])
            << paramMapper[i].name;

    const auto document = juce::parseXML (textOf (processor));
    juce::StringArray ids;

    for (const auto* param : document->getChildByName ("Parameters")->getChildIterator())
    {
        ids.add (param->getStringAttribute ("id"));
        EXPECT_TRUE (param->hasAttribute ("value")) << ids[ids.size() - 1];
    }

    ASSERT_EQ (ids.size(), 57);
    EXPECT_EQ (ids[0], "Kill");
    EXPECT_EQ (ids[1], "Dry Level");
    EXPECT_EQ (ids[2], "Delay 1 Bypass");
    EXPECT_EQ (ids[56], "Wet Level");

    for (int i = 3; i < 57; ++i)
        EXPECT_LT (ids[i - 1].compare (ids[i]), 0) << ids[i];
}

TEST_F (PresetReader, LetsNoIllegalNumberIntoTheStoreNorKeepsItsText)
{
    for (const char* const text : { "nan", "NaN", "-nan", "abc", "", "12abc", "1,5", "0x10", "--5",
                                    "1e", "e5", ".", "infinit", "1 2", "+-5", "+nan", "&#x661;" })
    {
        processor.parameterTree.getParameter ("Delay 1 Time")->setValueNotifyingHost (0.25f);
        load (documentWithParams ("<PARAM id=\"Delay 1 Time\" value=\"" + juce::String (text) +
                                  "\"/>"));
        EXPECT_EQ (valueOf (processor, "Delay 1 Time"), 251.5f) << text;
        EXPECT_EQ (valueTextIn (textOf (processor), "Delay 1 Time"), "251.5") << text;
    }

    struct End
    {
        const char *text, *wanted;
    };

    for (const auto& [text, wanted] :
         { End { "inf", "1000.0" }, End { "-INF", "2.0" }, End { "+inf", "1000.0" },
           End { "1e999", "1000.0" }, End { "-1e999", "2.0" }, End { "1000.1", "1000.0" },
           End { "1.999", "2.0" }, End { "0", "2.0" }, End { "5e5", "1000.0" },
           End { "1e9999999", "1000.0" }, End { "-1e99999999999999999999", "2.0" },
           End { "5e-99999999999999999999", "2.0" }, End { "-5e-999", "2.0" } })
    {
        // From both ends: a store that stands where the text leads doesn't hear of it.
        for (const float start : { 0.0f, 0.5f, 1.0f })
        {
            processor.parameterTree.getParameter ("Delay 1 Time")->setValueNotifyingHost (start);
            load (documentWithParams ("<PARAM id=\"Delay 1 Time\" value=\"" + juce::String (text) +
                                      "\"/>"));
            EXPECT_EQ (valueTextIn (textOf (processor), "Delay 1 Time"), wanted)
                << text << " from " << start;
            EXPECT_EQ (valueOf (processor, "Delay 1 Time"), juce::String (wanted).getFloatValue());
        }
    }

    for (const auto& [text, wanted] :
         { End { "+7.5", "7.5" }, End { "1e2", "100" }, End { "2.5E+1", "25" }, End { ".5e1", "5" },
           End { "300.", "300" } })
    {
        load (documentWithParams ("<PARAM id=\"Delay 1 Time\" value=\"" + juce::String (text) +
                                  "\"/>"));
        EXPECT_NEAR (valueOf (processor, "Delay 1 Time"), juce::String (wanted).getFloatValue(),
                     1e-4f)
            << text;
    }
}

TEST_F (PresetReader, TakesNumbersOfAnyLengthAndKeepsNoTextThatTheStoreWouldMisread)
{
    const juce::String zeros = juce::String::repeatedString ("0", 130);
    const juce::String hundreds = juce::String::repeatedString ("0", 400);

    const std::pair<juce::String, juce::String> kTexts[] = {
        { "400." + zeros, "400.0" },
        { zeros + "400", "400.0" },
        { "1e0000002", "1e0000002" },
        { "1e000000000000002", "100.0" },
        { "1" + hundreds + "e-398", "100.0" },
        { "0." + hundreds + "1e403", "100.0" },
        { "0." + hundreds + "1", "2.0" },     // below the smallest of all doubles
        { "1" + hundreds + ".5", "1000.0" },  // above the largest
        { "0.000000000000000000000004e26", "400.0" },
    };

    for (const auto& [text, wanted] : kTexts)
    {
        processor.parameterTree.getParameter ("Delay 1 Time")->setValueNotifyingHost (0.3f);
        load (documentWithParams ("<PARAM id=\"Delay 1 Time\" value=\"" + text + "\"/>"));
        EXPECT_EQ (valueTextIn (textOf (processor), "Delay 1 Time"), wanted) << text;
        EXPECT_EQ (valueOf (processor, "Delay 1 Time"), wanted.getFloatValue()) << text;
    }
}

TEST_F (PresetReader, LoadsOverAValueOfTheHostThatIsNoNumber)
{
    auto* const time = processor.parameterTree.getParameter ("Delay 1 Time");
    time->setValueNotifyingHost (std::numeric_limits<float>::quiet_NaN());
    load (documentWithParams ("<PARAM id=\"Delay 1 Time\" value=\"nan\"/>"));
    EXPECT_EQ (valueOf (processor, "Delay 1 Time"), 500.0f);
}

TEST_F (PresetReader, TakesNamesInAnyCaseAndWritesThemExactly)
{
    load ("<velkorsettings PresetName=\"Case\"><parameters><param id=\"Delay 1 Time\" value=\"7\"/>"
          "<Param ID=\"Delay 2 Time\" value=\"8\"/></parameters>"
          "<SIGNALMATRIX><Connection input=\"1\" output=\"2\"/></SIGNALMATRIX></velkorsettings>");
    EXPECT_EQ (processor.presetName, "Case");
    EXPECT_EQ (valueOf (processor, "Delay 1 Time"), 7.0f);
    EXPECT_EQ (valueOf (processor, "Delay 2 Time"), 501.0f);
    EXPECT_EQ (connectionList (processor), std::vector<std::string> { "1>2" });

    const auto text = textOf (processor);
    EXPECT_TRUE (text.contains ("<VelkorSettings PresetName=\"Case\" Version=\"65536\">"));
    EXPECT_TRUE (text.contains ("  <Parameters>\r\n    <PARAM id=\"Delay 1 Time\" value=\"7\"/>"))
        << text;
    EXPECT_FALSE (text.contains ("aram "));
    EXPECT_FALSE (text.contains ("<parameters"));
    EXPECT_EQ (processor.parameterTree.state.getType().toString(), "Parameters");
}

TEST_F (PresetReader, LetsTheLastOfEqualIdsWinAndWritesOne)
{
    load (documentWithParams ("<PARAM id=\"Delay 1 Time\" value=\"7\"/>"
                              "<PARAM id=\"Kill\" value=\"1\"/>"
                              "<PARAM id=\"Delay 1 Time\" value=\"8\"/>"));
    EXPECT_EQ (valueOf (processor, "Delay 1 Time"), 8.0f);
    EXPECT_EQ (valueTextIn (textOf (processor), "Delay 1 Time"), "8");
    processor.parameterTree.getParameter ("Delay 1 Time")->setValueNotifyingHost (0.5f);
    EXPECT_EQ (valueTextIn (textOf (processor), "Delay 1 Time"), "501.0");
}

TEST_F (PresetReader, KeepsWhatItDoesNotKnowAmongTheParameters)
{
    load (documentWithParams ("<PARAM id=\"Delay 3 Time\" value=\"nan\"/>"
                              "<Other a=\"1\"><Deep/></Other>words"
                              "<PARAM id=\"Kill\" value=\"1\" midi=\"74\"/>"));
    const auto text = textOf (processor);
    EXPECT_TRUE (text.contains ("    <PARAM id=\"Delay 3 Time\" value=\"nan\"/>\r\n"
                                "    <Other a=\"1\">\r\n      <Deep/>\r\n    </Other>\r\n"
                                "    <PARAM id=\"Kill\" value=\"1\" midi=\"74\"/>\r\n"))
        << text;
}

TEST_F (PresetReader, DoesNotTakeAnotherElementsIdForAParameter)
{
    load (
        documentWithParams ("<PARAM id=\"Pan 1\" value=\"0.5\"/><Other id=\"Kill\" value=\"nan\"/>"
                            "<Other id=\"Pan 1\" value=\"7\"/>"));
    EXPECT_EQ (valueOf (processor, "Kill"), 0.0f);
    EXPECT_EQ (valueOf (processor, "Pan 1"), 0.5f);
    EXPECT_FALSE (textOf (processor).contains ("Other"));
}

TEST_F (PresetReader, TakesAMissingNameAsEmptyAndBringsMarkupInNamesBothWays)
{
    load ("<VelkorSettings><Parameters/></VelkorSettings>");
    EXPECT_EQ (processor.presetName, "");

    const auto name = juce::String::fromUTF8 ("\"Tom & 'Jerry'\" <\xc3\xbc\xe2\x82\xac> \t\n.");
    processor.presetName = name;
    const auto text = textOf (processor);
    juce::MemoryBlock chunk;
    processor.getStateInformation (chunk);

    processor.presetName = "other";
    load (text);
    EXPECT_EQ (processor.presetName, name);
    processor.presetName = "other";
    processor.setStateInformation (chunk.getData(), static_cast<int> (chunk.getSize()));
    EXPECT_EQ (processor.presetName, name);
}

TEST_F (PresetReader, ClearsTheUndoHistoryAndTellsTheHostWhatChanged)
{
    processor.undoManager.beginNewTransaction();
    processor.parameterTree.getParameter ("Kill")->setValueNotifyingHost (1.0f);
    (void) processor.parameterTree.copyState();  // flushes, which makes the undo action
    ASSERT_TRUE (processor.undoManager.canUndo());
    host.changes = 0;

    load (kNoMatrices);
    EXPECT_FALSE (processor.undoManager.canUndo());
    EXPECT_EQ (host.changes, 1);
    EXPECT_TRUE (host.last.latencyChanged && host.last.parameterInfoChanged &&
                 host.last.programChanged && ! host.last.nonParameterStateChanged);
}

TEST_F (PresetReader, ShowsAFailureOnlyForFilesAndOnlyAsTheName)
{
    scramble (processor, 4);
    processor.presetName = "Before";
    const auto before = textOf (processor);
    host.changes = 0;

    putFile (presets ("bad.zbpreset"), "<VelkorSettings PresetName=\"x\"");
    putFile (presets ("empty.zbpreset"), "");
    putFile (presets ("other.zbpreset"), "<Other PresetName=\"x\"><Parameters/></Other>");

    for (const char* const name : { "bad.zbpreset", "empty.zbpreset", "none.zbpreset", "User" })
    {
        processor.presetName = "Before";
        setStateFromFile (processor, presets (name));
        EXPECT_EQ (processor.presetName, "Error Loading Preset") << name;
        processor.presetName = "Before";
        EXPECT_EQ (textOf (processor), before) << name;
    }

    setStateFromFile (processor, presets ("other.zbpreset"));
    EXPECT_EQ (processor.presetName, "Before");
    EXPECT_EQ (host.changes, 0);
}
