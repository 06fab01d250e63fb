// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

/** Tracks the loudness of the input, once per control tick. The coefficients are those of the sample rate
    and the times are halved first, so that a time constant comes out at twice the parameter's; detector
    scale and time scale are what presets were made with. */
struct EnvelopeFollower
{
    float attackTime = 0.0f;         ///< seconds, half the parameter's
    float decayTime = 0.0f;          ///< seconds, half the parameter's
    float attackCoef = 0.0f;         ///< one-pole coefficient
    float decayCoef = 0.0f;          ///< one-pole coefficient
    float attackCoefInverse = 1.0f;  ///< 1 - attackCoef; kept up to date, not used
    float decayCoefInverse = 1.0f;   ///< 1 - decayCoef; kept up to date, not used
    float envState = 0.0f;           ///< the output; 8 at full level on both channels
    float envInput = 0.0f;           ///< the latest detector value
    float coefRate = 0.0f;  ///< sample rate that the coefficients are for, Hz; 0 before the first
};

/** Takes attack and decay parameters in seconds; recomputes the coefficients if these or the global sample rate are
    new. Audio thread, per block. */
void envelope_follower_set_times (EnvelopeFollower& env, float attackSeconds,
                                  float decaySeconds) noexcept;

/** Recomputes the coefficients from the stored times for the global sample rate. A time of 0 gives 0: the
    follower jumps to its input. Audio thread, or any thread while no block runs. */
void envelope_follower_set_rate (EnvelopeFollower& env) noexcept;

/** One tick with the detector's sum x of |left| + |right| over the tick's samples; returns the state. Audio thread,
    lock-free. */
inline float envelope_follower_dsp (EnvelopeFollower& env, float x) noexcept
{
    env.envInput = x;
    const float c = x <= env.envState ? env.decayCoef : env.attackCoef;
    env.envState = x + (env.envState - x) * c;
    return env.envState;
}
