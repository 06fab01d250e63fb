// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "engine/filter_multimode.h"
#include "engine/lanes.h"

/** Both filters side by side while a block runs: two lanes of the same arithmetic take the time of one, and the
    chain of dependent operations in it is the longest of the sample loop. */
struct FilterPair
{
    MorphSettings<Doubles> set;
    MorphState<Doubles> state;
    Floats
        renormal;  ///< what the filters start every sample from: filter 2 is called second, so it has the other sign
};

/** Takes coefficients and damping over from the records, after a tick has set them. Audio thread. */
inline void filter_pair_take_coefs (FilterPair& pair, const FilterMultimode& one,
                                    const FilterMultimode& two) noexcept
{
    pair.set.coef = Doubles { one.coef, two.coef };
    pair.set.damp = Doubles { one.damp, two.damp };
}

/** Takes everything over from the records, at the head of a block. Audio thread. */
inline void filter_pair_take (FilterPair& pair, const FilterMultimode& one,
                              const FilterMultimode& two, float renormal) noexcept
{
    filter_pair_take_coefs (pair, one, two);
    pair.set.lowMix = toDoubles (Floats { one.lowMix, two.lowMix });
    pair.set.highMix = toDoubles (Floats { one.highMix, two.highMix });
    pair.set.bandMix = toDoubles (Floats { one.bandMix, two.bandMix });
    pair.set.notchMix = toDoubles (Floats { one.notchMix, two.notchMix });
    pair.state.low = Doubles { one.low, two.low };
    pair.state.high = Doubles { one.high, two.high };
    pair.state.band = Doubles { one.band, two.band };
    pair.state.notch = Doubles { one.notch, two.notch };
    pair.renormal = Floats { renormal, -renormal };
}

/** Gives the signal state back to the records, at the end of a block; the outputs are the caller's. Audio thread. */
inline void filter_pair_give_back (const FilterPair& pair, FilterMultimode& one,
                                   FilterMultimode& two) noexcept
{
    one.low = pair.state.low[0];
    one.high = pair.state.high[0];
    one.band = pair.state.band[0];
    one.notch = pair.state.notch[0];
    two.low = pair.state.low[1];
    two.high = pair.state.high[1];
    two.band = pair.state.band[1];
    two.notch = pair.state.notch[1];
}

/** One sample of both, of the inputs in the first two lanes; the outputs are in the first two. Audio thread. */
inline Floats filter_pair_dsp (const FilterPair& pair, MorphState<Doubles>& state,
                               Floats in) noexcept
{
    const Doubles x = toDoubles ((in + pair.renormal) * 0.5f);
    return toFloats (morph (pair.set, state, x, toDoubles (-pair.renormal)));
}
