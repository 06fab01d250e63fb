// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/routing_plan.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <algorithm>
#include <bit>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace
{

using List = std::vector<RoutingEntry>;

/** Every crosspoint once, in an order that seed decides. */
List shuffledGrid (unsigned seed)
{
    List list;

    for (std::int32_t source = 0; source < 8; ++source)
        for (std::int32_t destination = 0; destination < 10; ++destination)
            list.push_back ({ source, destination, 1.0f });

    std::minstd_rand random (seed);

    for (std::size_t i = list.size(); i > 1; --i)
        std::swap (list[i - 1], list[random() % i]);

    return list;
}

/** Sums sources into dests as the list says. */
void walk (const List& list, const float* sources, float* dests)
{
    for (const auto& entry : list)
        dests[entry.destination] = 0.0f;

    for (const auto& entry : list)
        dests[entry.destination] += sources[entry.source] * entry.gain;
}

// Sums of these depend on their order in the last bits.
constexpr float kSources[] = {
    0.1f, -3.7e5f, 1.0e-7f, 0.33333f, -0.0f, 7.1e4f, -0.27f, 12345.678f
};

}  // namespace

TEST (RoutingPlan, SumsEveryDestinationInTheOrderOfAnyList)
{
    for (unsigned seed = 1; seed <= 50; ++seed)
    {
        List list = shuffledGrid (seed);
        list.resize (seed % 2 == 0 ? 80 : seed);

        for (auto& entry : list)
            entry.gain = seed % 3 == 0 && entry.source % 2 == 0 ? 0.5f : 1.0f;

        RoutingPlan plan;
        routing_plan_compile (plan, list);
        float wanted[12] = { 9.0f, 9.0f, 9.0f, 9.0f, 9.0f, 9.0f, 9.0f, 9.0f, 9.0f, 9.0f };
        DestLanes got { { load (wanted), load (wanted + 4), load (wanted + 8) } };
        walk (list, kSources, wanted);
        float negatives[8];
        std::ranges::transform (kSources, negatives, std::negate<> {});
        routing_plan_run<true> (plan, negatives, got);

        for (int d = 0; d < 10; ++d)
            EXPECT_EQ (std::bit_cast<std::uint32_t> (got.lanes[d / 4][d % 4]),
                       std::bit_cast<std::uint32_t> (wanted[d]))
                << "list " << seed << ", destination " << d;
    }
}

TEST (RoutingPlan, KeepsAMinusThatFlushedDenormalsLeaveBehind)
{
    // In this mode two numbers near the smallest may add up to -0, and to take part in no further step must keep it.
    const juce::ScopedNoDenormals flush;
    const List list { { 0, 0, 1.0f }, { 1, 0, 1.0f }, { 2, 1, 1.0f }, { 3, 1, 1.0f } };
    const float negatives[8] = { -1.2e-38f, 1.3e-38f, -1.0f, -1.0f };
    RoutingPlan plan;
    routing_plan_compile (plan, list);
    DestLanes dests;
    routing_plan_run<false> (plan, negatives, dests);
    EXPECT_EQ (std::bit_cast<std::uint32_t> (float { dests.lanes[0][0] }), 0x80000000u);
    routing_plan_run<false> (plan, negatives, dests);
    EXPECT_EQ (dests.lanes[0][1], 2.0f);
}
