// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "engine/delay_fad.h"
#include "engine/envelope_follower.h"
#include "engine/filter_multimode.h"
#include "engine/gen_LFO.h"
#include "engine/midi_sources.h"
#include "engine/mod_router.h"
#include "engine/ramp_lookup.h"
#include "engine/router_panner.h"
#include "engine/signal_matrix.h"

#include <cstdint>
#include <span>

/** What the parameters say, rewritten at the head of every block (parameter_binding); N is 1 or 2. */
struct BlockValues
{
    float inputGain = 1.0f;
    bool mono = false;
    float killTarget = 1.0f;  ///< 0 while Kill is on
    float phaseSign1 = 1.0f, phaseSign2 = 1.0f;
    float satK1 = 0.0f, satK2 = 0.0f;
    float feedback1 = 0.0f, feedback2 = 0.0f;
    float wetGain = 1.0f, dryGain = 1.0f;
    float delayTime1 = 500.0f, delayTime2 = 500.0f;      ///< ms, before the multiplier
    float delayTimeNorm1 = 0.5f, delayTimeNorm2 = 0.5f;  ///< place on the time parameter's range
    std::int32_t mult1 = 2, mult2 = 2;
    bool delaySync1 = false, delaySync2 = false;
    float fine1 = 1.0f, fine2 = 1.0f;  ///< speed of the heads, 0.5 to 1.5
    float delayMod1 = 0.0f, delayMod2 = 0.0f;
    float lfoRate1 = 1.0f, lfoRate2 = 1.0f;  ///< Hz
    float lfoRateNorm1 = 0.5f, lfoRateNorm2 = 0.5f;
    float lfoMod1 = 0.0f, lfoMod2 = 0.0f;
    bool lfoSync1 = false, lfoSync2 = false;
    bool lfo2Reset = false;
    double lfoPhase1 = 0.0, lfoPhase2 = 0.0;  ///< kept between blocks
    float filterFreqNorm1 = 0.8f, filterFreqNorm2 = 0.8f;
    float filterMod1 = 0.0f, filterMod2 = 0.0f;
    float pan1 = 0.25f, pan2 = 0.75f;
    float panMod1 = 0.0f, panMod2 = 0.0f;
    float level1 = 1.0f, level2 = 1.0f;
    float levelMod1 = 0.0f, levelMod2 = 0.0f;
    float envSensitivity = 0.0f;
};

/** All signal state of an instance. Made by the processor before the first prepareToPlay and kept as long as
    the processor is; the connections and routes outlive every prepareToPlay. The audio thread owns it while
    a block runs, but for what connectionLock and modLock guard. */
struct VelkorEngine
{
    DelayFad delay1, delay2;
    FilterMultimode filter1, filter2;
    RouterPanner1to2 panner1, panner2;
    GenLFO lfo1, lfo2;
    EnvelopeFollower envelope;
    RampGenerator killRamp, gateRamp;
    FreqLookup freqLookup;
    ModMatrix modulation;
    SignalMatrix signal;
    BlockValues block;
    MidiSources midi;
    float antiDenormalOffset = 1.0e-14f;  ///< its sign flips on every tick
    double sampleRate = 44100.0;          ///< Hz, this instance's own

    /** Builds everything at the global sample rate and makes the six default connections. Any thread. */
    VelkorEngine();
    ~VelkorEngine();

    VelkorEngine (const VelkorEngine&) = delete;
    VelkorEngine& operator= (const VelkorEngine&) = delete;
};

/** Sets this instance's and the global sample rate in hertz and clears the signal state. A rate that is no number
    from 1 up to below 1.0e9 is ignored: the lengths worked out of it would not fit their types. Any thread, not
    beside a block; takes no lock; allocates where the rate changes the delay buffers' length. */
void engine_prepare (VelkorEngine& engine, double sampleRate) noexcept;

/** Silences the signal state: delay buffers and heads (delay_fad_clear), filters, envelope, gate, held notes, node
    values, LFO phases. Connections, routes, LFO records, ramps, note value, wheel and the modulation sources stay,
    and so do the last input and output of each delay line. What the delay buffers held is zeroed by the blocks that
    follow, a piece in each. Takes no lock and allocates nothing. Any thread while no block runs; the audio thread at
    the end of a block that ran away. */
void engine_clear (VelkorEngine& engine) noexcept;

/** Makes or breaks a connection of the signal matrix, with its effect on a filter that gains or loses its
    last source. Out of range does nothing. Takes connectionLock twice, to copy the list and to put the edited one in
    its place; the plans are compiled between. If another thread has changed the list meanwhile, it does all of it
    again. Not on the audio thread. */
void engine_set_connection (VelkorEngine& engine, int source, int destination, bool on) noexcept;

/** Makes the given connections, in their order, and no others; pairs out of range and repeated ones are left
    out. Nodes that lose their source keep their values, as in engine_set_connection. The list is worked out
    before connectionLock is taken. Not on the audio thread. */
void engine_replace_connections (VelkorEngine& engine, std::span<const SignalPair> pairs) noexcept;

/** The host's transport as a block sees it. */
struct Transport
{
    double tempo = 120.0;   ///< beats per minute; 120 unless above 0
    double position = 0.0;  ///< quarter notes; 0 unless finite
};

/** One block, in place: left and right may be the same memory, and then right's result stays. Numbers that
    are not finite count as 0 on the way in. A patch that has run away into such numbers is silenced at the
    block's end, as engine_clear does, and none of them leaves. Audio thread; takes modLock and
    connectionLock once per tick each, never together; allocates nothing. */
void engine_dsp_block (VelkorEngine& engine, float* left, float* right, int numSamples,
                       const Transport& transport) noexcept;
