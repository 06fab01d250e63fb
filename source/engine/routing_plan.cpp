// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/routing_plan.h"

#include <algorithm>

static constexpr int kNumLanes = 12;

/** What waits to be placed: of each destination the entries in the list's order. */
struct Queues
{
    std::array<std::array<RoutingEntry, 8>, kNumLanes> entries;
    std::array<int, kNumLanes> length {};
    std::array<int, kNumLanes> next {};
};

static const RoutingEntry* headOf (const Queues& queues, std::size_t destination) noexcept
{
    const auto next = static_cast<std::size_t> (queues.next[destination]);
    return queues.next[destination] < queues.length[destination]
               ? &queues.entries[destination][next]
               : nullptr;
}

static bool isSameSignal (const RoutingEntry& a, const RoutingEntry& b) noexcept
{
    return a.source == b.source && a.gain == b.gain;
}

static int countWaiting (const Queues& queues, const RoutingEntry& wanted) noexcept
{
    int count = 0;

    for (std::size_t d = 0; d < kNumLanes; ++d)
        if (const auto* const head = headOf (queues, d);
            head != nullptr && isSameSignal (*head, wanted))
            ++count;

    return count;
}

/** The head of a queue that most queues have as theirs; null when all is placed. */
static const RoutingEntry* mostWanted (const Queues& queues) noexcept
{
    const RoutingEntry* best = nullptr;
    int bestCount = 0;

    for (std::size_t d = 0; d < kNumLanes; ++d)
        if (const auto* const head = headOf (queues, d))
            if (const int count = countWaiting (queues, *head); count > bestCount)
            {
                best = head;
                bestCount = count;
            }

    return best;
}

void routing_plan_compile (RoutingPlan& plan, std::span<const RoutingEntry> list) noexcept
{
    Queues queues;
    plan.numSteps = 0;

    for (auto& mask : plan.connected)
        mask = Ints {};

    for (const auto& entry : list)
    {
        const auto d = static_cast<std::size_t> (entry.destination);
        queues.entries[d][static_cast<std::size_t> (queues.length[d]++)] = entry;
        plan.connected[d / 4][d % 4] = -1;
    }

    while (const auto* const wanted = mostWanted (queues))
    {
        auto& step = plan.steps[static_cast<std::size_t> (plan.numSteps++)];
        step = { {}, wanted->gain, wanted->source };

        for (std::size_t d = 0; d < kNumLanes; ++d)
            if (const auto* const head = headOf (queues, d);
                head != nullptr && isSameSignal (*head, *wanted))
            {
                step.takers[d / 4][d % 4] = -1;
                ++queues.next[d];
            }
    }
}

void routing_plan_copy (RoutingPlan& plan, const RoutingPlan& other) noexcept
{
    std::copy_n (other.connected, 3, plan.connected);
    std::copy_n (other.steps.begin(), other.numSteps, plan.steps.begin());
    plan.numSteps = other.numSteps;
}
