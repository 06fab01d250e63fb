// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/stage_plan.h"

#include "engine/signal_matrix.h"

#include <algorithm>

static bool isFilter (const RoutingEntry& entry) noexcept
{
    return entry.source == sourceFilter1 || entry.source == sourceFilter2;
}

static bool isSaturator (const RoutingEntry& entry) noexcept
{
    return entry.source == sourceSaturation1 || entry.source == sourceSaturation2;
}

static bool leadsToFilter (const RoutingEntry& entry) noexcept
{
    return entry.destination == destFilter1 || entry.destination == destFilter2;
}

static bool leadsToSaturator (const RoutingEntry& entry) noexcept
{
    return entry.destination == destSaturation1 || entry.destination == destSaturation2;
}

static StagePlan::Order orderOf (std::span<const RoutingEntry> list) noexcept
{
    bool filterToSaturator = false, saturatorToFilter = false;

    for (const auto& entry : list)
    {
        if ((isFilter (entry) && leadsToFilter (entry)) ||
            (isSaturator (entry) && leadsToSaturator (entry)))
            return StagePlan::Order::none;

        filterToSaturator = filterToSaturator || (isFilter (entry) && leadsToSaturator (entry));
        saturatorToFilter = saturatorToFilter || (isSaturator (entry) && leadsToFilter (entry));
    }

    if (filterToSaturator && saturatorToFilter)
        return StagePlan::Order::none;

    return filterToSaturator ? StagePlan::Order::filtersFirst : StagePlan::Order::saturatorsFirst;
}

void stage_plan_compile (StagePlan& plan, std::span<const RoutingEntry> list) noexcept
{
    plan.order = orderOf (list);
    std::uint8_t count = 0;

    for (int destination = 0; destination < kNumSignalDests; ++destination)
    {
        plan.begin[static_cast<std::size_t> (destination)] = count;

        for (const auto& entry : list)
            if (entry.destination == destination)
                plan.sources[count++] = static_cast<std::uint8_t> (entry.source);
    }

    plan.begin.back() = count;
}
