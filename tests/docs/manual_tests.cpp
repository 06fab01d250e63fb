// SPDX-License-Identifier: AGPL-3.0-or-later
#include "parameters/build_parameters.h"
#include "parameters/parameter_table.h"
#include "support/parameter_store.h"
#include "tools/render_run.h"

#include <map>
#include <regex>
#include <set>

// The manual says what the code says: names, ranges, defaults and options; each worked patch is what its command makes.

namespace
{
juce::File docs()
{
    return juce::File (VELKOR_TEST_DATA).getSiblingFile ("docs");
}

/** What a pattern's first group catches, each time that it fits. */
std::vector<std::string> allIn (const juce::String& text, const char* pattern)
{
    const auto searched = text.toStdString();
    const std::regex regex (pattern);
    std::vector<std::string> found;

    for (auto it = std::sregex_iterator (searched.begin(), searched.end(), regex);
         it != std::sregex_iterator(); ++it)
        found.push_back ((*it)[1]);

    return found;
}

std::set<std::string> optionsIn (const juce::String& text)
{
    const auto found = allIn (text, "(?:^|[ `\\[(,|])(--[a-z][a-z-]*)");
    return { found.begin(), found.end() };
}

juce::String manual()
{
    return docs().getChildFile ("manual.md").loadFileAsString();
}

/** The chapter of the manual that bears a heading. */
juce::String chapter (const juce::String& heading)
{
    return manual()
        .fromFirstOccurrenceOf ("\n## " + heading + "\n", false, false)
        .upToFirstOccurrenceOf ("\n## ", false, false);
}

juce::String rangeOf (const juce::RangedAudioParameter& parameter)
{
    if (const auto* choice = dynamic_cast<const juce::AudioParameterChoice*> (&parameter))
        return choice->choices.joinIntoString (", ");

    const auto lowest = parameter.getText (0.0f, 100), highest = parameter.getText (1.0f, 100);
    return lowest + (parameter.getNumSteps() == 2 ? ", " : " to ") + highest;
}
}  // namespace

class Manual : public RenderTest
{
};

TEST_F (Manual, TellsEveryParameterOnceWithItsRangeAndDefault)
{
    ParameterStore store (buildParameters());
    std::map<std::string, int> told;

    for (const auto& line : juce::StringArray::fromLines (manual()))
    {
        // | controls | panel | range | default | what it does |
        const auto cells = juce::StringArray::fromTokens (line, "|", "");

        if (cells.size() != 7)
            continue;

        for (const auto& name : allIn (cells[1], "`([^`]+)`"))
        {
            ++told[name];
            const auto* parameter = store.state.getParameter (name);
            ASSERT_NE (parameter, nullptr) << name;
            EXPECT_EQ (cells[3].trim(), rangeOf (*parameter)) << name;
            EXPECT_EQ (cells[4].trim(), parameter->getText (parameter->getDefaultValue(), 100))
                << name;
        }
    }

    for (const auto& info : parameterInfo)
        EXPECT_EQ (told[info.name], 1) << info.name;
}

TEST_F (Manual, TellsEveryOptionAndNoOther)
{
    const auto help = optionsIn (run ({ "--help" }).out);
    EXPECT_GT (help.size(), 15u);
    EXPECT_EQ (optionsIn (chapter ("The command-line renderer")), help);
}

TEST_F (Manual, EveryPatchIsWhatItsCommandMakes)
{
    const auto text = chapter ("Five worked patches").replace ("\\\n", " ");
    int checked = 0;

    for (const auto& line : juce::StringArray::fromLines (text))
    {
        if (! line.startsWith ("    velkor-render "))
            continue;

        SCOPED_TRACE (line);
        Words command;

        for (const auto& word : juce::StringArray::fromTokens (line.trim(), " ", "\""))
            if (word.isNotEmpty())
                command.push_back (word.unquoted().toStdString());

        command.erase (command.begin());
        EXPECT_EQ (run (command).exitCode, 0);
        const auto kept = docs().getChildFile ("patches").getChildFile (command.back());
        expectSamePatch (savedSettings ({ "--preset", command.back() }),
                         savedSettings ({ "--preset", kept.getFullPathName().toStdString() }));
        ++checked;
    }

    EXPECT_EQ (checked, 5);
}
