// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/envelope_follower.h"

#include "engine/engine_globals.h"

#include <cmath>

static float coefOf (float seconds) noexcept
{
    const float samples = seconds * loadRelaxed (gAudioSamplingRate);
    return static_cast<float> (std::exp (-1.0 / static_cast<double> (samples)));
}

void envelope_follower_set_times (EnvelopeFollower& env, float attackSeconds,
                                  float decaySeconds) noexcept
{
    env.attackTime = attackSeconds * 0.5f;
    env.decayTime = decaySeconds * 0.5f;
    envelope_follower_set_rate (env);
}

void envelope_follower_set_rate (EnvelopeFollower& env) noexcept
{
    env.attackCoef = coefOf (env.attackTime);
    env.decayCoef = coefOf (env.decayTime);
    env.attackCoefInverse = 1.0f - env.attackCoef;
    env.decayCoefInverse = 1.0f - env.decayCoef;
}
