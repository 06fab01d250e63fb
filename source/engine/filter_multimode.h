// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "engine/engine_globals.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <numbers>

/** A state-variable filter, run twice per sample in double precision. Its output morphs from notch over
    lowpass and bandpass to highpass and goes through a soft limiter. Zero-initialise, call
    filter_multimode_init once; the audio thread's, but for active (see filter_multimode_connect). */
struct FilterMultimode
{
    float freq = 1000.0f;  ///< cut-off in hertz, modulation included
    float reso = 0.0f;     ///< 0 to 10; at 10 the filter rings on its own
    double coef = 0.0;     ///< frequency coefficient, 0 to 0.25
    double q = 0.0;        ///< reso * 0.1
    double damp = 0.0;     ///< damping, 0 to 2
    double low = 0.0;      ///< state
    double high = 0.0;     ///< last value, not read back
    double band = 0.0;     ///< state
    double notch = 0.0;    ///< last value, not read back
    float mode = 0.0f;     ///< position of the morph, 0 to 1
    float lowMix = 0.0f;   ///< the four weights add up to 1
    float highMix = 0.0f;
    float bandMix = 0.0f;
    float notchMix = 1.0f;
    float out = 0.0f;         ///< result of the last call; the next sample takes it up
    std::int32_t active = 0;  ///< 1 while a connection leads here; it is run regardless
    double resoDamp = 2.0;  ///< 2 (1 - q^0.25): follows from q, kept so that no tick takes the root
};

/** Works out coefficient and damping of a new record for the global sample rate. Any thread, before the first
    block. */
void filter_multimode_init (FilterMultimode& filter) noexcept;

/** Sets the cut-off in hertz and the coefficient for the global sample rate. The coefficient stops rising at
    0.25, a cut-off of about 0.08 of the sample rate: that is the filter's range. Audio thread, or any thread while
    no block runs. */
inline void setCoef (FilterMultimode& filter, float freq) noexcept
{
    const float rate = loadRelaxed (gAudioSamplingRate);
    const auto twiceTheRate = static_cast<double> (rate + rate);

    filter.freq = freq;
    const double angle = std::numbers::pi * static_cast<double> (freq) / twiceTheRate;

    // Between these the sine is above 0.125 for certain (it is from 0.1254 up to as much below pi): don't ask for it.
    filter.coef = angle > 0.126 && angle < 3.0 ? 0.25 : std::min (0.25, 2.0 * std::sin (angle));
}

/** Recomputes the damping from coef and resoDamp. Audio thread, or any thread while no block runs. */
inline void setDamp (FilterMultimode& filter) noexcept
{
    const double stable = std::min (2.0, -0.5 * filter.coef + 2.0 / filter.coef);
    filter.damp = std::min (stable, filter.resoDamp);
}

/** Resonance 0 to 10 and morph position 0 to 1 of the coming block: notch at 0, lowpass at 1/3, bandpass at
    2/3, highpass at 1, straight lines between. Audio thread, at the start of a block. */
void filter_multimode_set_response (FilterMultimode& filter, float reso, float mode) noexcept;

/** Records whether a connection leads here. The damping that goes with it is the audio thread's to recompute:
    it does so at every tick, before any sample, from the coefficient and resonance in hand, so that to do it
    here as well would change nothing and race. Caller holds connectionLock. */
void filter_multimode_connect (FilterMultimode& filter, bool isConnected) noexcept;

/** Zeroes state, outputs and damping; the next tick brings the damping back. Audio thread, or any thread
    while no block runs. */
void filter_multimode_clear (FilterMultimode& filter) noexcept;

/** What the sample loop needs of one filter (Real is double) or of a pair, side by side (Doubles). */
template <typename Real>
struct MorphSettings
{
    Real coef, damp;
    Real lowMix, highMix, bandMix, notchMix;
};

/** The signal state that goes with it. */
template <typename Real>
struct MorphState
{
    Real low, high, band, notch;
};

/** One sample x through both passes, the second of which gets no input; both count at full weight. The limiter
    y / (1 + 0.28 y²) peaks near 0.945 and falls beyond; it bounds the output, not the state. offset is a tiny value
    against denormal numbers, of the sign that the sample's own is not. Audio thread, lock-free. */
template <typename Real>
inline Real morph (const MorphSettings<Real>& set, MorphState<Real>& state, Real x,
                   Real offset) noexcept
{
    const Real low1 = (set.coef * state.band + offset) + state.low;
    const Real notch1 = x - set.damp * state.band;
    const Real high1 = notch1 - low1;
    const Real band1 = set.coef * high1 + state.band;

    const Real notch2 = 0.0 - set.damp * band1;
    const Real low2 = set.coef * band1 + low1;
    const Real high2 = notch2 - low2;
    const Real band2 = set.coef * high2 + band1;
    state = { low2, high2, band2, notch2 };

    const Real first =
        set.lowMix * low1 + set.bandMix * band1 + set.highMix * high1 + set.notchMix * notch1;
    const Real second =
        set.lowMix * low2 + set.bandMix * band2 + set.highMix * high2 + set.notchMix * notch2;
    const Real y = first + second;
    return y / (1.0 + 0.28 * y * y);
}

/** One sample of a filter by itself, as tests and timings run it; the result is in filter.out. renormal is the offset
    against denormal numbers before this call, which uses both signs of it. Any thread that has the filter to itself;
    lock-free. */
void filter_multimode_dsp_morph (FilterMultimode& filter, float in, float renormal) noexcept;

/** The offset that the next call on any filter of the process starts from; its sign flips at every call.

    The sample loop calls an even number of filters, so that a tick leaves it as it found it: it reads this
    once and hands the sign on by itself, and nothing shared is written while audio runs. */
extern std::atomic<float> gFilterRenormal;

/** One sample of a filter by itself: takes gFilterRenormal and leaves it flipped. Any thread that has the filter to
    itself; lock-free. Two threads at once may take the same sign. */
void filter_multimode_dsp_morph (FilterMultimode& filter, float in) noexcept;
