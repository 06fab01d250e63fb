// SPDX-License-Identifier: AGPL-3.0-or-later
#include "counters.h"
#include "engine/engine_globals.h"
#include "patches.h"

#include <benchmark/benchmark.h>

// The whole of processBlock, as a host calls it.

static void processBlock (benchmark::State& state, std::string_view patchName)
{
    const auto blockSize = static_cast<int> (state.range (0));
    const auto sampleRate = static_cast<double> (state.range (1));
    PatchedInstance instance (*findPatch (patchName), sampleRate, blockSize);

    const Stopwatch stopwatch;

    for (auto _ : state)
        if (! instance.process())
        {
            state.SkipWithError ("the patch ran away");
            return;
        }

    const double perFrame =
        stopwatch.nanoseconds() / (static_cast<double> (state.iterations()) * blockSize);
    state.counters["ns/frame"] = perFrame;
    state.counters["%realtime"] = perFrame * 1.0e-9 * sampleRate * 100.0;
}

static void sizesAndRates (benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgNames ({ "block", "rate" })
        ->ArgsProduct ({ { 16, 64, 512, 4096 }, { 44100, 48000, 96000, 192000 } });
}

static void usualSizeAndRate (benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgNames ({ "block", "rate" })->Args ({ 512, 48000 });
}

BENCHMARK_CAPTURE (processBlock, default, "default")->Apply (sizesAndRates);
BENCHMARK_CAPTURE (processBlock, connected, "connected")->Apply (sizesAndRates);
BENCHMARK_CAPTURE (processBlock, everything, "everything")->Apply (sizesAndRates);

// What one thing more than the default patch costs.
BENCHMARK_CAPTURE (processBlock, fractional, "fractional")->Apply (usualSizeAndRate);
BENCHMARK_CAPTURE (processBlock, reversed, "reversed")->Apply (usualSizeAndRate);
BENCHMARK_CAPTURE (processBlock, modulated, "modulated")->Apply (usualSizeAndRate);

/** The worst that a block can bring: it runs away, and all that sounds is cleared at its end. */
static void runawayBlock (benchmark::State& state)
{
    const auto blockSize = static_cast<int> (state.range (0));
    const auto sampleRate = static_cast<double> (state.range (1));
    setAudioSamplingRate (44100.0);  // as a new process has it: the buffers grow with the rate then
    PatchedInstance runaway (kRunaway, sampleRate, blockSize);
    PatchedInstance usual (*findPatch ("default"), sampleRate, blockSize);
    const Stopwatch ofRunaway;

    for (auto _ : state)
        if (runaway.process())
        {
            state.SkipWithError ("the patch did not run away");
            return;
        }

    const double runawayNs = ofRunaway.nanoseconds();
    const Stopwatch ofUsual;

    for (benchmark::IterationCount i = 0; i < state.iterations(); ++i)
        usual.process();

    const double perBlock = runawayNs / static_cast<double> (state.iterations());
    state.counters["us/block"] = perBlock * 1.0e-3;
    state.counters["%realtime"] = perBlock * 1.0e-9 * sampleRate / blockSize * 100.0;
    state.counters["times default"] = runawayNs / ofUsual.nanoseconds();
}

BENCHMARK (runawayBlock)
    ->ArgNames ({ "block", "rate" })
    ->Args ({ 512, 48000 })
    ->Args ({ 64, 192000 });
