// SPDX-License-Identifier: AGPL-3.0-or-later
#include "parameters/build_parameters.h"
#include "parameters/sync_display_parameter.h"
#include "support/parameter_store.h"

#include <array>
#include <cstddef>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>

namespace
{
/** Shortest to longest. Each has the same share of the travel but for the last, which has less. */
constexpr std::array<const char*, 15> kLabels { "1/32", "1/16T", "1/16", "1/8T", "1/16D",
                                                "1/8",  "1/4T",  "1/8D", "1/4",  "1/2T",
                                                "1/4D", "1/2",   "1/1T", "1/2D", "1/1" };
constexpr float kIndicesPerTravel = 14.85f;  // 15 less one part in a hundred

/** A short way off a border between two beats, either side of which the label must differ. */
constexpr float kNear = 1e-4f;

struct Pair
{
    NumericalParamID time, toggle;
    bool inverted;
    const char* freeText;  ///< of the default
};

constexpr Pair kPairs[] = {
    { Delay1Time, Delay1Sync, false, "500 ms" },
    { Delay2Time, Delay2Sync, false, "500 ms" },
    { LFO1Rate, LFO1Sync, true, "1.00 Hz" },
    { LFO2Rate, LFO2Sync, true, "1.00 Hz" },
};

std::string textAt (const juce::RangedAudioParameter& parameter, float position)
{
    return parameter.getText (position, 0).toStdString();
}
}  // namespace

TEST (SyncDisplayParameter, EachOfTheFourFollowsItsOwnSwitchAndKeepsItsValue)
{
    ParameterStore store (buildParameters());
    linkSyncParameters (store.state);

    for (const auto& pair : kPairs)
    {
        const auto& time = store[pair.time];
        const auto value = time.getValue();

        for (const auto& other : kPairs)
            store[other.toggle].setValueNotifyingHost (other.toggle == pair.toggle ? 0.0f : 1.0f);

        EXPECT_EQ (time.getCurrentValueAsText(), pair.freeText) << "only the others are on";

        store[pair.toggle].setValueNotifyingHost (1.0f);
        EXPECT_EQ (textAt (time, 0.0f), pair.inverted ? "1/1" : "1/32");
        EXPECT_EQ (textAt (time, 1.0f), pair.inverted ? "1/32" : "1/1");
        EXPECT_EQ (time.getValue(), value);

        store[pair.toggle].setValueNotifyingHost (0.0f);
        EXPECT_EQ (time.getCurrentValueAsText(), pair.freeText);
    }
}

TEST (SyncDisplayParameter, AllFifteenBeatsHaveTheirShareOfTheTravel)
{
    ParameterStore store (buildParameters());
    linkSyncParameters (store.state);

    for (const auto& pair : kPairs)
    {
        store[pair.toggle].setValueNotifyingHost (1.0f);

        for (std::size_t i = 0; i < kLabels.size(); ++i)
        {
            const auto from = static_cast<float> (i) / kIndicesPerTravel + kNear;
            const auto to = i == 14 ? 1.0f : static_cast<float> (i + 1) / kIndicesPerTravel - kNear;

            for (auto t : { from, to })
                EXPECT_EQ (textAt (store[pair.time], pair.inverted ? 1.0f - t : t), kLabels[i])
                    << paramMapper[pair.time].name << " at " << t;
        }
    }
}

TEST (SyncDisplayParameter, SwitchCountsAsOnFromOneHalf)
{
    ParameterStore store (buildParameters());
    linkSyncParameters (store.state);

    store[Delay1Sync].setValueNotifyingHost (0.49f);
    EXPECT_EQ (textAt (store[Delay1Time], 0.0f), "2 ms");
    store[Delay1Sync].setValueNotifyingHost (0.5f);
    EXPECT_EQ (textAt (store[Delay1Time], 0.0f), "1/32");
}

TEST (SyncDisplayParameter, UnlinkedStoreReadsInFreeModeWhateverTheSwitchSays)
{
    ParameterStore store (buildParameters());

    for (const auto& pair : kPairs)
        store[pair.toggle].setValueNotifyingHost (1.0f);

    EXPECT_EQ (textAt (store[Delay1Time], 1.0f), "1.00 s");
    EXPECT_EQ (textAt (store[LFO2Rate], 0.5f), "0.32 Hz");
}

TEST (SyncDisplayParameter, FreeModeTextComesFromItsRuleOrElseHasTwoDecimals)
{
    const juce::NormalisableRange<float> range (2.0f, 1000.0f);
    const juce::AudioParameterFloatAttributes plain;
    const auto rule = [] (float value, int maximumLength)
    { return juce::String (juce::roundToInt (value)) + " of " + juce::String (maximumLength); };

    const SyncDisplayParameter bare ({ "A", 100 }, "A", range, 500.0f, false, plain);
    const SyncDisplayParameter ruled ({ "B", 100 }, "B", range, 500.0f, false,
                                      plain.withStringFromValueFunction (rule));

    EXPECT_EQ (bare.getText (0.5f, 0), "501.00");
    EXPECT_EQ (ruled.getText (0.5f, 7), "501 of 7");
    EXPECT_EQ (ruled.getText (2.0f, 7), "1000 of 7") << "the travel is limited before the rule";
}

TEST (SyncDisplayParameter, LinkingLeavesAPairOfWrongClassesApart)
{
    const juce::NormalisableRange<float> range (2.0f, 1000.0f);
    juce::AudioProcessorValueTreeState::ParameterLayout layout;
    const auto idOf = [] (NumericalParamID number) {
        return juce::ParameterID { paramMapper[number].name, paramMapper[number].versionHint };
    };

    // a switch that is no switch, then one that is missing, then a time that is no time
    layout.add (std::make_unique<SyncDisplayParameter> (idOf (Delay1Time), "", range, 2.0f, false,
                                                        juce::AudioParameterFloatAttributes()),
                std::make_unique<juce::AudioParameterFloat> (idOf (Delay1Sync), "", range, 2.0f),
                std::make_unique<SyncDisplayParameter> (idOf (Delay2Time), "", range, 2.0f, false,
                                                        juce::AudioParameterFloatAttributes()),
                std::make_unique<juce::AudioParameterFloat> (idOf (LFO1Rate), "", range, 2.0f),
                std::make_unique<juce::AudioParameterBool> (idOf (LFO1Sync), "", true));

    ParameterStore store (std::move (layout));
    linkSyncParameters (store.state);

    for (auto time : { Delay1Time, Delay2Time })
        EXPECT_EQ (dynamic_cast<SyncDisplayParameter&> (store[time]).syncParameter, nullptr);

    EXPECT_EQ (textAt (store[Delay1Time], 0.0f), "2.00");
}
