// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "engine/lanes.h"
#include "engine/routing_plan.h"

#include <array>
#include <cstdint>
#include <span>

/** What of a signal matrix's list it takes to run a whole tick node by node instead of sample by sample. That can be
    done if, within a tick, filters and saturators need not wait for each other in turn. */
struct StagePlan
{
    enum class Order : std::uint8_t
    {
        none,  ///< the wiring has a loop without a delay line in it, or chains two nodes of a kind
        filtersFirst,    ///< nothing leads from a saturator to a filter
        saturatorsFirst  ///< nothing leads from a filter to a saturator
    };

    Order order = Order::saturatorsFirst;
    std::array<std::uint8_t, kMaxEntries>
        sources {};  ///< of all destinations one after the other, in the order of the list
    std::array<std::uint8_t, kMaxDests + 1>
        begin {};  ///< where a destination's sources begin, and those of the last end
};

/** Compiles a list; allocates nothing. Any thread, on a plan that no other thread knows. */
void stage_plan_compile (StagePlan& plan, std::span<const RoutingEntry> list) noexcept;

/** Sums the sources of a destination for a tick, one sample to a lane, in the order of the list. Without a source it
    keeps the value of its last sample. Audio thread; the caller holds the matrix's lock. */
inline void stage_plan_sum (const StagePlan& plan, const Floats* sources, Floats* dests,
                            int destination) noexcept
{
    const auto d = static_cast<std::size_t> (destination);
    const std::uint8_t* source = plan.sources.data() + plan.begin[d];
    const std::uint8_t* const end = plan.sources.data() + plan.begin[d + 1];

    if (source == end)
    {
        dests[d] = splat (dests[d][3]);
        return;
    }

    Floats sum {};

    for (; source != end; ++source)
        sum += sources[*source];

    dests[d] = sum;
}
