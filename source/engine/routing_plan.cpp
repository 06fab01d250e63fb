// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/routing_plan.h"

#include <algorithm>

namespace
{

constexpr std::size_t kNumLanes = 12;

/** What of a destination's sources waits to be placed, in the list's order. */
struct Queue
{
    std::array<RoutingEntry, kMaxSources> entries;
    int next = 0;
    int end = 0;

    const RoutingEntry* head() const noexcept
    {
        return next < end ? &entries[static_cast<std::size_t> (next)] : nullptr;
    }

    bool isLedBy (const RoutingEntry& wanted) const noexcept
    {
        const auto* const first = head();
        return first != nullptr && first->source == wanted.source && first->gain == wanted.gain;
    }
};

using Queues = std::array<Queue, kNumLanes>;

int countLedBy (const Queues& queues, const RoutingEntry& wanted) noexcept
{
    return static_cast<int> (std::ranges::count_if (queues, [&wanted] (const Queue& queue)
                                                    { return queue.isLedBy (wanted); }));
}

/** The entry that most queues have at their head; null when all is placed. */
const RoutingEntry* mostWanted (const Queues& queues) noexcept
{
    const RoutingEntry* best = nullptr;
    int bestCount = 0;

    for (const auto& queue : queues)
        if (const auto* const head = queue.head())
            if (const int count = countLedBy (queues, *head); count > bestCount)
            {
                best = head;
                bestCount = count;
            }

    return best;
}

/** Appends the step that takes wanted from every queue that has it at its head. */
void appendStep (RoutingPlan& plan, Queues& queues, RoutingEntry wanted) noexcept
{
    auto& step = plan.steps[static_cast<std::size_t> (plan.numSteps++)];
    step = { {}, wanted.gain, wanted.source };

    for (std::size_t d = 0; d < kNumLanes; ++d)
        if (queues[d].isLedBy (wanted))
        {
            step.takers[d / 4][d % 4] = -1;
            ++queues[d].next;
        }
}

void copySteps (RoutingPlan& plan, const RoutingPlan& other) noexcept
{
    std::copy_n (other.steps.begin(), other.numSteps, plan.steps.begin());
    plan.numSteps = other.numSteps;
}

void appendMostWanted (RoutingPlan& plan, Queues& queues) noexcept
{
    while (const auto* const wanted = mostWanted (queues))
        appendStep (plan, queues, *wanted);
}

void appendBySource (RoutingPlan& plan, Queues& queues) noexcept
{
    for (std::int32_t source = 0; source < kMaxSources; ++source)
        for (const auto& queue : queues)
            while (queue.head() != nullptr && queue.head()->source == source)
                appendStep (plan, queues, *queue.head());
}

/** Where the last stretch of rising sources begins. */
int risingFrom (const Queue& queue) noexcept
{
    int from = queue.end;

    while (from > 1 && queue.entries[static_cast<std::size_t> (from - 2)].source <
                           queue.entries[static_cast<std::size_t> (from - 1)].source)
        --from;

    return std::max (0, from - 1);
}

/** First what stands before each destination's last rising stretch, then those stretches side by side: at most eight
    steps for them, and few before if the list was made by rows or columns, as grids and presets make it. */
void appendStretches (RoutingPlan& plan, const Queues& queues) noexcept
{
    Queues before = queues;
    Queues rising = queues;

    for (std::size_t d = 0; d < kNumLanes; ++d)
        before[d].end = rising[d].next = risingFrom (queues[d]);

    appendMostWanted (plan, before);
    appendBySource (plan, rising);
}

}  // namespace

void routing_plan_compile (RoutingPlan& plan, std::span<const RoutingEntry> list) noexcept
{
    Queues queues;
    std::fill_n (plan.connected, 3, Ints {});

    for (const auto& entry : list)
    {
        const auto d = static_cast<std::size_t> (entry.destination);
        queues[d].entries[static_cast<std::size_t> (queues[d].end++)] = entry;
        plan.connected[d / 4][d % 4] = -1;
    }

    // Neither way is the shorter one for every list.
    Queues greedy = queues;
    plan.numSteps = 0;
    appendMostWanted (plan, greedy);

    RoutingPlan other;
    appendStretches (other, queues);

    if (other.numSteps < plan.numSteps)
        copySteps (plan, other);
}

void routing_plan_copy (RoutingPlan& plan, const RoutingPlan& other) noexcept
{
    std::copy_n (other.connected, 3, plan.connected);
    copySteps (plan, other);
}
