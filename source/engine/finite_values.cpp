// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/finite_values.h"

#include "engine/engine.h"

#include <algorithm>
#include <cmath>

void silenceNonFinite (float* values, int n) noexcept
{
    std::replace_if (
        values, values + n, [] (float x) { return ! std::isfinite (x); }, 0.0f);
}

bool signalStateIsFinite (const VelkorEngine& engine) noexcept
{
    // A sum is finite only if every term is: infinities and NaNs survive it. Doubles, so that it can't
    // overflow by itself.
    double sum = static_cast<double> (engine.envelope.envState);

    for (const auto* line : { &engine.delay1, &engine.delay2 })
        sum += static_cast<double> (line->out) + static_cast<double> (line->lastIn);

    for (const auto* filter : { &engine.filter1, &engine.filter2 })
        sum += filter->low * 0.0 + filter->high * 0.0 + filter->band * 0.0 + filter->notch * 0.0 +
               static_cast<double> (filter->out);

    for (const float value : engine.signal.signalSources)
        sum += static_cast<double> (value);

    for (const float value : engine.signal.signalDests)
        sum += static_cast<double> (value);

    return std::isfinite (sum);
}

void recoverFromRunaway (VelkorEngine& engine) noexcept
{
    engine_clear (engine);

    for (auto* line : { &engine.delay1, &engine.delay2 })
    {
        silenceNonFinite (&line->out, 1);
        silenceNonFinite (&line->lastIn, 1);
    }

    silenceNonFinite (engine.modulation.modSources.getRawDataPointer(), kNumModSources);
}
