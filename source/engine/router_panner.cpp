// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/router_panner.h"

#include "engine/ramp_lookup.h"

#include <cmath>
#include <cstdlib>
#include <numbers>

void router_panner_1to2_init (RouterPanner1to2& panner) noexcept
{
    panner = {};
    panner.table = lookup_table_allocate (panner.size);

    if (panner.table == nullptr)
        return;

    for (int i = 0; i < panner.size; ++i)
    {
        const float place = static_cast<float> (i) / 1023.0f;
        const auto s =
            static_cast<float> (std::sin (static_cast<double> (place) * std::numbers::pi * 0.5));
        panner.table[i] = s * s;
    }

    panner.table[panner.size] = panner.table[panner.size - 1];
    panner.lookup = 0.5f * panner.table[511] + 0.5f * panner.table[512];
    panner.gainR = panner.lookup;
    panner.gainL = 1.0f - panner.lookup;
}

void router_panner_1to2_free (RouterPanner1to2& panner) noexcept
{
    std::free (panner.table);
    panner.table = nullptr;
}
