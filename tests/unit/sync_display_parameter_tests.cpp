// SPDX-License-Identifier: AGPL-3.0-or-later
#include "parameters/build_parameters.h"
#include "parameters/sync_display_parameter.h"
#include "support/parameter_store.h"

#include <array>
#include <cstddef>
#include <gtest/gtest.h>

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
}  // namespace

TEST (SyncDisplayParameter, AllFifteenBeatsHaveTheirShareOfTheTravelUnderTheirOwnSwitchOnly)
{
    ParameterStore store (buildParameters());
    linkSyncParameters (store.state);

    for (const auto& pair : kPairs)
    {
        const auto& time = store[pair.time];

        for (const auto& other : kPairs)
            store[other.toggle].setValueNotifyingHost (other.toggle == pair.toggle ? 0.0f : 1.0f);

        EXPECT_EQ (time.getCurrentValueAsText(), pair.freeText) << "only the others are on";
        store[pair.toggle].setValueNotifyingHost (1.0f);

        for (std::size_t i = 0; i < kLabels.size(); ++i)
        {
            const auto from = static_cast<float> (i) / kIndicesPerTravel + kNear;
            const auto to = i == 14 ? 1.0f : static_cast<float> (i + 1) / kIndicesPerTravel - kNear;

            for (auto t : { from, to })
                EXPECT_EQ (time.getText (pair.inverted ? 1.0f - t : t, 0), kLabels[i])
                    << paramMapper[pair.time].name << " at " << t;
        }

        store[pair.toggle].setValueNotifyingHost (0.0f);
        EXPECT_EQ (time.getCurrentValueAsText(), pair.freeText) << "the value has stayed";
    }
}
