// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/sync_beats.h"
#include "parameters/build_parameters.h"
#include "parameters/parameter_table.h"
#include "parameters/sync_display_parameter.h"
#include "support/parameter_store.h"

#include <cmath>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

// The manual says what the code says: names, ranges, texts and beat lengths, and every link leads somewhere.

namespace
{
juce::File docs()
{
    return juce::File (VELKOR_TEST_DATA).getSiblingFile ("docs");
}

/** The lines of the manual, without what is code. */
juce::StringArray proseOf (const juce::File& file)
{
    juce::StringArray lines, prose;
    file.readLines (lines);

    for (const auto& line : lines)
        if (! line.startsWith ("    "))
            prose.add (line);

    return prose;
}

using Row = std::vector<juce::String>;

/** The cells of a table's line; none if it is no such line. */
Row cellsOf (const juce::String& line)
{
    Row cells;

    if (line.startsWithChar ('|'))
        for (const auto& cell : juce::StringArray::fromTokens (
                 line.substring (1, line.lastIndexOfChar ('|')), "|", ""))
            cells.push_back (cell.trim());

    return cells;
}

/** The rows of every table whose head starts with a word. */
std::vector<Row> tablesHeaded (const juce::String& word)
{
    std::vector<Row> rows;
    bool isInside = false, isHead = true;

    for (const auto& line : proseOf (docs().getChildFile ("manual.md")))
    {
        const auto cells = cellsOf (line);

        if (cells.empty())
            isHead = true;
        else if (isHead)
        {
            isInside = cells.front() == word && cells.size() > 2;
            isHead = false;
        }
        else if (isInside && ! cells.front().startsWith ("--"))
            rows.push_back (cells);
    }

    return rows;
}

/** What stands between the backquotes of a cell. */
std::vector<std::string> quotedIn (const juce::String& cell)
{
    static const std::regex quoted ("`([^`]+)`");
    const auto text = cell.toStdString();
    std::vector<std::string> found;

    for (auto it = std::sregex_iterator (text.begin(), text.end(), quoted);
         it != std::sregex_iterator(); ++it)
        found.push_back ((*it)[1]);

    return found;
}

juce::String rangeOf (const juce::RangedAudioParameter& parameter)
{
    if (const auto* choice = dynamic_cast<const juce::AudioParameterChoice*> (&parameter))
        return choice->choices.joinIntoString (", ");

    const auto lowest = parameter.getText (0.0f, 100), highest = parameter.getText (1.0f, 100);
    return lowest + (parameter.getNumSteps() == 2 ? ", " : " to ") + highest;
}

/** What a heading's link is called: lower case, blanks to hyphens, other signs left out. */
juce::String anchorOf (const juce::String& heading)
{
    return heading.trim().toLowerCase().replaceCharacter (' ', '-').retainCharacters (
        "abcdefghijklmnopqrstuvwxyz0123456789-_");
}

std::set<juce::String> anchorsOf (const juce::File& file)
{
    std::set<juce::String> anchors;

    for (const auto& line : proseOf (file))
        if (line.startsWithChar ('#'))
            anchors.insert (anchorOf (line.trimCharactersAtStart ("#")));

    return anchors;
}
}  // namespace

TEST (Manual, TellsEveryParameterOnceWithItsRangeAndDefault)
{
    ParameterStore store (buildParameters());
    std::map<std::string, int> told;

    for (const auto& row : tablesHeaded ("Control"))
    {
        if (row.size() != 5)
            continue;  // the table of typed values

        for (const auto& name : quotedIn (row[0]))
        {
            SCOPED_TRACE (name);
            ++told[name];
            const auto* parameter = store.state.getParameter (name);

            if (parameter == nullptr)
            {
                ADD_FAILURE() << "is no parameter";
                continue;
            }

            EXPECT_EQ (row[2], rangeOf (*parameter));
            EXPECT_EQ (row[3], parameter->getText (parameter->getDefaultValue(), 100));
        }
    }

    for (const auto& info : parameterInfo)
        EXPECT_EQ (told[info.name], 1) << info.name;
}

TEST (Manual, TellsEveryBeatLength)
{
    const auto rows = tablesHeaded ("Length");
    ASSERT_EQ (rows.size(), gBeatMults.size());
    const double tempos[] = { 80.0, 100.0, 120.0, 140.0, 170.0 };

    for (std::size_t i = 0; i < rows.size(); ++i)
    {
        const auto& row = rows[i];
        const auto beats = static_cast<double> (gBeatMults[i]);
        ASSERT_EQ (row.size(), 7u);
        EXPECT_EQ (row[0], SyncDisplayParameter::kBeatLabels[static_cast<int> (i)]);
        EXPECT_NEAR (row[1].getDoubleValue(), beats, 0.0005) << row[0];

        for (std::size_t n = 0; n < std::size (tempos); ++n)
            EXPECT_NEAR (row[n + 2].getDoubleValue(), beats * 60000.0 / tempos[n], 0.501)
                << row[0] << " at " << tempos[n];
    }
}

TEST (Manual, LinksOfTheDocumentsLeadSomewhere)
{
    static const std::regex link ("\\]\\(([^)]+)\\)");
    const auto root = docs().getParentDirectory();
    int checked = 0;

    for (const char* name :
         { "docs/manual.md", "docs/design.md", "docs/presets.md", "README.md", "CHANGELOG.md" })
    {
        const auto file = root.getChildFile (name);
        const auto text = proseOf (file).joinIntoString ("\n").toStdString();

        for (auto it = std::sregex_iterator (text.begin(), text.end(), link);
             it != std::sregex_iterator(); ++it)
        {
            const juce::String target ((*it)[1].str());

            if (target.contains ("://"))
                continue;

            const auto path =
                juce::URL::removeEscapeChars (target.upToFirstOccurrenceOf ("#", false, false));
            const auto anchor = target.fromFirstOccurrenceOf ("#", false, false);
            const auto leadsTo = path.isEmpty() ? file : file.getSiblingFile (path);
            EXPECT_TRUE (leadsTo.exists()) << name << ": " << target;

            EXPECT_TRUE (anchor.isEmpty() || anchorsOf (leadsTo).count (anchor) == 1)
                << name << ": " << target;
            ++checked;
        }
    }

    EXPECT_GT (checked, 30);
}
