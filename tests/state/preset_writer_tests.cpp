// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/state_carriers.h"
#include "state_fixture.h"

#include <sstream>

class PresetWriter : public StateTest
{
protected:
    VelkorAudioProcessor processor;
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
    const std::string text = singleLine (wanted, " uiWidth=\"1234\" uiHeight=\"-5\"");
    EXPECT_EQ (std::string (chunk.begin() + 8, chunk.getSize() - 8), text + '\0');
    EXPECT_EQ (std::string (chunk.begin(), 4), "VC2!");
    EXPECT_EQ (juce::ByteOrder::littleEndianInt (chunk.begin() + 4), text.size());
}

TEST_F (PresetWriter, OrdersTheMatricesByOutputAndBySource)
{
    setStateFromText (processor, documentWith ("<Parameters/><SignalMatrix/><ModMatrix/>"));

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

TEST_F (PresetWriter, KeepsADocumentsTextsAndOrderUntilTheParameterMovesAndThenWritesTheNumber)
{
    setStateFromText (processor,
                      documentWithParams ("<PARAM id=\"Delay 2 Time\" value=\"0007.250000\"/>"
                                          "<PARAM id=\"Pan 1 Mod\" value=\"-0.500000\"/>"
                                          "<PARAM id=\"Delay 1 Time\" value=\" 750 \"/>"));

    // 501 lies at 0.5 of its range, so no rounding comes into it.
    EXPECT_EQ (valueTextIn (textOf (processor), "Delay 1 Time"), " 750 ");
    processor.parameterTree.getParameter ("Delay 1 Time")->setValueNotifyingHost (0.5f);
    EXPECT_TRUE (
        textOf (processor).contains ("  <Parameters>\r\n"
                                     "    <PARAM id=\"Delay 2 Time\" value=\"0007.250000\"/>\r\n"
                                     "    <PARAM id=\"Pan 1 Mod\" value=\"-0.500000\"/>\r\n"
                                     "    <PARAM id=\"Delay 1 Time\" value=\"501.0\"/>\r\n"))
        << textOf (processor);
}

TEST_F (PresetWriter, NamesAPresetAfterItsFileAndTellsTheHostOnceItIsWritten)
{
    HostListener host;
    processor.addListener (&host);

    ASSERT_TRUE (saveStateToFile (processor, presets ("User/Foo & \"Bar\".zbpreset")));
    EXPECT_EQ (processor.presetName, "Foo & \"Bar\"");
    EXPECT_EQ (host.changes, 1);

    // A folder that isn't there: the name has changed by then, the host is not told.
    EXPECT_FALSE (saveStateToFile (processor, presets ("Nowhere/Baz.zbpreset")));
    EXPECT_EQ (processor.presetName, "Baz");
    EXPECT_EQ (host.changes, 1);

    setStateFromFile (processor, presets ("User/Foo & \"Bar\".zbpreset"));
    EXPECT_EQ (processor.presetName, "Foo & \"Bar\"");
    processor.removeListener (&host);
}
