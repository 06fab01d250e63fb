// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/filter_multimode.h"

#include "engine/engine_globals.h"

#include <algorithm>
#include <cmath>
#include <numbers>

std::atomic<float> gFilterRenormal { 1.0e-15f };

void filter_multimode_init (FilterMultimode& filter) noexcept
{
    filter = {};
    setCoef (filter, filter.freq);
    setDamp (filter);
}

void filter_multimode_set_response (FilterMultimode& filter, float reso, float mode) noexcept
{
    if (reso != filter.reso)
    {
        filter.reso = reso;
        filter.q = static_cast<double> (reso) * 0.1;
        filter.resoDamp = 2.0 * (1.0 - std::pow (filter.q, 0.25));
    }

    setDamp (filter);

    const float m = mode;
    filter.mode = m;

    if (m < 0.33333334f)
    {
        filter.notchMix = 1.0f - 3.0f * m;
        filter.lowMix = 3.0f * m;
        filter.bandMix = 0.0f;
        filter.highMix = 0.0f;
    }
    else if (m < 0.6666667f)
    {
        filter.notchMix = 0.0f;
        filter.lowMix = 2.0f - 3.0f * m;
        filter.bandMix = 3.0f * m - 1.0f;
        filter.highMix = 0.0f;
    }
    else
    {
        filter.notchMix = 0.0f;
        filter.lowMix = 0.0f;
        filter.bandMix = 3.0f - 3.0f * m;
        filter.highMix = 3.0f * m - 2.0f;
    }
}

void filter_multimode_connect (FilterMultimode& filter, bool isConnected) noexcept
{
    filter.active = isConnected ? 1 : 0;
}

void filter_multimode_clear (FilterMultimode& filter) noexcept
{
    filter.out = 0.0f;
    filter.low = 0.0;
    filter.high = 0.0;
    filter.band = 0.0;
    filter.notch = 0.0;
    filter.damp = 0.0;
}

void filter_multimode_dsp_morph (FilterMultimode& filter, float in, float renormal) noexcept
{
    const MorphSettings<double> set { filter.coef,
                                      filter.damp,
                                      static_cast<double> (filter.lowMix),
                                      static_cast<double> (filter.highMix),
                                      static_cast<double> (filter.bandMix),
                                      static_cast<double> (filter.notchMix) };
    MorphState<double> state { filter.low, filter.high, filter.band, filter.notch };
    const auto x = static_cast<double> ((in + renormal) * 0.5f);
    filter.out = static_cast<float> (morph (set, state, x, static_cast<double> (-renormal)));
    filter.low = state.low;
    filter.high = state.high;
    filter.band = state.band;
    filter.notch = state.notch;
}

void filter_multimode_dsp_morph (FilterMultimode& filter, float in) noexcept
{
    const float renormal = gFilterRenormal.load (std::memory_order_relaxed);
    gFilterRenormal.store (-renormal, std::memory_order_relaxed);
    filter_multimode_dsp_morph (filter, in, renormal);
}
