// SPDX-License-Identifier: AGPL-3.0-or-later
#include "processor/VelkorAudioProcessor.h"
#include "state/first_run_install.h"
#include "state/state_carriers.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <benchmark/benchmark.h>
#include <chrono>
#include <thread>
#include <vector>

// What a session, a preset and an instance cost a host. The program's home is a temporary one.

using Clock = std::chrono::steady_clock;

static double microsecondsSince (Clock::time_point start)
{
    return std::chrono::duration<double, std::micro> (Clock::now() - start).count();
}

/** The document of a sound that has every parameter in a place of its own, and every crosspoint set if asked
    for: the longest that there is. */
static juce::String documentWith (bool everyCrosspoint, float place)
{
    VelkorAudioProcessor processor;

    for (auto* parameter : processor.getParameters())
        parameter->setValueNotifyingHost (place);

    for (int source = 0; source < kNumSignalSources && everyCrosspoint; ++source)
        for (int destination = 0; destination < kNumSignalDests; ++destination)
            processor.setSignalConnection (source, destination, true);

    for (int source = 0; source < kNumModSources && everyCrosspoint; ++source)
        for (int dest = 0; dest < kNumModDests; ++dest)
            processor.setModConnection (source, dest, true);

    juce::String text;
    getStateAsText (processor, text);
    return text;
}

static void loadDocument (benchmark::State& state)
{
    VelkorAudioProcessor processor;
    const bool full = state.range (0) != 0;
    const juce::String texts[] = { documentWith (full, 0.3f), documentWith (full, 0.7f) };
    std::size_t turn = 0;

    for (auto _ : state)
        setStateFromText (processor,
                          texts[turn++ % 2]);  // so that every parameter moves every time

    state.SetLabel (full ? "every crosspoint" : "the default's connections");
}

static void saveDocument (benchmark::State& state)
{
    VelkorAudioProcessor processor;
    setStateFromText (processor, documentWith (state.range (0) != 0, 0.3f));
    juce::MemoryBlock chunk;

    for (auto _ : state)
    {
        processor.getStateInformation (chunk);
        benchmark::DoNotOptimize (chunk.getData());
    }

    state.counters["bytes"] = static_cast<double> (chunk.getSize());
}

static void saveFile (benchmark::State& state)
{
    VelkorAudioProcessor processor;
    const auto file = processor.presetFolder.getChildFile ("User/Benchmark.zbpreset");

    for (auto _ : state)
        if (! saveStateToFile (processor, file))
            state.SkipWithError ("cannot write");
}

static void constructFirst (benchmark::State& state)
{
    for (auto _ : state)
    {
        state.PauseTiming();
        defaultPresetFolder().getParentDirectory().deleteRecursively();
        state.ResumeTiming();
        const VelkorAudioProcessor processor;
    }
}

static void constructLater (benchmark::State& state)
{
    const VelkorAudioProcessor first;

    for (auto _ : state)
        const VelkorAudioProcessor processor;
}

/** A second prepareToPlay: at the same rate, which silences what was written, or at another, which makes new buffers. */
static void prepareAgain (benchmark::State& state)
{
    VelkorAudioProcessor processor;
    const std::array rates { 48000.0, state.range (0) != 0 ? 96000.0 : 48000.0 };
    std::size_t turn = 0;
    processor.prepareToPlay (rates[turn], 512);

    for (auto _ : state)
    {
        turn = 1 - turn;
        processor.prepareToPlay (rates[turn], 512);
    }
}

/** Watches a lock from another thread, at a look every few dozen nanoseconds, and notes how long it stays
    taken. What the system does to the thread that holds it is part of that, as it would be for the audio
    thread. */
static std::vector<double> watchHolds (const TickLock& lock, const std::atomic<bool>& stop)
{
    std::vector<double> holds;

    while (! stop)
    {
        if (lock.tryEnter())
        {
            lock.exit();
            continue;
        }

        const auto start = Clock::now();

        while (! lock.tryEnter())
        {
        }

        holds.push_back (microsecondsSince (start));
        lock.exit();
    }

    return holds;
}

/** How long an edit keeps a lock: a load of a whole preset, or a click on a cell of a grid, which is half full then. */
static void longestHold (benchmark::State& state, bool isClick)
{
    VelkorAudioProcessor processor;
    const juce::String texts[] = { documentWith (true, 0.3f), documentWith (true, 0.7f) };
    const bool isSignal = state.range (0) == 0;
    const auto& lock =
        isSignal ? processor.engine->signal.connectionLock : processor.engine->modulation.modLock;
    std::atomic<bool> stop { false };
    std::vector<double> holds;
    std::thread watcher ([&] { holds = watchHolds (lock, stop); });
    std::size_t turn = 0;

    for (auto _ : state)
    {
        // 37 is prime to the numbers of cells: each comes up once before the first comes again.
        const auto cell = static_cast<int> (turn * 37 % (isSignal ? 80 : 60));
        const bool on = turn++ * 37 / (isSignal ? 80 : 60) % 2 == 0;

        // The watcher has to see one hold end before the next begins.
        for (const auto start = Clock::now(); isClick && microsecondsSince (start) < 20.0;)
        {
        }

        if (! isClick)
            setStateFromText (processor, texts[turn % 2]);
        else if (isSignal)
            processor.setSignalConnection (cell / kNumSignalDests, cell % kNumSignalDests, on);
        else
            processor.setModConnection (cell / kNumModDests, cell % kNumModDests, on);
    }

    stop = true;
    watcher.join();
    std::sort (holds.begin(), holds.end());
    state.SetLabel (isSignal ? "connectionLock" : "modLock");

    if (! holds.empty())
    {
        state.counters["seen"] = static_cast<double> (holds.size());
        state.counters["median_us"] = holds[holds.size() / 2];
        state.counters["p99_us"] = holds[holds.size() * 99 / 100];
        state.counters["longest_us"] = holds.back();
    }
}

BENCHMARK (loadDocument)->Arg (0)->Arg (1)->Unit (benchmark::kMicrosecond);
BENCHMARK (saveDocument)->Arg (0)->Arg (1)->Unit (benchmark::kMicrosecond);
BENCHMARK (saveFile)->Unit (benchmark::kMicrosecond);
BENCHMARK (constructFirst)->Unit (benchmark::kMillisecond)->Iterations (20);
BENCHMARK (constructLater)->Unit (benchmark::kMillisecond);
BENCHMARK (prepareAgain)->Arg (0)->Arg (1)->ArgName ("otherRate")->Unit (benchmark::kMicrosecond);
BENCHMARK_CAPTURE (longestHold, load, false)
    ->Arg (0)
    ->Arg (1)
    ->Unit (benchmark::kMicrosecond)
    ->Iterations (5000);
BENCHMARK_CAPTURE (longestHold, click, true)
    ->Arg (0)
    ->Arg (1)
    ->Unit (benchmark::kMicrosecond)
    ->Iterations (20000);
