// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/mod_router.h"

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

void ModRouterCore::remove (int source, int dest)
{
    const juce::ScopedLock lock (growthLock);

    if (const int i = indexOf (routes, source, dest); i >= 0)
    {
        const std::unique_ptr<ModRoute> route (routes.removeAndReturn (i));
    }
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

static void compile (RoutingPlan& plan, const zb::ModRouterCore& router) noexcept
{
    std::array<RoutingEntry, kNumModSources * kNumModDests> entries;
    std::size_t count = 0;

    for (const auto* route : router.routes)
        entries[count++] = { route->source, route->dest, route->gain };

    routing_plan_compile (plan, std::span (entries).first (count));
}

void mod_router_set (ModMatrix& matrix, int source, int dest, bool on)
{
    const TickLock::ScopedLockType lock (matrix.modLock);

    if (! isInRange (source, dest))
        return;

    matrix.modGrid[gridIndex (source, dest)].store (on, std::memory_order_relaxed);

    const int before = matrix.router.routes.size();

    if (on)
        matrix.router.setGain (source, dest, 1.0f);
    else
        matrix.router.remove (source, dest);

    if (matrix.router.routes.size() != before)
        compile (matrix.plan, matrix.router);
}

void mod_router_replace (ModMatrix& matrix, std::span<const ModPair> pairs)
{
    zb::ModRouterCore router;
    std::array<bool, kNumModSources * kNumModDests> grid {};

    for (const auto& [source, dest] : pairs)
        if (isInRange (source, dest))
        {
            grid[gridIndex (source, dest)] = true;
            router.setGain (source, dest, 1.0f);
        }

    RoutingPlan plan;
    compile (plan, router);

    const TickLock::ScopedLockType lock (matrix.modLock);
    matrix.router.swapRoutes (router);
    routing_plan_copy (matrix.plan, plan);

    for (std::size_t i = 0; i < grid.size(); ++i)
        matrix.modGrid[i].store (grid[i], std::memory_order_relaxed);
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
