// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/routing_plan.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <bit>
#include <gtest/gtest.h>

// That sums come in the order of any list is the golden tests' matter; their input is never as quiet as this.

TEST (RoutingPlan, KeepsAMinusThatFlushedDenormalsLeaveBehind)
{
    // In this mode two numbers near the smallest may add up to -0, and to take part in no further step must keep it.
    const juce::ScopedNoDenormals flush;
    const RoutingEntry list[] = { { 0, 0, 1.0f }, { 1, 0, 1.0f }, { 2, 1, 1.0f }, { 3, 1, 1.0f } };
    const float negatives[8] = { -1.2e-38f, 1.3e-38f, -1.0f, -1.0f };
    RoutingPlan plan;
    routing_plan_compile (plan, list);
    DestLanes dests;
    routing_plan_run<false> (plan, negatives, dests);
    EXPECT_EQ (std::bit_cast<std::uint32_t> (float { dests.lanes[0][0] }), 0x80000000u);
    routing_plan_run<false> (plan, negatives, dests);
    EXPECT_EQ (dests.lanes[0][1], 2.0f);
}
