// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/state_carriers.h"
#include "state_fixture.h"

#include <limits>
#include <sstream>
#include <string>

class PresetWriter : public StateTest
{
};

/** A file's text as a chunk has it: no line ends and no indents, and more attributes behind the root's. */
static std::string singleLine (const std::string& fileText, const std::string& rootAttributes)
{
    std::istringstream lines (fileText);
    std::string line, result;

    while (std::getline (lines, line))
    {
        line.pop_back();  // the carriage return
        line.erase (0, line.find_first_not_of (' '));

        if (line.starts_with ("<VelkorSettings"))
            line.insert (line.size() - 1, rootAttributes);

        result += line.starts_with ("<?xml") ? line + " " : line;
    }

    return result;
}

TEST_F (PresetWriter, WritesTheUntouchedDefaultPresetByteForByteInEachCarrier)
{
    VelkorAudioProcessor processor;
    const std::string wanted = keptDocument ("default_saved.zbpreset");
    ASSERT_GT (wanted.size(), 3000u);
    EXPECT_EQ (textOf (processor).toStdString(), wanted);

    const auto file = presets ("User/Default.zbpreset");
    ASSERT_TRUE (saveStateToFile (processor, file));
    EXPECT_EQ (bytesOf (file), wanted);

    juce::MemoryBlock chunk;
    processor.uiWidth = 1234;
    processor.uiHeight = -5;
    processor.getStateInformation (chunk);
    const std::string_view got (chunk.begin(), chunk.getSize());
    const std::string text = singleLine (wanted, " uiWidth=\"1234\" uiHeight=\"-5\"");
    ASSERT_EQ (got.size(), 8 + text.size() + 1);
    EXPECT_EQ (got.substr (0, 4), "VC2!");
    EXPECT_EQ (juce::ByteOrder::littleEndianInt (got.data() + 4), got.size() - 9);
    EXPECT_EQ (got.substr (8, text.size()), text);
    EXPECT_EQ (got.back(), '\0');
}

TEST_F (PresetWriter, OrdersTheMatricesAndWritesEmptyOnesToo)
{
    VelkorAudioProcessor processor;

    for (int destination = 0; destination < kNumSignalDests; ++destination)
        for (int source = 0; source < kNumSignalSources; ++source)
            processor.setSignalConnection (source, destination, false);

    EXPECT_TRUE (textOf (processor).contains ("  <SignalMatrix/>\r\n  <ModMatrix/>\r\n"));

    // Made in an order that is neither that of writing nor its reverse.
    for (const auto& [source, destination] : { std::pair { 7, 9 }, { 0, 9 }, { 7, 0 }, { 3, 4 } })
        processor.setSignalConnection (source, destination, true);

    for (const auto& [source, dest] : { std::pair { 5, 0 }, { 0, 9 }, { 5, 9 }, { 2, 4 } })
        processor.setModConnection (source, dest, true);

    EXPECT_TRUE (textOf (processor).contains ("  <SignalMatrix>\r\n"
                                              "    <Connection input=\"7\" output=\"0\"/>\r\n"
                                              "    <Connection input=\"3\" output=\"4\"/>\r\n"
                                              "    <Connection input=\"0\" output=\"9\"/>\r\n"
                                              "    <Connection input=\"7\" output=\"9\"/>\r\n"
                                              "  </SignalMatrix>\r\n"
                                              "  <ModMatrix>\r\n"
                                              "    <Connection source=\"0\" dest=\"9\"/>\r\n"
                                              "    <Connection source=\"2\" dest=\"4\"/>\r\n"
                                              "    <Connection source=\"5\" dest=\"0\"/>\r\n"
                                              "    <Connection source=\"5\" dest=\"9\"/>\r\n"
                                              "  </ModMatrix>\r\n"))
        << textOf (processor);
}

TEST_F (PresetWriter, KeepsADocumentsTextUntilTheParameterMovesAndThenWritesTheNumber)
{
    VelkorAudioProcessor processor;
    setStateFromText (processor,
                      documentWithParams ("<PARAM id=\"Delay 1 Time\" value=\"0007.250000\"/>"
                                          "<PARAM id=\"Delay 2 Time\" value=\" 750 \"/>"));
    EXPECT_EQ (valueTextIn (textOf (processor), "Delay 1 Time"), "0007.250000");
    EXPECT_EQ (valueTextIn (textOf (processor), "Delay 2 Time"), " 750 ");

    // 501 lies at 0.5 of its range, so no rounding comes into it.
    processor.parameterTree.getParameter ("Delay 2 Time")->setValueNotifyingHost (0.5f);
    EXPECT_EQ (valueTextIn (textOf (processor), "Delay 2 Time"), "501.0");
    EXPECT_EQ (valueTextIn (textOf (processor), "Delay 1 Time"), "0007.250000");
}

TEST_F (PresetWriter, ReplacesAllOfTheElementThatItIsGiven)
{
    VelkorAudioProcessor processor;
    juce::XmlElement target ("Other");
    target.setAttribute ("old", 1);
    target.createNewChildElement ("Old");
    processor.saveStateToXML (target);
    EXPECT_EQ (target.getTagName(), "VelkorSettings");
    EXPECT_EQ (target.getNumAttributes(), 2);
    EXPECT_EQ (target.getNumChildElements(), 3);
}

TEST_F (PresetWriter, NamesAPresetAfterItsFileAndTellsTheHostOnceItIsWritten)
{
    VelkorAudioProcessor processor;
    HostListener host;
    processor.addListener (&host);

    ASSERT_TRUE (saveStateToFile (processor, presets ("User/Foo & \"Bar\".zbpreset")));
    EXPECT_EQ (processor.presetName, "Foo & \"Bar\"");
    EXPECT_EQ (host.changes, 1);
    EXPECT_TRUE (host.last.latencyChanged && host.last.parameterInfoChanged &&
                 host.last.programChanged && ! host.last.nonParameterStateChanged);

    // A folder that isn't there: the name has changed by then, the host is not told.
    EXPECT_FALSE (saveStateToFile (processor, presets ("Nowhere/Baz.zbpreset")));
    EXPECT_EQ (processor.presetName, "Baz");
    EXPECT_EQ (host.changes, 1);

    setStateFromFile (processor, presets ("User/Foo & \"Bar\".zbpreset"));
    EXPECT_EQ (processor.presetName, "Foo & \"Bar\"");
    processor.removeListener (&host);
}

TEST_F (PresetWriter, WritesTheDefaultWhereAHostHasSetWhatIsNoNumber)
{
    VelkorAudioProcessor processor;
    auto* const time = processor.parameterTree.getParameter ("Delay 1 Time");
    time->setValueNotifyingHost (std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ (valueTextIn (textOf (processor), "Delay 1 Time"), "500.0");
}
