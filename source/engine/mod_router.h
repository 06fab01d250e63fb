// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "engine/routing_plan.h"
#include "engine/tick_lock.h"

#include <juce_core/juce_core.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <span>

inline constexpr int kNumModSources = 6;
inline constexpr int kNumModDests = 10;
static_assert (kNumModSources <= kMaxSources && kNumModDests <= kMaxDests);

/** Indices into modSources; stored in presets as source: never edit. */
enum ModSource
{
    modSourceEnvelope,
    modSourceLfo1,
    modSourceLfo2,
    modSourceNote,
    modSourceGate,
    modSourceWheel
};

/** Indices into modDests; stored in presets as dest: never edit. */
enum ModDest
{
    modDestDelay1,
    modDestDelay2,
    modDestLfo1,  ///< reaches nothing that sounds, see gen_LFO_set_rate
    modDestLfo2,
    modDestFilter1,
    modDestFilter2,
    modDestPan1,
    modDestPan2,
    modDestLevel1,
    modDestLevel2
};

/** One connection of the modulation matrix. */
struct ModRoute
{
    std::int32_t source = 0;
    std::int32_t dest = 0;
    float gain = 1.0f;  ///< 1 in every route that the product makes
};

namespace zb
{

/** The list of modulation routes, in the order in which they were made. Owns them. */
struct ModRouterCore
{
    juce::Array<ModRoute*> routes;
    juce::CriticalSection
        growthLock;  ///< taken below modLock, by every thread but the audio thread

    ModRouterCore() = default;
    ~ModRouterCore();
    ModRouterCore (const ModRouterCore&) = delete;
    ModRouterCore& operator= (const ModRouterCore&) = delete;

    /** Sets the gain of the route from source to dest, both in range, and makes it at the list's end if there is
        none. Takes growthLock to make one. Caller holds modLock, unless no other thread knows this router.
        Allocates, so never on the audio thread. */
    void setGain (int source, int dest, float gain);

    /** Exchanges all routes with another router's. Caller holds modLock. */
    void swapRoutes (ModRouterCore& other) noexcept;

    /** Removes and deletes all routes and gives the list's storage back. Caller holds modLock. */
    void clear();
};

}  // namespace zb

/** Modulation sources, routes and sums of an instance. */
struct ModMatrix
{
    zb::ModRouterCore router;       ///< first, so that the routes go last, behind the arrays
    juce::Array<float> modSources;  ///< 6, by ModSource; the audio thread's
    juce::Array<float> modDests;    ///< 10, by ModDest; this tick's sums, without limit
    TickLock modLock;               ///< guards the routes, and modGrid among its writers

    /** The flag of source s and destination d at 10 s + d. Read without modLock; the audio thread never looks. */
    std::array<std::atomic<bool>, kNumModSources * kNumModDests> modGrid {};

    RoutingPlan plan;         ///< the routes as the audio thread runs them
    std::uint32_t edits = 0;  ///< of the routes so far: tells a writer that another came between

    ModMatrix();
};

/** Makes or breaks the route from source to dest; out of range does nothing. Takes modLock twice, to read the list and
    to put the edited one in its place; routes are made and plans compiled between, and the old routes deleted after. If
    another thread has changed the routes meanwhile, it does all of it again. Not on the audio thread. */
void mod_router_set (ModMatrix& matrix, int source, int dest, bool on);

/** A crosspoint of the modulation matrix, its numbers in range or not. */
struct ModPair
{
    std::int32_t source = 0;
    std::int32_t dest = 0;
};

/** Makes the given routes, in their order, and no others; pairs out of range and repeated ones are left out.
    The new routes are made before modLock is taken and the old ones deleted after. Not on the audio
    thread. */
void mod_router_replace (ModMatrix& matrix, std::span<const ModPair> pairs);

/** Whether source is routed to dest; false out of range. Any thread, lock-free. */
bool mod_router_get (const ModMatrix& matrix, int source, int dest) noexcept;

/** Sums the sources into the destinations, in the order of the list. Returns whether there is any route; if there was
    none in the tick before either, which the caller says, the sums are left as they are, at 0. Audio thread, once per
    tick; takes modLock. */
bool mod_router_dsp (ModMatrix& matrix, bool hadRoutes) noexcept;
