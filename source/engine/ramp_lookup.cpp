// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/ramp_lookup.h"

#include "engine/engine_globals.h"

#include <cmath>
#include <cstdlib>

static std::uint64_t ticksOf (float seconds) noexcept
{
    const auto count = static_cast<std::uint64_t> (seconds * loadRelaxed (gAudioSamplingRate));
    return count == 0 ? 1 : count;
}

void ramp_init (RampGenerator& ramp) noexcept
{
    ramp = {};
    ramp.upCount = ticksOf (ramp.upTime);
    ramp.downCount = ticksOf (ramp.downTime);
    ramp.reciprocal = 1.0f / static_cast<float> (ramp.upCount);
}

float rampTick (RampGenerator& ramp, float x) noexcept
{
    if (x != ramp.target)
    {
        const auto goal = static_cast<double> (x);
        ramp.target = x;

        if (ramp.value > goal)
            ramp.remaining = ramp.downCount;
        else if (goal > ramp.value)
            ramp.remaining = ramp.upCount;

        ramp.step = (goal - ramp.value) / static_cast<double> (ramp.remaining);
    }

    if (ramp.remaining != 0)
    {
        --ramp.remaining;
        ramp.value += ramp.step;
        ramp.output = static_cast<float> (ramp.value);
    }
    else
    {
        ramp.output = ramp.target;
    }

    return ramp.output;
}

void rampSetRate (RampGenerator& ramp) noexcept
{
    ramp.upCount = ticksOf (ramp.upTime);
    ramp.downCount = ticksOf (ramp.downTime);
    const auto target = static_cast<double> (ramp.target);

    if (ramp.value > target)
    {
        ramp.remaining = ramp.downCount;
        ramp.step = (target - ramp.value) / static_cast<double> (ramp.downCount);
    }
    else if (target > ramp.value)
    {
        ramp.remaining = ramp.upCount;
        ramp.reciprocal = 1.0f / static_cast<float> (ramp.upCount);
        ramp.step = (target - ramp.value) / static_cast<double> (ramp.upCount);
    }
}

float* lookup_table_allocate (std::int32_t size) noexcept
{
    return static_cast<float*> (std::calloc (static_cast<std::size_t> (size) + 1, sizeof (float)));
}

void freq_lookup_init (FreqLookup& lookup) noexcept
{
    constexpr double kLogOfRange = 6.1092475827643655;  // ln 450, the ratio of 18000 Hz to 40 Hz
    constexpr double kLogOf2 = 0.6931471805599453;

    lookup.size = 1024;
    lookup.output = 0.0f;
    lookup.table = lookup_table_allocate (lookup.size);

    if (lookup.table == nullptr)
        return;

    for (int i = 0; i < lookup.size; ++i)
        lookup.table[i] = static_cast<float> (
            40.0 * std::exp2 (static_cast<double> (i) / 1023.0 * kLogOfRange / kLogOf2));

    lookup.table[lookup.size] = lookup.table[lookup.size - 1];
}
