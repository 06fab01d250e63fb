// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/mod_router.h"

#include <algorithm>
#include <memory>
#include <tuple>

namespace zb
{

static int indexOf (const juce::Array<ModRoute*>& routes, int source, int dest) noexcept
{
    for (int i = 0; i < routes.size(); ++i)
        if (routes.getUnchecked (i)->source == source && routes.getUnchecked (i)->dest == dest)
            return i;

    return -1;
}

ModRouterCore::~ModRouterCore()
{
    clear();
}

void ModRouterCore::setGain (int source, int dest, float gain)
{
    if (const int i = indexOf (routes, source, dest); i >= 0)
    {
        routes.getUnchecked (i)->gain = gain;
        return;
    }

    const juce::ScopedLock lock (growthLock);
    auto route = std::make_unique<ModRoute> (ModRoute { source, dest, gain });
    routes.add (route.get());
    std::ignore = route.release();
}

void ModRouterCore::swapRoutes (ModRouterCore& other) noexcept
{
    const juce::ScopedLock lock (growthLock);
    routes.swapWith (other.routes);
}

void ModRouterCore::clear()
{
    const juce::ScopedLock lock (growthLock);

    for (auto* route : routes)
        delete route;

    routes.clear();
}

}  // namespace zb

ModMatrix::ModMatrix()
{
    // Room for two cache lines each: both are written in every tick, and must not share one with those of another
    // instance, on another thread.
    constexpr int kApart = 128 / sizeof (float);
    modSources.ensureStorageAllocated (kApart);
    modDests.ensureStorageAllocated (kApart);
    modSources.insertMultiple (0, 0.0f, kNumModSources);
    modDests.insertMultiple (0, 0.0f, kNumModDests);
}

static bool isInRange (int source, int dest) noexcept
{
    return static_cast<unsigned> (source) < kNumModSources &&
           static_cast<unsigned> (dest) < kNumModDests;
}

static std::size_t gridIndex (int source, int dest) noexcept
{
    return static_cast<std::size_t> (kNumModDests * source + dest);
}

namespace
{

constexpr std::size_t kMaxRoutes = std::size_t { kNumModSources } * kNumModDests;

/** What is to take the place of a matrix's routes, worked out without its lock. */
struct FreshRoutes
{
    explicit FreshRoutes (std::span<const ModPair> pairs);

    zb::ModRouterCore router;
    std::array<bool, kMaxRoutes> grid {};
    RoutingPlan plan;
};

FreshRoutes::FreshRoutes (std::span<const ModPair> pairs)
{
    for (const auto& [source, dest] : pairs)
        if (isInRange (source, dest))
        {
            grid[gridIndex (source, dest)] = true;
            router.setGain (source, dest, 1.0f);
        }

    std::array<RoutingEntry, kMaxRoutes> entries;
    std::size_t count = 0;

    for (const auto* route : router.routes)
        entries[count++] = { route->source, route->dest, route->gain };

    routing_plan_compile (plan, std::span (entries).first (count));
}

/** Leaves the old routes in fresh, to be deleted when modLock is free again. Caller holds modLock. */
void takeRoutes (ModMatrix& matrix, FreshRoutes& fresh) noexcept
{
    matrix.router.swapRoutes (fresh.router);
    routing_plan_copy (matrix.plan, fresh.plan);

    for (std::size_t i = 0; i < fresh.grid.size(); ++i)
        matrix.modGrid[i].store (fresh.grid[i], std::memory_order_relaxed);

    ++matrix.edits;
}

/** A matrix's routes as a writer found them. */
struct RouteList
{
    explicit RouteList (const ModMatrix& matrix) noexcept
    {
        const TickLock::ScopedLockType lock (matrix.modLock);
        edits = matrix.edits;

        for (const auto* route : matrix.router.routes)
            pairs[count++] = { route->source, route->dest };
    }

    /** False if it is as asked already. */
    bool set (ModPair wanted, bool on) noexcept
    {
        const auto end = pairs.begin() + count;
        const auto found =
            std::find_if (pairs.begin(), end,
                          [wanted] (const ModPair& pair)
                          { return pair.source == wanted.source && pair.dest == wanted.dest; });

        if ((found != end) == on)
            return false;

        if (on)
            pairs[count++] = wanted;
        else
        {
            std::copy (found + 1, end, found);
            --count;
        }

        return true;
    }

    std::array<ModPair, kMaxRoutes> pairs;
    std::size_t count = 0;
    std::uint32_t edits = 0;
};

}  // namespace

void mod_router_set (ModMatrix& matrix, int source, int dest, bool on)
{
    if (! isInRange (source, dest))
        return;

    for (;;)
    {
        RouteList list (matrix);

        if (! list.set ({ source, dest }, on))
            return;

        FreshRoutes fresh (std::span (list.pairs).first (list.count));
        const TickLock::ScopedLockType lock (matrix.modLock);

        if (matrix.edits == list.edits)
            return takeRoutes (matrix, fresh);
    }
}

void mod_router_replace (ModMatrix& matrix, std::span<const ModPair> pairs)
{
    FreshRoutes fresh (pairs);
    const TickLock::ScopedLockType lock (matrix.modLock);
    takeRoutes (matrix, fresh);
}

bool mod_router_get (const ModMatrix& matrix, int source, int dest) noexcept
{
    return isInRange (source, dest) &&
           matrix.modGrid[gridIndex (source, dest)].load (std::memory_order_relaxed);
}

bool mod_router_dsp (ModMatrix& matrix, bool hadRoutes) noexcept
{
    const TickLock::ScopedLockType lock (matrix.modLock);
    const bool hasRoutes = matrix.plan.numSteps != 0;

    if (! hasRoutes && ! hadRoutes)
        return false;

    DestLanes sums;
    float negatives[kMaxSources];
    const float* const sources = matrix.modSources.getRawDataPointer();

    for (std::size_t i = 0; i < kNumModSources; ++i)
        negatives[i] = -sources[i];

    routing_plan_run<true> (matrix.plan, negatives, sums);

    float* const dests = matrix.modDests.getRawDataPointer();
    store (dests, sums.lanes[0]);
    store (dests + 4, sums.lanes[1]);
    storePair (dests + 8, sums.lanes[2]);
    return hasRoutes;
}
