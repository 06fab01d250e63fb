// SPDX-License-Identifier: AGPL-3.0-or-later
#include "parameters/build_parameters.h"
#include "parameters/parameter_table.h"
#include "support/parameter_store.h"
#include "tools/render_run.h"

#include <map>
#include <regex>
#include <set>

// The manual says what the code says: names, ranges, defaults and options; every link leads somewhere, and
// each worked patch is what its command makes.

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

/** The chapter of the manual that bears a heading. */
juce::String chapter (const juce::String& heading)
{
    return docs()
        .getChildFile ("manual.md")
        .loadFileAsString()
        .fromFirstOccurrenceOf ("\n## " + heading + "\n", false, false)
        .upToFirstOccurrenceOf ("\n## ", false, false);
}

/** The lines of a document, without what is code. */
juce::StringArray proseOf (const juce::File& file)
{
    juce::StringArray lines, prose;
    file.readLines (lines);

    for (const auto& line : lines)
        if (! line.startsWith ("    "))
            prose.add (line);

    return prose;
}

juce::String rangeOf (const juce::RangedAudioParameter& parameter)
{
    if (const auto* choice = dynamic_cast<const juce::AudioParameterChoice*> (&parameter))
        return choice->choices.joinIntoString (", ");

    const auto lowest = parameter.getText (0.0f, 100), highest = parameter.getText (1.0f, 100);
    return lowest + (parameter.getNumSteps() == 2 ? ", " : " to ") + highest;
}

/** What a document's headings' links are called: lower case, blanks to hyphens, other signs left out. */
std::set<juce::String> anchorsOf (const juce::File& file)
{
    std::set<juce::String> anchors;

    for (const auto& line : proseOf (file))
        if (line.startsWithChar ('#'))
            anchors.insert (line.trimCharactersAtStart ("#")
                                .trim()
                                .toLowerCase()
                                .replaceCharacter (' ', '-')
                                .retainCharacters ("abcdefghijklmnopqrstuvwxyz0123456789-_"));

    return anchors;
}
}  // namespace

class Manual : public RenderTest
{
};

TEST_F (Manual, TellsEveryParameterOnceWithItsRangeAndDefault)
{
    ParameterStore store (buildParameters());
    std::map<std::string, int> told;

    for (const auto& line : proseOf (docs().getChildFile ("manual.md")))
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

TEST_F (Manual, LinksOfTheDocumentsLeadSomewhere)
{
    int checked = 0;

    for (const char* name :
         { "docs/manual.md", "docs/design.md", "docs/presets.md", "README.md", "CHANGELOG.md" })
    {
        const auto document = docs().getSiblingFile (name);

        for (const juce::String target :
             allIn (proseOf (document).joinIntoString ("\n"), "\\]\\(([^)]+)\\)"))
        {
            if (target.contains ("://"))
                continue;

            const auto path =
                juce::URL::removeEscapeChars (target.upToFirstOccurrenceOf ("#", false, false));
            const auto anchor = target.fromFirstOccurrenceOf ("#", false, false);
            const auto leadsTo = path.isEmpty() ? document : document.getSiblingFile (path);
            EXPECT_TRUE (leadsTo.exists()) << name << ": " << target;
            EXPECT_TRUE (anchor.isEmpty() || anchorsOf (leadsTo).contains (anchor))
                << name << ": " << target;
            ++checked;
        }
    }

    EXPECT_GT (checked, 30);
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
        expectSamePatch (docs().getChildFile ("patches").getChildFile (command.back()),
                         file (command.back()));
        ++checked;
    }

    EXPECT_EQ (checked, 5);
}
