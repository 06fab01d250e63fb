// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/signal_matrix.h"

static bool isInRange (int source, int destination) noexcept
{
    return static_cast<unsigned> (source) < kNumSignalSources &&
           static_cast<unsigned> (destination) < kNumSignalDests;
}

static std::size_t flagIndex (int source, int destination) noexcept
{
    return static_cast<std::size_t> (source + kNumSignalSources * destination);
}

static std::int32_t findPair (const SignalMatrix& matrix, int source, int destination) noexcept
{
    for (std::int32_t i = 0; i < matrix.connectionCount; ++i)
    {
        const auto n = static_cast<std::size_t> (i);

        if (matrix.connSource[n] == source && matrix.connDest[n] == destination)
            return i;
    }

    return -1;
}

bool signal_matrix_has_source (const SignalMatrix& matrix, int destination) noexcept
{
    for (std::int32_t i = 0; i < matrix.connectionCount; ++i)
        if (matrix.connDest[static_cast<std::size_t> (i)] == destination)
            return true;

    return false;
}

static void editList (SignalMatrix& matrix, int source, int destination, bool on) noexcept
{
    if (! isInRange (source, destination))
        return;

    matrix.connected[flagIndex (source, destination)].store (on, std::memory_order_relaxed);
    const std::int32_t found = findPair (matrix, source, destination);

    if (on && found < 0)
    {
        const auto end = static_cast<std::size_t> (matrix.connectionCount++);
        matrix.connSource[end] = source;
        matrix.connDest[end] = destination;
    }
    else if (! on && found >= 0)
    {
        const auto gap = static_cast<std::size_t> (found);
        const auto last = static_cast<std::size_t> (--matrix.connectionCount);
        matrix.connSource[gap] = matrix.connSource[last];
        matrix.connDest[gap] = matrix.connDest[last];
    }
}

static void compile (SignalMatrix& matrix) noexcept
{
    std::array<RoutingEntry, kMaxConnections> entries;
    const auto count = static_cast<std::size_t> (matrix.connectionCount);

    for (std::size_t i = 0; i < count; ++i)
        entries[i] = { matrix.connSource[i], matrix.connDest[i], 1.0f };

    routing_plan_compile (matrix.plan, std::span (entries).first (count));
    stage_plan_compile (matrix.stages, std::span (entries).first (count));
}

bool signal_matrix_edit (SignalMatrix& matrix, int source, int destination, bool on) noexcept
{
    const std::int32_t before = matrix.connectionCount;
    editList (matrix, source, destination, on);

    if (matrix.connectionCount == before)
        return false;

    compile (matrix);
    return true;
}

void signal_matrix_fill (SignalMatrix& matrix, std::span<const SignalPair> pairs) noexcept
{
    for (const auto& pair : pairs)
        editList (matrix, pair.source, pair.destination, true);

    compile (matrix);
}

void signal_matrix_copy (SignalMatrix& matrix, const SignalMatrix& other) noexcept
{
    matrix.connSource = other.connSource;
    matrix.connDest = other.connDest;
    matrix.connectionCount = other.connectionCount;

    for (std::size_t i = 0; i < matrix.connected.size(); ++i)
        matrix.connected[i].store (other.connected[i].load (std::memory_order_relaxed),
                                   std::memory_order_relaxed);
}

void signal_matrix_take (SignalMatrix& matrix, const SignalMatrix& other) noexcept
{
    signal_matrix_copy (matrix, other);
    routing_plan_copy (matrix.plan, other.plan);
    matrix.stages = other.stages;
    ++matrix.edits;
}

bool signal_matrix_get (const SignalMatrix& matrix, int source, int destination) noexcept
{
    return isInRange (source, destination) &&
           matrix.connected[flagIndex (source, destination)].load (std::memory_order_relaxed);
}
