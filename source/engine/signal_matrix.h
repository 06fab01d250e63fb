// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "engine/routing_plan.h"
#include "engine/stage_plan.h"
#include "engine/tick_lock.h"

#include <juce_core/juce_core.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <span>

inline constexpr int kNumSignalSources = 8;
inline constexpr int kNumSignalDests = 10;
inline constexpr int kMaxConnections = kNumSignalSources * kNumSignalDests;
static_assert (kNumSignalSources <= kMaxSources && kNumSignalDests <= kMaxDests);

/** Indices into signalSources; stored in presets as input: never edit. */
enum SignalSource
{
    sourceInputL,
    sourceInputR,
    sourceDelay1,
    sourceDelay2,
    sourceFilter1,
    sourceFilter2,
    sourceSaturation1,
    sourceSaturation2
};

/** Indices into signalDests; stored in presets as output: never edit. */
enum SignalDest
{
    destDelay1,
    destDelay2,
    destFeedback1,
    destFeedback2,
    destFilter1,
    destFilter2,
    destSaturation1,
    destSaturation2,
    destOutput1,
    destOutput2
};

/** The patch bay: what every node gives and gets, and the connections between them. connectionLock guards the list,
    and the flags among their writers; they are read without it, and the audio thread never looks at them. The node
    values are the audio thread's. */
struct SignalMatrix
{
    std::array<float, kNumSignalSources> signalSources {};
    std::array<float, kNumSignalDests> signalDests {};
    std::array<std::int32_t, kMaxConnections> connSource {};
    std::array<std::int32_t, kMaxConnections> connDest {};
    std::int32_t connectionCount = 0;
    TickLock connectionLock;

    /** The flag of source s and destination d at s + 8 d. */
    std::array<std::atomic<bool>, kMaxConnections> connected {};

    RoutingPlan plan;         ///< the list as the audio thread runs it, compiled at every change
    StagePlan stages;         ///< the same, for ticks that are run node by node
    std::uint32_t edits = 0;  ///< of the list so far: tells a writer that another came between
};

/** Sets or clears a pair in flags and list; out of range does nothing. A removed pair's place is taken by
    the last one. The destination keeps the value that it had: a destination without connection goes on
    feeding it, until the next prepareToPlay. Returns whether the list has changed, and compiles it then: so this is
    for a matrix that no other thread knows (signal_matrix_copy, signal_matrix_take). */
bool signal_matrix_edit (SignalMatrix& matrix, int source, int destination, bool on) noexcept;

/** Copies another matrix's list and flags; its plans are left to signal_matrix_edit. Caller holds connectionLock of
    other. */
void signal_matrix_copy (SignalMatrix& matrix, const SignalMatrix& other) noexcept;

/** A crosspoint of the signal matrix, its numbers in range or not. */
struct SignalPair
{
    std::int32_t source = 0;
    std::int32_t destination = 0;
};

/** Makes the given connections in a new matrix that no other thread knows yet, in their order; pairs out of range
    and repeated ones are left out. */
void signal_matrix_fill (SignalMatrix& matrix, std::span<const SignalPair> pairs) noexcept;

/** Puts another matrix's list, flags and plan in the place of this one's; the node values stay. Copies of bounded
    length and no more: the audio thread may be waiting. Caller holds connectionLock of matrix. */
void signal_matrix_take (SignalMatrix& matrix, const SignalMatrix& other) noexcept;

/** Whether a connection leads to destination. Caller holds connectionLock, unless no other thread knows this matrix. */
bool signal_matrix_has_source (const SignalMatrix& matrix, int destination) noexcept;

/** Whether source is connected to destination; false out of range. Any thread, lock-free. */
bool signal_matrix_get (const SignalMatrix& matrix, int source, int destination) noexcept;

/** One sample: sums the sources of each connected destination, unscaled, in the order of the list. The sources come
    negated. Audio thread; caller holds connectionLock. */
inline void signal_matrix_dsp (const SignalMatrix& matrix, const float* negatives,
                               DestLanes& dests) noexcept
{
    routing_plan_run<false> (matrix.plan, negatives, dests);
}
