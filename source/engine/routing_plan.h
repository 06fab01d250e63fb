// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "engine/lanes.h"

#include <array>
#include <cstdint>
#include <span>

/** What either matrix holds at most. */
inline constexpr int kMaxSources = 8;
inline constexpr int kMaxDests = 10;
inline constexpr int kMaxEntries = kMaxSources * kMaxDests;

/** Destinations of either matrix, ten in twelve lanes; the last two stay idle. */
struct DestLanes
{
    Floats lanes[3] {};
};

/** A matrix's list of connections, put in a form that is quick to run: each step adds one source to all
    destinations whose turn it is. Every destination gets its sources in the order of the list, so the sums are
    the list's to the bit: from one whose turn it is not +0 is taken away, which leaves every number what it is, a
    -0 that the flush of denormal numbers made too.

    Whoever changes the list compiles it anew, before the lock is taken, and copies plan and list under the lock. */
struct RoutingPlan
{
    struct Step
    {
        Ints takers[3];  ///< mask of the destinations that take the source
        float gain;
        std::int32_t source;
    };

    Ints connected[3] {};  ///< mask of the destinations that have a source at all
    std::int32_t numSteps = 0;
    std::array<Step, kMaxEntries> steps {};
};

/** One entry of a list: both numbers in range, each pair at most once. */
struct RoutingEntry
{
    std::int32_t source;
    std::int32_t destination;
    float gain;
};

/** Compiles a list in time that goes with the number of steps, 12 µs for 80 entries in no order; allocates nothing.
    Any thread, on a plan that no other thread knows. */
void routing_plan_compile (RoutingPlan& plan, std::span<const RoutingEntry> list) noexcept;

/** Copies what is in use of another plan. Any thread; the caller holds the lock of the plan's matrix. */
void routing_plan_copy (RoutingPlan& plan, const RoutingPlan& other) noexcept;

/** Sums the sources into the destinations that have any, at the gains of the list if hasGains; the others keep
    what they hold. The sources come negated: they are taken away. Audio thread; the caller holds the lock of the
    plan's matrix. */
template <bool hasGains>
inline void routing_plan_run (const RoutingPlan& plan, const float* negatives,
                              DestLanes& dests) noexcept
{
    Floats sum0 = where (~plan.connected[0], dests.lanes[0]);
    Floats sum1 = where (~plan.connected[1], dests.lanes[1]);
    Floats sum2 = where (~plan.connected[2], dests.lanes[2]);
    const auto* const end = plan.steps.data() + plan.numSteps;

    for (const auto* step = plan.steps.data(); step != end; ++step)
    {
        const Floats source = splat (negatives[step->source]);
        const Floats negative = hasGains ? source * step->gain : source;
        sum0 -= where (step->takers[0], negative);
        sum1 -= where (step->takers[1], negative);
        sum2 -= where (step->takers[2], negative);
    }

    dests.lanes[0] = sum0;
    dests.lanes[1] = sum1;
    dests.lanes[2] = sum2;
}
