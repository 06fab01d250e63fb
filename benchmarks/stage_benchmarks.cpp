// SPDX-License-Identifier: AGPL-3.0-or-later
#include "counters.h"
#include "engine/engine.h"
#include "engine/engine_globals.h"
#include "engine/saturation.h"
#include "noise.h"
#include "patches.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdlib>
#include <vector>

// Each stage of the engine by itself, at 48 kHz, in its single form: a record's fields go to memory and come back
// between one call and the next. In a block the stages run in pairs and share their set-up: see processBlock for that.

static constexpr double kSampleRate = 48000.0;
static constexpr int kCalls = 1024;  ///< of a stage, per iteration of a benchmark

/** Times step (x) over noise x and reports nanoseconds per call under the given name. */
template <typename Step>
static void timeCalls (benchmark::State& state, const char* unit, Step step)
{
    const juce::ScopedNoDenormals noDenormals;
    const std::vector<float> input = whiteNoise (kCalls, 3);
    const Stopwatch stopwatch;

    for (auto _ : state)
        for (const float x : input)
        {
            step (x);
            benchmark::ClobberMemory();
        }

    state.counters[unit] =
        stopwatch.nanoseconds() / (static_cast<double> (state.iterations()) * kCalls);
}

// --- delay line ----------------------------------------------------------------------------------------

/** How a line runs. */
struct LineMode
{
    float speed;
    bool isReversed, isLooping;
};

static void delayLine (benchmark::State& state, LineMode mode)
{
    setAudioSamplingRate (kSampleRate);
    DelayFad line;
    delay_fad_init (line);
    delay_fad_set_time (line, false, 2, 0.5f, 500.0f, 120.0);
    line.readRate = mode.speed;
    line.writeRate = mode.speed;
    line.reverseRequest = mode.isReversed;
    line.loop = mode.isLooping;

    timeCalls (state, "ns/frame",
               [&line] (float x)
               {
                   delay_fad_dsp (line, x);
                   benchmark::DoNotOptimize (line.out);
               });

    delay_fad_free (line);
}

BENCHMARK_CAPTURE (delayLine, forward, LineMode { 1.0f, false, false });
BENCHMARK_CAPTURE (delayLine, slow, LineMode { 0.77f, false, false });
BENCHMARK_CAPTURE (delayLine, fast, LineMode { 1.23f, false, false });
BENCHMARK_CAPTURE (delayLine, reverse, LineMode { 1.0f, true, false });
BENCHMARK_CAPTURE (delayLine, reverseFast, LineMode { 1.23f, true, false });
BENCHMARK_CAPTURE (delayLine, loop, LineMode { 1.0f, false, true });

static void feedback (benchmark::State& state)
{
    float amount = 0.5f;
    benchmark::DoNotOptimize (amount);
    timeCalls (state, "ns/frame",
               [&amount] (float x)
               { benchmark::DoNotOptimize (feedbackShape (splat (amount), splat (20.0f * x))); });
}

BENCHMARK (feedback);

// --- filter, saturation, panner ------------------------------------------------------------------------------

static void filter (benchmark::State& state)
{
    setAudioSamplingRate (kSampleRate);
    FilterMultimode record;
    filter_multimode_init (record);
    filter_multimode_set_response (record, 5.0f, 0.5f);
    const float renormal = gFilterRenormal.load (std::memory_order_relaxed);

    timeCalls (state, "ns/frame",
               [&record, renormal] (float x)
               {
                   filter_multimode_dsp_morph (record, x, renormal);
                   benchmark::DoNotOptimize (record);
               });
}

BENCHMARK (filter);

static void saturator (benchmark::State& state)
{
    float k = saturationConstant (0.5f);
    benchmark::DoNotOptimize (k);
    timeCalls (state, "ns/frame",
               [&k] (float x) { benchmark::DoNotOptimize (saturation (splat (k), splat (x))); });
}

BENCHMARK (saturator);

static void panner (benchmark::State& state)
{
    RouterPanner1to2 record;
    router_panner_1to2_init (record);
    timeCalls (state, "ns/frame",
               [&record] (float x)
               {
                   router_panner_1to2_dsp (record, x);
                   benchmark::DoNotOptimize (record);
               });
    router_panner_1to2_free (record);
}

BENCHMARK (panner);

// --- routers -------------------------------------------------------------------------------------------------

static void router (benchmark::State& state)
{
    SignalMatrix matrix;

    // Spread over the destinations. Without the shift by one after 40, half of the pairs never came up.
    for (int i = 0; matrix.connectionCount < state.range (0); ++i)
        signal_matrix_edit (matrix, (i + i / 40) % kNumSignalSources, i % kNumSignalDests, true);

    float negatives[kNumSignalSources] {};
    DestLanes dests;
    timeCalls (state, "ns/frame",
               [&matrix, &negatives, &dests] (float x)
               {
                   negatives[sourceInputL] = -x;
                   signal_matrix_dsp (matrix, negatives, dests);
                   benchmark::DoNotOptimize (dests);
               });
}

BENCHMARK (router)->ArgName ("connections")->Arg (0)->Arg (6)->Arg (20)->Arg (80);

static void modulationRouter (benchmark::State& state)
{
    ModMatrix matrix;

    for (int i = 0; matrix.router.routes.size() < state.range (0); ++i)
        mod_router_set (matrix, i % kNumModSources, i / kNumModSources, true);

    timeCalls (state, "ns/tick",
               [&matrix] (float x)
               {
                   matrix.modSources.getReference (modSourceLfo1) = x;
                   mod_router_dsp (matrix, true);
               });
}

BENCHMARK (modulationRouter)->ArgName ("routes")->Arg (0)->Arg (6)->Arg (60);

// --- control tick ----------------------------------------------------------------------------------------------

static void lfo (benchmark::State& state, LfoKind kind, float skew)
{
    GenLFO record;
    gen_LFO_init (record);
    gen_LFO_set_kind (record, kind);
    gen_LFO_set_skew (record, skew);
    double phase = 0.0;

    timeCalls (state, "ns/tick",
               [&record, &phase] (float)
               {
                   phase = gen_LFO_reduce (phase + 0.0123);
                   benchmark::DoNotOptimize (gen_LFO_dsp_phasor (record, phase));
               });
}

BENCHMARK_CAPTURE (lfo, triangle, lfoTriangle, 0.5f);
BENCHMARK_CAPTURE (lfo, sine, lfoSine, 0.5f);
BENCHMARK_CAPTURE (lfo, skewedSine, lfoSine, 0.3f);
BENCHMARK_CAPTURE (lfo, square, lfoSquare, 0.5f);
BENCHMARK_CAPTURE (lfo, random, lfoRandom, 0.5f);

/** Look-up of the cut-off and both coefficients of one filter, as on a tick that moves it. */
static void tickFilter (benchmark::State& state, float reso)
{
    setAudioSamplingRate (kSampleRate);
    FreqLookup scale;
    freq_lookup_init (scale);
    FilterMultimode record;
    filter_multimode_init (record);
    filter_multimode_set_response (record, reso, 0.5f);

    timeCalls (state, "ns/tick",
               [&record, &scale] (float x)
               {
                   scale.output = tableLookup (scale.size, scale.table, 0.5f + x);
                   setCoef (record, scale.output);
                   setDamp (record);
               });

    std::free (scale.table);
}

BENCHMARK_CAPTURE (tickFilter, noResonance, 0.0f);
BENCHMARK_CAPTURE (tickFilter, resonance, 5.0f);

static void tickPanner (benchmark::State& state)
{
    RouterPanner1to2 record;
    router_panner_1to2_init (record);
    timeCalls (state, "ns/tick",
               [&record] (float x) { router_panner_1to2_set (record, 0.5f + x); });
    router_panner_1to2_free (record);
}

BENCHMARK (tickPanner);

static void tickRamp (benchmark::State& state)
{
    setAudioSamplingRate (kSampleRate);
    RampGenerator ramp;
    ramp_init (ramp);
    timeCalls (state, "ns/tick",
               [&ramp] (float) { benchmark::DoNotOptimize (rampTick (ramp, 1.0f)); });
}

BENCHMARK (tickRamp);

static void tickLfoRate (benchmark::State& state)
{
    GenLFO record;
    gen_LFO_init (record);
    timeCalls (state, "ns/tick", [&record] (float x) { gen_LFO_set_rate (record, 1.0f + x); });
}

BENCHMARK (tickLfoRate);

static void tickEnvelope (benchmark::State& state)
{
    setAudioSamplingRate (kSampleRate);
    EnvelopeFollower env;
    envelope_follower_set_times (env, 0.01f, 0.25f);
    timeCalls (state, "ns/tick",
               [&env] (float x)
               { benchmark::DoNotOptimize (envelope_follower_dsp (env, std::abs (x))); });
}

BENCHMARK (tickEnvelope);

// --- block -----------------------------------------------------------------------------------------------------

static void bindParameters (benchmark::State& state)
{
    const VelkorAudioProcessor processor;
    timeCalls (state, "ns/block",
               [&processor] (float)
               {
                   // As if all had changed: the dearest block.
                   ParamSnapshot bound = noSnapshot();
                   bindSnapshot (readSnapshot (processor.paramValues), bound, *processor.engine);
               });
}

BENCHMARK (bindParameters);

/** The engine's share of a block: a block of n samples without parameters, MIDI and transport. */
static void engineBlock (benchmark::State& state)
{
    const auto n = static_cast<int> (state.range (0));
    const juce::ScopedNoDenormals noDenormals;
    const std::vector<float> input = whiteNoise (static_cast<std::size_t> (n), 3);
    std::vector<float> left = input, right = input;
    VelkorEngine engine;
    engine_prepare (engine, kSampleRate);
    const Stopwatch stopwatch;

    for (auto _ : state)
    {
        left = input;
        right = input;
        engine_dsp_block (engine, left.data(), right.data(), n, Transport {});
        benchmark::ClobberMemory();
    }

    state.counters["ns/frame"] =
        stopwatch.nanoseconds() / (static_cast<double> (state.iterations()) * n);
}

BENCHMARK (engineBlock)->ArgName ("block")->Arg (4)->Arg (16)->Arg (512);

/** The middle of many times. */
static double median (std::vector<double>& times)
{
    std::ranges::sort (times);
    return times[times.size() / 2];
}

/** The block that runs away when both lines are full of sound, and those behind it, in which what the lines held is
    cleared bit by bit. */
static void runawayOfFullLines (benchmark::State& state)
{
    const auto n = static_cast<int> (state.range (0));
    const auto sampleRate = static_cast<double> (state.range (1));
    const juce::ScopedNoDenormals noDenormals;
    setAudioSamplingRate (44100.0);  // as a new process has it: the buffers grow with the rate then
    VelkorEngine engine;
    engine_prepare (engine, sampleRate);
    const std::vector<float> input = whiteNoise (static_cast<std::size_t> (n), 3);
    std::vector<float> left, right;
    std::vector<double> usual, runaway, behind;

    const auto play = [&] (double seconds, bool runsAway, std::vector<double>& microseconds)
    {
        for (double time = 0.0; time < seconds; time += static_cast<double> (n) / sampleRate)
        {
            left = input;
            left[0] = runsAway ? 3.0e38f : left[0];  // twice that is more than the envelope can sum
            right = left;
            const Stopwatch stopwatch;
            engine_dsp_block (engine, left.data(), right.data(), n, Transport {});
            microseconds.push_back (stopwatch.nanoseconds() * 1.0e-3);
        }
    };

    for (auto _ : state)
    {
        play (14.0, false, usual);
        play (1.0e-6, true, runaway);  // one block
        play (0.2, false, behind);
    }

    state.counters["runaway_us"] = median (runaway);
    state.counters["worst_us"] = runaway.back();
    state.counters["behind_us"] = median (behind);
    state.counters["behind_p99_us"] = behind[behind.size() * 99 / 100];
    state.counters["usual_us"] = median (usual);
    state.counters["usual_p99_us"] = usual[usual.size() * 99 / 100];
}

BENCHMARK (runawayOfFullLines)
    ->ArgNames ({ "block", "rate" })
    ->Args ({ 64, 48000 })
    ->Args ({ 64, 192000 })
    ->Iterations (10);
