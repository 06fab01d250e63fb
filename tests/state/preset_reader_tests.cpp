// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/state_carriers.h"
#include "state_fixture.h"

#include <limits>

class PresetReader : public StateTest
{
protected:
    PresetReader() { processor.addListener (&host); }
    ~PresetReader() override { processor.removeListener (&host); }

    void load (const juce::String& text) { setStateFromText (processor, text); }

    /** Loads one value for the first delay's time where it stood at a place of its travel; what is saved then. */
    juce::String timeAfter (const juce::String& text, float place)
    {
        processor.parameterTree.getParameter ("Delay 1 Time")->setValueNotifyingHost (place);
        load (documentWithParams ("<PARAM id=\"Delay 1 Time\" value=\"" + text + "\"/>"));
        return valueTextIn (textOf (processor), "Delay 1 Time");
    }

    VelkorAudioProcessor processor;
    HostListener host;
};

TEST_F (PresetReader, TakesNoOtherDocumentAndShowsAFailureOnlyForFilesThatAreNone)
{
    scramble (processor, 1);
    processor.presetName = "Before";
    const auto before = textOf (processor);
    const auto file = presets ("any.zbpreset");
    host.changes = 0;

    const auto expectRefused = [&] (const char* text, const char* nameAfterwards)
    {
        load (text);
        EXPECT_EQ (textOf (processor), before) << text;
        putFile (file, text);
        setStateFromFile (processor, file);
        EXPECT_EQ (processor.presetName, nameAfterwards) << text;
        processor.presetName = "Before";
        EXPECT_EQ (textOf (processor), before) << text;
    };

    expectRefused ("<Other PresetName=\"x\"><Parameters/><SignalMatrix/></Other>", "Before");
    expectRefused ("<VelkorSettings2 PresetName=\"x\"><Parameters/></VelkorSettings2>", "Before");
    expectRefused ("<VelkorSettings PresetName=\"x\"><ModMatrix/></VelkorSettings>", "Before");
    expectRefused ("<VelkorSettings PresetName=\"x\"><Parameters/>", "Error Loading Preset");
    expectRefused ("no markup", "Error Loading Preset");
    expectRefused ("", "Error Loading Preset");

    setStateFromFile (processor, presets ("none.zbpreset"));
    EXPECT_EQ (processor.presetName, "Error Loading Preset");
    EXPECT_EQ (host.changes, 0);
}

TEST_F (PresetReader, LeavesMatricesThatTheDocumentLacksAndClearsThoseThatAreEmpty)
{
    scramble (processor, 2);
    const auto connections = connectionList (processor);
    const auto routes = routeList (processor);
    ASSERT_FALSE (connections.empty() || routes.empty());

    load (documentWith ("<Parameters/>"));
    EXPECT_EQ (processor.presetName, "Test");
    EXPECT_EQ (connectionList (processor), connections);
    EXPECT_EQ (routeList (processor), routes);

    load (documentWith ("<Parameters/><SignalMatrix/>"));
    EXPECT_TRUE (connectionList (processor).empty());
    EXPECT_EQ (routeList (processor), routes);

    load (documentWith ("<Parameters/><ModMatrix/>"));
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
}

TEST_F (PresetReader, KeepsAParameterThatTheDocumentLacksAndAppendsTheMissingOnesById)
{
    scramble (processor, 3);
    std::vector<float> before, after;

    for (auto* parameter : processor.getParameters())
        before.push_back (parameter->getValue());

    load (documentWithParams ("<PARAM id=\"Kill\" value=\"1.000000\"/><PARAM id=\"Dry Level\"/>"));

    for (auto* parameter : processor.getParameters())
        after.push_back (parameter->getValue());

    before[Kill] = 1.0f;
    EXPECT_EQ (after, before);

    const auto document = juce::parseXML (textOf (processor));
    juce::StringArray ids;

    for (const auto* param : document->getChildByName ("Parameters")->getChildIterator())
        ids.add (param->getStringAttribute ("id"));

    ASSERT_EQ (ids.size(), 57);
    auto wanted = ids;
    wanted.removeString ("Kill");
    wanted.removeString ("Dry Level");
    wanted.sort (false);
    wanted.insert (0, "Kill");
    wanted.insert (1, "Dry Level");
    EXPECT_EQ (ids, wanted);
}

TEST_F (PresetReader, LetsNoIllegalNumberIntoTheStoreNorKeepsItsText)
{
    for (const char* const text : { "nan", "-nan", "abc", "", "12abc", "1,5", "0x10", "--5", "1e",
                                    "e5", ".", "infinit", "1 2", "+-5", "&#x661;" })
        EXPECT_EQ (timeAfter (text, 0.25f), "251.5") << text;

    const juce::String zeros = juce::String::repeatedString ("0", 130);
    const juce::String hundreds = juce::String::repeatedString ("0", 400);

    // clang-format off
    const std::pair<juce::String, juce::String> kTexts[] = {
        { "inf", "1000.0" }, { "-INF", "2.0" }, { "-1e999", "2.0" }, { "1000.1", "1000.0" }, { "1.999", "2.0" },
        { "1e9999999", "1000.0" }, { "5e-99999999999999999999", "2.0" }, { "+7.5", "+7.5" }, { ".5e1", ".5e1" },
        { "400." + zeros, "400.0" }, { zeros + "400", "400.0" }, { "1e0000002", "1e0000002" },
        { "1e000000000000002", "100.0" }, { "1" + hundreds + "e-398", "100.0" }, { "0." + hundreds + "1e403", "100.0" },
        { "0." + hundreds + "1", "2.0" },     // below the smallest of all doubles
        { "1" + hundreds + ".5", "1000.0" },  // above the largest
    };
    // clang-format on

    // From both ends: a store that stands where the text leads doesn't hear of it.
    for (const auto& [text, wanted] : kTexts)
        for (const float place : { 0.0f, 0.3f, 1.0f })
        {
            EXPECT_EQ (timeAfter (text, place), wanted) << text << " from " << place;
            EXPECT_NEAR (valueOf (processor, "Delay 1 Time"), wanted.getFloatValue(), 1e-4f)
                << text << " from " << place;
        }

    // The host's own are no better.
    EXPECT_EQ (timeAfter ("nan", std::numeric_limits<float>::quiet_NaN()), "500.0");
    EXPECT_EQ (valueOf (processor, "Delay 1 Time"), 500.0f);
}

TEST_F (PresetReader, TakesNamesInAnyCaseAndWritesThemExactly)
{
    load ("<velkorsettings PresetName=\"Case\"><parameters><param id=\"Delay 1 Time\" value=\"7\"/>"
          "<Param ID=\"Delay 2 Time\" value=\"8\"/></parameters>"
          "<SIGNALMATRIX><Connection input=\"1\" output=\"2\"/></SIGNALMATRIX></velkorsettings>");
    EXPECT_EQ (valueOf (processor, "Delay 1 Time"), 7.0f);
    EXPECT_EQ (valueOf (processor, "Delay 2 Time"), 501.0f);
    EXPECT_EQ (connectionList (processor), std::vector<std::string> { "1>2" });

    const auto text = textOf (processor);
    EXPECT_TRUE (text.contains ("<VelkorSettings PresetName=\"Case\" Version=\"65536\">\r\n"
                                "  <Parameters>\r\n    <PARAM id=\"Delay 1 Time\" value=\"7\"/>"));
    EXPECT_FALSE (text.contains ("aram "));
}

TEST_F (PresetReader, KeepsWhatItDoesNotKnowAndOfEqualIdsTheLast)
{
    load (
        documentWithParams ("<PARAM id=\"Delay 3 Time\" value=\"nan\"/>"
                            "<Other a=\"1\"><Deep/></Other>words"
                            "<PARAM id=\"Pan 1\" value=\"0.25\"/><Other id=\"Pan 1\" value=\"7\"/>"
                            "<PARAM id=\"Pan 1\" value=\"0.5\" midi=\"74\"/>"
                            "<Other id=\"Kill\" value=\"nan\"/>"));
    EXPECT_EQ (valueOf (processor, "Pan 1"), 0.5f);
    EXPECT_EQ (valueOf (processor, "Kill"), 0.0f);
    EXPECT_TRUE (textOf (processor).contains (
        "  <Parameters>\r\n    <PARAM id=\"Delay 3 Time\" value=\"nan\"/>\r\n"
        "    <Other a=\"1\">\r\n      <Deep/>\r\n    </Other>\r\n"
        "    <PARAM id=\"Pan 1\" value=\"0.5\" midi=\"74\"/>\r\n    <PARAM id=\"Delay 1 Bypass\""))
        << textOf (processor);
}

TEST_F (PresetReader, KeepsAsManyUnknownParametersAsALaterVersionMayHave)
{
    constexpr int kLater = 2000;
    juce::String params;

    for (int i = 0; i < kLater; ++i)
        params << "    <PARAM id=\"Later Parameter " << i << "\" value=\"0.863269\"/>\r\n";

    load (documentWithParams (params));
    EXPECT_TRUE (textOf (processor).contains (params));
}

TEST_F (PresetReader, ClearsTheUndoHistoryAndTellsTheHostWhatChanged)
{
    processor.undoManager.beginNewTransaction();
    processor.parameterTree.getParameter ("Kill")->setValueNotifyingHost (1.0f);
    (void) processor.parameterTree.copyState();  // flushes, which makes the undo action
    ASSERT_TRUE (processor.undoManager.canUndo());
    host.changes = 0;

    load ("<VelkorSettings><Parameters/></VelkorSettings>");
    EXPECT_EQ (processor.presetName, "");
    EXPECT_FALSE (processor.undoManager.canUndo());
    EXPECT_EQ (host.changes, 1);
    EXPECT_TRUE (host.last.latencyChanged && host.last.parameterInfoChanged &&
                 host.last.programChanged && ! host.last.nonParameterStateChanged);
}

TEST_F (PresetReader, OnAnotherThreadLoadsAndSavesTheSameAndLeavesTheHistoryToTheMessageThread)
{
    const auto text = documentWithParams ("<PARAM id=\"Delay 3 Time\" value=\"nan\"/>"
                                          "<PARAM id=\"Pan 1\" value=\"0.2500\" midi=\"74\"/>"
                                          "<PARAM id=\"LFO 1 Rate\" value=\"7.250000\"/>"
                                          "<PARAM id=\"Kill\" value=\"0.0\"/>");
    load (text);
    const auto wanted = textOf (processor);
    scramble (processor, 7);
    (void) processor.parameterTree.copyState();  // flushes, which makes the undo action
    juce::String got;
    std::thread (
        [&]
        {
            load (wanted);
            got = textOf (processor);
        })
        .join();
    EXPECT_EQ (got, wanted);
    EXPECT_EQ (textOf (processor), wanted);
    EXPECT_TRUE (processor.undoManager.canUndo());
    juce::MessageManager::getInstance()->runDispatchLoopUntil (50);
    EXPECT_FALSE (processor.undoManager.canUndo());
    EXPECT_EQ (textOf (processor), wanted);

    // The store goes on from there: a value that has moved and come back is the number, no longer
    // the text.
    for (const float pan : { 0.5f, 0.25f })
    {
        auto* const parameter = processor.parameterTree.getParameter ("Pan 1");
        processor.undoManager.beginNewTransaction();
        parameter->setValueNotifyingHost (parameter->convertTo0to1 (pan));
        (void) processor.parameterTree.copyState();
    }

    EXPECT_EQ (textOf (processor), wanted.replace ("0.2500", "0.25"));
    EXPECT_TRUE (processor.undoManager.undo());
    EXPECT_EQ (valueOf (processor, "Pan 1"), 0.5f);
}
