// SPDX-License-Identifier: AGPL-3.0-or-later
#include "counters.h"
#include "patches.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <latch>
#include <memory>
#include <thread>
#include <vector>

// Many instances at once, as in a session with one on every track. Instances share nothing that is written
// while audio runs, so that M threads on M free cores should do M times the work of one.

namespace
{

constexpr int kBlockSize = 512;
constexpr int kBlocks =
    4096;  ///< of each instance, per measurement: long beside what it takes to wake a thread

using Instances = std::vector<std::unique_ptr<PatchedInstance>>;

Instances makeInstances (int count)
{
    Instances instances;

    for (int i = 0; i < count; ++i)
        instances.push_back (
            std::make_unique<PatchedInstance> (*findPatch ("default"), 48000.0, kBlockSize));

    return instances;
}

using Clock = std::chrono::steady_clock;

/** What one thread did. */
struct Share
{
    Clock::time_point start, end;
    double cpuNs = 0.0;
    bool ranAway = false;
};

/** What all of them took together, in nanoseconds: on the clock, and of processor time. */
struct Took
{
    double wallNs = 0.0, cpuNs = 0.0;
    bool ranAway = false;
};

void add (Took& sum, const Took& took)
{
    sum.wallNs += took.wallNs;
    sum.cpuNs += took.cpuNs;
    sum.ranAway = sum.ranAway || took.ranAway;
}

/** Every numThreads-th instance from first on, block by block in turn, as a host walks its tracks. */
Share runShare (Instances& instances, int blocks, std::size_t first, std::size_t numThreads)
{
    Share share;
    const Stopwatch stopwatch;
    share.start = Clock::now();

    for (int block = 0; block < blocks; ++block)
        for (std::size_t i = first; i < instances.size(); i += numThreads)
            share.ranAway = ! instances[i]->process() || share.ranAway;

    share.end = Clock::now();
    share.cpuNs = stopwatch.nanoseconds();
    return share;
}

/** Deals the instances out to threads and lets each process that many blocks. The threads start together;
    from then on none waits for anything. */
Took timeOf (Instances& instances, int blocks, std::size_t numThreads)
{
    std::latch ready (static_cast<std::ptrdiff_t> (numThreads));
    std::vector<Share> shares (numThreads);
    std::vector<std::thread> threads;

    for (std::size_t first = 0; first < numThreads; ++first)
        threads.emplace_back (
            [&, first]
            {
                ready.arrive_and_wait();
                shares[first] = runShare (instances, blocks, first, numThreads);
            });

    for (auto& thread : threads)
        thread.join();

    const std::chrono::duration<double, std::nano> wall =
        std::ranges::max (shares, {}, &Share::end).end -
        std::ranges::min (shares, {}, &Share::start).start;
    Took took { wall.count() };

    for (const Share& share : shares)
        add (took, { 0.0, share.cpuNs, share.ranAway });

    return took;
}

/** Measures the many and the one in turn, so that a machine that slows down slows both. The one gets as many
    blocks as a thread of the many has, so that both are interrupted alike. */
void instances (benchmark::State& state)
{
    const auto count = static_cast<int> (state.range (0));
    const auto numThreads = static_cast<int> (state.range (1));
    const int blocksOfOne = kBlocks * count / numThreads;
    Instances one = makeInstances (1);
    Instances many = makeInstances (count);
    Took ofOne, ofMany;

    for (auto _ : state)
    {
        add (ofOne, timeOf (one, blocksOfOne, 1));
        const Took took = timeOf (many, kBlocks, static_cast<std::size_t> (numThreads));
        add (ofMany, took);
        state.SetIterationTime (took.wallNs * 1.0e-9);
    }

    if (ofOne.ranAway || ofMany.ranAway)
        state.SkipWithError ("the patch ran away");

    const double frames = static_cast<double> (state.iterations()) * kBlocks * kBlockSize * count;
    state.counters["ns/frame"] = ofMany.cpuNs / frames;
    state.counters["cost"] = ofMany.cpuNs / ofOne.cpuNs / numThreads;  // of a frame; 1 as if alone
    state.counters["throughput"] =
        ofOne.wallNs / ofMany.wallNs * numThreads;  // times that of the one
}

/** 1 to 32 instances, on as many threads as the machine has cores for and there are instances. */
void countsAndThreads (benchmark::internal::Benchmark* benchmark)
{
    const auto cores = static_cast<int> (std::max (1u, std::thread::hardware_concurrency()));
    benchmark->ArgNames ({ "instances", "threads" });

    for (int count = 1; count <= 32; count *= 2)
        for (int threads = 1; threads <= std::min (count, cores); threads *= 2)
            benchmark->Args ({ count, threads });
}

BENCHMARK (instances)->Apply (countsAndThreads)->UseManualTime()->Unit (benchmark::kMillisecond);

}  // namespace
