// SPDX-License-Identifier: AGPL-3.0-or-later
#include "parameters/build_parameters.h"
#include "parameters/parameter_table.h"
#include "support/parameter_store.h"
#include "tools/render_run.h"

#include <map>

// The manual says what the code says: names, ranges and defaults; each worked patch is what its command makes.

namespace
{
juce::File docs()
{
    return juce::File (VELKOR_TEST_DATA).getSiblingFile ("docs");
}

juce::String manual()
{
    return docs().getChildFile ("manual.md").loadFileAsString();
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
    std::map<juce::String, int> told;

    for (const auto& line : juce::StringArray::fromLines (manual()))
    {
        // | controls | panel | range | default | what it does |
        const auto cells = juce::StringArray::fromTokens (line, "|", "");

        if (cells.size() != 7)
            continue;

        const auto controls = juce::StringArray::fromTokens (cells[1], "`", "");

        for (int i = 1; i < controls.size(); i += 2)  // what stands between two of them
        {
            const auto& name = controls[i];
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

TEST_F (Manual, EveryPatchIsWhatItsCommandMakes)
{
    const auto text = manual().replace ("\\\n", " ");
    int checked = 0;

    for (const auto& line : juce::StringArray::fromLines (text))
    {
        if (! line.startsWith ("    velkor-render ") || ! line.contains ("--save-preset"))
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
