// SPDX-License-Identifier: AGPL-3.0-or-later
#include "tools/render_run.h"

#include <cmath>
#include <map>
#include <regex>
#include <set>

// The manual's commands: the options that it names exist, none is left out, and each worked patch is what its command
// makes.

namespace
{
juce::File docs()
{
    return juce::File (VELKOR_TEST_DATA).getSiblingFile ("docs");
}

/** Every option that a text names. */
std::set<std::string> optionsIn (const std::string& text)
{
    static const std::regex option ("(^|[ `\\[(,|])(--[a-z][a-z-]*)");
    std::set<std::string> found;

    for (auto it = std::sregex_iterator (text.begin(), text.end(), option);
         it != std::sregex_iterator(); ++it)
        found.insert ((*it)[2]);

    return found;
}

/** The chapter of the manual that bears a heading. */
juce::String chapter (const juce::String& heading)
{
    return docs()
        .getChildFile ("manual.md")
        .loadFileAsString()
        .fromFirstOccurrenceOf ("\n## " + heading + "\n", false, false)
        .upToFirstOccurrenceOf ("\n## ", false, false);
}

/** The arguments of the commands that make the worked patches. */
std::vector<Words> patchCommands()
{
    const auto text = chapter ("Five worked patches").replace ("\\\n", " ");
    std::vector<Words> commands;

    for (const auto& line : juce::StringArray::fromLines (text))
        if (line.startsWith ("    velkor-render "))
        {
            Words words;

            for (const auto& word : juce::StringArray::fromTokens (line.trim(), " ", "\""))
                if (word.isNotEmpty())
                    words.push_back (word.unquoted().toStdString());

            commands.emplace_back (words.begin() + 1, words.end());
        }

    return commands;
}

std::map<juce::String, double> valuesOf (const juce::XmlElement& document)
{
    std::map<juce::String, double> values;

    for (const auto* param : document.getChildByName ("Parameters")->getChildIterator())
        values[param->getStringAttribute ("id")] = param->getDoubleAttribute ("value");

    return values;
}

juce::String matrixOf (const juce::XmlElement& document, const char* name)
{
    return document.getChildByName (name)->toString();
}
}  // namespace

class ManualCommands : public RenderTest
{
};

TEST_F (ManualCommands, EveryOptionIsToldAndNoOther)
{
    const auto help = optionsIn (run ({ "--help" }).out);
    EXPECT_GT (help.size(), 15u);
    EXPECT_EQ (optionsIn (chapter ("The command-line renderer").toStdString()), help);
}

TEST_F (ManualCommands, EveryPatchIsWhatItsCommandMakes)
{
    const auto commands = patchCommands();
    EXPECT_EQ (commands.size(), 5u);

    for (const auto& command : commands)
    {
        SCOPED_TRACE (command.back());
        const auto outcome = run (command);
        EXPECT_EQ (outcome.exitCode, 0) << outcome.err;
        const auto made = juce::parseXML (file (command.back()));
        const auto kept = juce::parseXML (
            docs().getChildFile ("patches").getChildFile (juce::String (command.back())));

        if (made == nullptr || kept == nullptr)
        {
            ADD_FAILURE() << "is not there";
            continue;
        }

        EXPECT_EQ (kept->getStringAttribute ("PresetName"),
                   made->getStringAttribute ("PresetName"));
        EXPECT_EQ (matrixOf (*kept, "SignalMatrix"), matrixOf (*made, "SignalMatrix"));
        EXPECT_EQ (matrixOf (*kept, "ModMatrix"), matrixOf (*made, "ModMatrix"));
        const auto values = valuesOf (*kept);
        EXPECT_EQ (values.size(), 57u);

        for (const auto& [id, value] : valuesOf (*made))
            EXPECT_NEAR (values.at (id), value, 1e-6 * std::max (1.0, std::abs (value))) << id;
    }
}
