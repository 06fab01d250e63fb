// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/delay_fad.h"
#include "engine/engine_globals.h"
#include "engine/envelope_follower.h"
#include "engine/gen_LFO.h"
#include "velkor_plots/curves.h"

#include <cmath>
#include <string>

namespace
{
struct Wave
{
    const char* name;
    LfoKind kind;
    double cycles;
};

constexpr Wave kWaves[] = {
    { "Triangle", lfoTriangle, 2.0 },
    { "Sine", lfoSine, 2.0 },
    { "Square", lfoSquare, 2.0 },
    { "Random", lfoRandom, 5.0 },
};

/** A change that a line goes through. */
struct Change
{
    const char* name;
    float timeBefore, timeAfter;  ///< ms
    float rateAfter;              ///< speed of both heads; 1 before
};

constexpr Change kChanges[] = {
    { "shorter", 400.0f, 200.0f, 1.0f },
    { "longer", 200.0f, 400.0f, 1.0f },
    { "faster", 400.0f, 400.0f, 1.25f },
};

/** Sends a rising line through a delay line: what comes out says how long ago it was sent in, and how fast it rises
    says at which speed, hence pitch, it is played. */
void printChange (const Change& change)
{
    constexpr int kBlock = 48;  // 1 ms
    constexpr int kQuietBlocks = 410;
    constexpr int kBlocksPerPoint = 5;
    constexpr double kChangeSeconds = 0.5, kEndSeconds = 2.5;
    constexpr double kScale = 1.0 / 64.0;  // the values stay small and exact
    const int blocks = static_cast<int> (std::lround (kEndSeconds * kPlotRate / kBlock));
    const int changeBlock = static_cast<int> (std::lround (kChangeSeconds * kPlotRate / kBlock));

    setAudioSamplingRate (kPlotRate);
    DelayFad line;
    delay_fad_init (line);
    double sent = 0.0, before = 0.0;
    beginCurve (change.name);

    for (int block = 0; block < blocks; ++block)
    {
        const bool isChanged = block >= changeBlock;
        delay_fad_set_time (line, false, 1, 0.0f, isChanged ? change.timeAfter : change.timeBefore,
                            120.0);
        line.readRate = line.writeRate = isChanged ? change.rateAfter : 1.0f;

        for (int n = 0; n < kBlock; ++n)
        {
            delay_fad_dsp (line, static_cast<float> (sent * kScale));
            sent += 1.0;
        }

        const double heard = static_cast<double> (line.out) / kScale;
        const double speed = (heard - before) / kBlock;
        before = heard;

        // Until the longest of the delays has passed the line has nothing to say.
        if (block > kQuietBlocks && block % kBlocksPerPoint == 0)
            point ((block + 1) * kBlock / kPlotRate, (sent - heard) * 1000.0 / kPlotRate,
                   12.0 * std::log2 (speed));
    }

    endCurve();
    delay_fad_free (line);
}
}  // namespace

void printLfo()
{
    constexpr int kPoints = 200;  // per cycle

    for (const auto& wave : kWaves)
        for (const int percent : { 10, 50, 90 })
        {
            GenLFO lfo;
            gen_LFO_init (lfo);
            gen_LFO_set_kind (lfo, wave.kind);
            gen_LFO_set_skew (lfo, static_cast<float> (percent) / 100.0f);
            beginCurve ((std::string (wave.name) + " " + std::to_string (percent)).c_str());

            for (int i = 0; i < static_cast<int> (kPoints * wave.cycles); ++i)
                point (static_cast<double> (i) / kPoints,
                       static_cast<double> (
                           gen_LFO_dsp_phasor (lfo, static_cast<double> (i % kPoints) / kPoints)));

            endCurve();
        }
}

void printEnvelope()
{
    constexpr float kFull = 2.0f * ControlTick;  // both channels at full level through a tick
    const int ticks = static_cast<int> (std::lround (2.6 * kPlotRate / ControlTick));
    setAudioSamplingRate (kPlotRate);
    EnvelopeFollower env;
    envelope_follower_set_times (env, 0.05f, 0.25f);
    beginCurve ("envelope");

    for (int tick = 0; tick < ticks; ++tick)
    {
        const double seconds = tick * ControlTick / kPlotRate;
        const bool sounds = seconds >= 0.1 && seconds < 1.1;
        const float value = envelope_follower_dsp (env, sounds ? kFull : 0.0f);

        if (tick % 48 == 0)
            point (seconds, static_cast<double> (value / kFull));
    }

    endCurve();
}

void printGlide()
{
    for (const auto& change : kChanges)
        printChange (change);
}
