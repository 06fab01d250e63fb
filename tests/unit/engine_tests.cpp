// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/delay_pair.h"
#include "engine/engine.h"
#include "engine/engine_globals.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <thread>
#include <utility>
#include <vector>

// Read before any test or instance sets a rate.
static const std::array kRatesAtStart { gAudioSamplingRate.load(),
                                        gAudioSamplingRateReciprocal.load(),
                                        gSamplesPerMillisecond.load() };

TEST (Engine, RefusesRatesThatNoBufferCouldBeMeasuredBy)
{
    VelkorEngine engine;
    engine_prepare (engine, 48000.0);

    for (const double rate :
         { 0.0, -44100.0, 0.5, 1.0e-12, 1.0e9, 1.0e300, std::numeric_limits<double>::infinity(),
           std::numeric_limits<double>::quiet_NaN() })
    {
        engine_prepare (engine, rate);
        EXPECT_EQ (engine.sampleRate, 48000.0) << rate;
        EXPECT_EQ (gAudioSamplingRate.load(), 48000.0f) << rate;
    }

    engine_prepare (engine, 1.0);
    EXPECT_EQ (engine.sampleRate, 1.0);
    setAudioSamplingRate (44100.0);
}

TEST (Engine, StartsAtTheRateAndWithTheCablesThatPresetsWithoutAnyRelyOn)
{
    EXPECT_EQ (kRatesAtStart, (std::array { 44100.0f, 1.0f / 44100.0f, 44.1f }));
    const VelkorEngine engine;
    const auto& signal = engine.signal;
    ASSERT_EQ (signal.connectionCount, 6);
    constexpr std::pair<int, int> kCables[] = { { 0, 0 }, { 1, 1 }, { 2, 2 },
                                                { 3, 3 }, { 2, 8 }, { 3, 9 } };

    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_EQ (std::pair (signal.connSource[i], signal.connDest[i]), kCables[i]) << i;

    EXPECT_EQ (std::ranges::count_if (signal.connected, [] (const auto& c) { return c.load(); }),
               6);
}

TEST (Engine, ARunawayAfterLongPlayingIsClearedAPieceAtATimeAndWithinASecond)
{
    constexpr std::size_t kBlock = 256;
    constexpr std::ptrdiff_t kMostSlots = 16384;  // of a line, in a block
    setAudioSamplingRate (44100.0);
    VelkorEngine engine;
    engine_prepare (engine, 48000.0);
    const DelayFad& line = engine.delay1;
    EXPECT_FALSE (delay_fad_is_stale (line)) << "preparing leaves nothing to the audio thread";
    std::vector<float> left, right, before;
    const auto play = [&] (float first, float others)
    {
        left.assign (kBlock, others);
        left[0] = first;
        right = left;
        engine_dsp_block (engine, left.data(), right.data(), kBlock, Transport {});
    };

    for (std::uint64_t n = 0; n < line.bufferSize + 1000; n += kBlock)
        play (0.5f, 0.5f);

    before.assign (line.buffer, line.buffer + line.bufferSize);
    ASSERT_GT (*std::ranges::min_element (before), 0.1f) << "sound in every slot";

    for (int i = 0; i < 188; ++i)
    {
        play (i == 0 ? 3.0e38f : 0.0f, 0.0f);  // twice that is more than the envelope can sum
        std::ptrdiff_t cleared = 0;

        for (std::size_t n = 0; n < before.size(); ++n)
        {
            cleared += before[n] != 0.0f && line.buffer[n] == 0.0f ? 1 : 0;
            before[n] = line.buffer[n];
        }

        ASSERT_LE (cleared, kMostSlots) << "block " << i;
    }

    for (const float x : before)
        ASSERT_LT (std::abs (x), 1.0e-6f);

    DelayPair pair;
    delay_pair_take (pair, engine.delay1, engine.delay2);
    EXPECT_TRUE (pair.canBePaired) << "and the quick ways are open again";
    setAudioSamplingRate (44100.0);
}

TEST (Engine, EveryEditAndEveryBlockWaitsForTheLockOfWhatItTouches)
{
    VelkorEngine engine;
    float left[4] {}, right[4] {};
    const TickLock& signal = engine.signal.connectionLock;
    const TickLock& modulation = engine.modulation.modLock;
    const auto block = [&] { engine_dsp_block (engine, left, right, 4, Transport {}); };
    const std::pair<const TickLock&, std::function<void()>> cases[] = {
        { signal, block },
        { modulation, block },
        { signal, [&] { engine_set_connection (engine, 0, 5, true); } },
        { signal, [&] { engine_replace_connections (engine, {}); } },
        { modulation, [&] { mod_router_set (engine.modulation, 0, 5, true); } },
        { modulation, [&] { mod_router_replace (engine.modulation, {}); } },
    };

    for (const auto& [lock, use] : cases)
    {
        SCOPED_TRACE (&lock == &signal ? "connectionLock" : "modLock");
        std::atomic<bool> isDone { false };
        lock.enter();
        std::thread other (
            [&isDone, &work = use]
            {
                work();
                isDone = true;
            });
        // However slow the machine is, what waits isn't done.
        std::this_thread::sleep_for (std::chrono::milliseconds (50));
        EXPECT_FALSE (isDone);
        lock.exit();
        other.join();
        EXPECT_TRUE (lock.tryEnter()) << "left behind";
        lock.exit();
    }
}

TEST (Engine, EditsFromTwoThreadsAtOnceAllStay)
{
    VelkorEngine engine;
    engine_replace_connections (engine, {});
    const auto edit = [&engine] (int parity)
    {
        for (int i = 0; i <= 100; ++i)  // every cell of its own on and off, and on in the end
            for (int cell = parity; cell < kNumModSources * kNumModDests; cell += 2)
            {
                engine_set_connection (engine, cell / 10, cell % 10, i % 2 == 0);
                mod_router_set (engine.modulation, cell / 10, cell % 10, i % 2 == 0);
            }
    };

    const auto watch = [] (const TickLock& lock, const std::uint32_t& edits)
    {
        const TickLock::ScopedLockType held (lock);
        const auto before = edits;
        const auto start = std::chrono::steady_clock::now();

        while (std::chrono::steady_clock::now() - start < std::chrono::microseconds (20))
            std::atomic_signal_fence (std::memory_order_seq_cst);

        EXPECT_EQ (edits, before) << "changed under a lock that another thread holds";
    };

    std::atomic<bool> isDone { false };
    std::thread other (edit, 1);
    std::thread audio (
        [&]
        {
            while (! isDone)
            {
                watch (engine.signal.connectionLock, engine.signal.edits);
                watch (engine.modulation.modLock, engine.modulation.edits);
                std::this_thread::sleep_for (std::chrono::microseconds (200));  // let them edit
            }
        });
    edit (0);
    other.join();
    isDone = true;
    audio.join();
    EXPECT_EQ (engine.signal.connectionCount, 60);
    EXPECT_EQ (engine.modulation.router.routes.size(), 60);

    for (int cell = 0; cell < 60; ++cell)
        EXPECT_TRUE (signal_matrix_get (engine.signal, cell / 10, cell % 10) &&
                     mod_router_get (engine.modulation, cell / 10, cell % 10))
            << cell;
}
