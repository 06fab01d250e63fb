// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/engine.h"

#include "engine/engine_globals.h"

#include <array>
#include <cstdlib>

VelkorEngine::VelkorEngine()
{
    delay_fad_init (delay1);
    delay_fad_init (delay2);
    filter_multimode_init (filter1);
    filter_multimode_init (filter2);
    router_panner_1to2_init (panner1);
    router_panner_1to2_init (panner2);
    gen_LFO_init (lfo1);
    gen_LFO_init (lfo2);
    ramp_init (killRamp);
    ramp_init (gateRamp);
    freq_lookup_init (freqLookup);

    constexpr std::array<std::array<int, 2>, 6> kDefaultConnections { {
        { sourceInputL, destDelay1 },
        { sourceInputR, destDelay2 },
        { sourceDelay1, destFeedback1 },
        { sourceDelay2, destFeedback2 },
        { sourceDelay1, destOutput1 },
        { sourceDelay2, destOutput2 },
    } };

    for (const auto& [source, destination] : kDefaultConnections)
        engine_set_connection (*this, source, destination, true);
}

VelkorEngine::~VelkorEngine()
{
    delay_fad_free (delay1);
    delay_fad_free (delay2);
    router_panner_1to2_free (panner1);
    router_panner_1to2_free (panner2);
    std::free (freqLookup.table);
}

void engine_prepare (VelkorEngine& engine, double sampleRate) noexcept
{
    if (! (sampleRate >= 1.0 && sampleRate < 1.0e9))
        return;

    engine.sampleRate = sampleRate;
    setAudioSamplingRate (sampleRate);

    for (auto* filter : { &engine.filter1, &engine.filter2 })
    {
        setCoef (*filter, filter->freq);
        setDamp (*filter);
    }

    delay_fad_prepare (engine.delay1);
    delay_fad_prepare (engine.delay2);
    rampSetRate (engine.killRamp);
    rampSetRate (engine.gateRamp);
    envelope_follower_set_rate (engine.envelope);
    engine_clear (engine);

    for (auto* line : { &engine.delay1, &engine.delay2 })
        delay_fad_sweep (*line, line->numPages);
}

void engine_clear (VelkorEngine& engine) noexcept
{
    delay_fad_clear (engine.delay1);
    delay_fad_clear (engine.delay2);
    filter_multimode_clear (engine.filter1);
    filter_multimode_clear (engine.filter2);
    engine.envelope.envState = 0.0f;
    midi_sources_clear (engine.midi);
    engine.signal.signalSources.fill (0.0f);
    engine.signal.signalDests.fill (0.0f);
    engine.block.lfoPhase1 = 0.0;
    engine.block.lfoPhase2 = 0.0;
}

/** Takes over a matrix that was compiled beforehand. Caller holds connectionLock. */
static void takeConnections (VelkorEngine& engine, const SignalMatrix& fresh) noexcept
{
    signal_matrix_take (engine.signal, fresh);

    filter_multimode_connect (engine.filter1, signal_matrix_has_source (fresh, destFilter1));
    filter_multimode_connect (engine.filter2, signal_matrix_has_source (fresh, destFilter2));
}

void engine_set_connection (VelkorEngine& engine, int source, int destination, bool on) noexcept
{
    SignalMatrix fresh;

    for (;;)
    {
        std::uint32_t edits = 0;

        {
            const TickLock::ScopedLockType lock (engine.signal.connectionLock);
            signal_matrix_copy (fresh, engine.signal);
            edits = engine.signal.edits;
        }

        if (! signal_matrix_edit (fresh, source, destination, on))
            return;

        const TickLock::ScopedLockType lock (engine.signal.connectionLock);

        if (engine.signal.edits == edits)
            return takeConnections (engine, fresh);
    }
}

void engine_replace_connections (VelkorEngine& engine, std::span<const SignalPair> pairs) noexcept
{
    SignalMatrix fresh;

    signal_matrix_fill (fresh, pairs);

    const TickLock::ScopedLockType lock (engine.signal.connectionLock);
    takeConnections (engine, fresh);
}
