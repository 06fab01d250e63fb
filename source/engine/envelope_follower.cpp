// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/envelope_follower.h"

#include "engine/engine_globals.h"

#include <cmath>

static float coefOf (float seconds, float rate) noexcept
{
    const float samples = seconds * rate;
    return static_cast<float> (std::exp (-1.0 / static_cast<double> (samples)));
}

void envelope_follower_set_times (EnvelopeFollower& env, float attackSeconds,
                                  float decaySeconds) noexcept
{
    const float attack = attackSeconds * 0.5f;
    const float decay = decaySeconds * 0.5f;

    if (attack == env.attackTime && decay == env.decayTime &&
        env.coefRate == loadRelaxed (gAudioSamplingRate))
        return;

    env.attackTime = attack;
    env.decayTime = decay;
    envelope_follower_set_rate (env);
}

void envelope_follower_set_rate (EnvelopeFollower& env) noexcept
{
    env.coefRate = loadRelaxed (gAudioSamplingRate);
    env.attackCoef = coefOf (env.attackTime, env.coefRate);
    env.decayCoef = coefOf (env.decayTime, env.coefRate);
    env.attackCoefInverse = 1.0f - env.attackCoef;
    env.decayCoefInverse = 1.0f - env.decayCoef;
}
