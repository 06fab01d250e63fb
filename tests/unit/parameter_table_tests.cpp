// SPDX-License-Identifier: AGPL-3.0-or-later
#include "parameters/build_parameters.h"
#include "parameters/parameter_table.h"
#include "support/parameter_store.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace
{
using Lines = std::vector<std::string>;

std::string decimal (float value)
{
    char text[32];
    std::snprintf (text, sizeof (text), "%.6g", static_cast<double> (value) + 0.0);  // no "-0"
    return text;
}

std::string quoted (const juce::String& text)
{
    return text.quoted().toStdString();
}

std::string stepsOf (const juce::RangedAudioParameter& parameter)
{
    const auto steps = parameter.getNumSteps();

    return steps == juce::AudioProcessor::getDefaultNumParameterSteps()
               ? "continuous"
               : std::to_string (steps) + " steps";
}

/** The texts along the travel, each behind a space. */
std::string texts (const juce::RangedAudioParameter& parameter)
{
    std::string line;

    for (int position = 0; position <= 10; ++position)
        line += " " + quoted (parameter.getText (static_cast<float> (position) / 10.0f, 0));

    return line;
}

/** What each of the texts gives when it is typed in, in real units. */
std::string valuesBack (const juce::RangedAudioParameter& parameter)
{
    std::string line;

    for (int position = 0; position <= 10; ++position)
    {
        const auto text = parameter.getText (static_cast<float> (position) / 10.0f, 0);
        line += " " + decimal (parameter.convertFrom0to1 (parameter.getValueForText (text)));
    }

    return line;
}

/** The parameter at that place in the host's list, described by what the host can ask it. */
void describe (ParameterStore& store, int index, std::ostream& out)
{
    const auto* asHostSeesIt = store.processor.getParameters()[index];
    const auto& parameter = dynamic_cast<const juce::RangedAudioParameter&> (*asHostSeesIt);
    const auto& range = parameter.getNormalisableRange();
    const auto stored = store.state.getRawParameterValue (parameter.getParameterID())->load();

    out << index << " " << quoted (parameter.getParameterID()) << " named "
        << quoted (parameter.getName (100)) << " hint " << parameter.getVersionHint() << "\n";
    out << "  default " << decimal (stored) << " " << quoted (parameter.getCurrentValueAsText())
        << " label " << quoted (parameter.getLabel()) << " range " << decimal (range.start)
        << " to " << decimal (range.end) << " " << stepsOf (parameter) << "\n";
    out << "  texts" << texts (parameter) << "\n";
    out << "  back" << valuesBack (parameter) << "\n";
}

/** All parameters in the host's order, then the beats that the synced ones read as. */
void describeAll (std::ostream& out)
{
    ParameterStore store (buildParameters());
    linkSyncParameters (store.state);

    for (int i = 0; i < store.processor.getParameters().size(); ++i)
        describe (store, i, out);

    for (auto toggle : { Delay1Sync, Delay2Sync, LFO1Sync, LFO2Sync })
        store[toggle].setValueNotifyingHost (1.0f);

    for (auto time : { Delay1Time, Delay2Time, LFO1Rate, LFO2Rate })
        out << time << " synced" << texts (store[time]) << "\n";
}

/** The lines of a description, without comments. */
Lines linesOf (std::istream& description)
{
    Lines lines;

    for (std::string line; std::getline (description, line);)
        if (! line.empty() && line.front() != '#')
            lines.push_back (line);

    return lines;
}
}  // namespace

TEST (ParameterTable, EverythingTheHostCanAskAParameterIsAsInTheReference)
{
    std::ifstream file (VELKOR_TEST_DATA "/reference/parameters.txt");
    std::stringstream description;
    describeAll (description);

    const auto expected = linesOf (file);
    const auto actual = linesOf (description);

    ASSERT_EQ (expected.size(), 4u * 57u + 4u) << "the reference file is missing or cut";
    EXPECT_EQ (actual.size(), expected.size());

    for (std::size_t i = 0; i < std::min (expected.size(), actual.size()); ++i)
        EXPECT_EQ (actual[i], expected[i]) << "near " << expected[i - i % 4];
}

TEST (ParameterTable, IdIsFoundByItsExactTextOnly)
{
    for (int i = 0; i < kNumParameters; ++i)
        EXPECT_EQ (findParameter (paramMapper[i].name), static_cast<NumericalParamID> (i));

    for (const auto* unknown : { "", "Delay 1", "Delay 1 Time ", "delay 1 time", "Delay1Time" })
        EXPECT_EQ (findParameter (unknown), std::nullopt) << unknown;
}
