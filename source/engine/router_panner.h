// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "engine/ramp_lookup.h"

#include <cstdint>

/** The pan stage behind one of the two outputs of the signal matrix: sine-squared on the right, the rest on
    the left, so that the gains add up to 1 and the centre is 6 dB down on each side. */
struct RouterPanner1to2
{
    float pan = 0.5f;   ///< 0 left to 1 right
    float mode = 0.0f;  ///< 0 the table, 1 a straight line, else gains stay; nothing sets it
    std::int32_t size = 1024;
    float* table = nullptr;  ///< size + 1 gains, owned, malloc family; empty if memory ran out
    float lookup = 0.5f;     ///< the last value from the table
    float gainL = 0.5f;      ///< in force
    float gainR = 0.5f;      ///< in force
    float outL = 0.0f;       ///< the last output pair
    float outR = 0.0f;
};

/** Allocates and fills the table and puts the pan in the middle, where it stays if there is no memory for the
    table. Any thread, before the first block. */
void router_panner_1to2_init (RouterPanner1to2& panner) noexcept;

/** Frees the table. Any thread, after the last block. */
void router_panner_1to2_free (RouterPanner1to2& panner) noexcept;

/** Sets the gains for a position, 0 to 1; changes nothing if the table is missing. Audio thread, in those ticks in
    which the position is new. */
inline void router_panner_1to2_set (RouterPanner1to2& panner, float pan) noexcept
{
    if (panner.table == nullptr)
        return;

    panner.pan = pan;

    if (panner.mode == 0.0f)
    {
        panner.lookup = tableLookup (panner.size, panner.table, pan);
        panner.gainR = panner.lookup;
        panner.gainL = 1.0f - panner.lookup;
    }
    else if (panner.mode == 1.0f)
    {
        panner.gainR = pan;
        panner.gainL = 1.0f - pan;
    }
}

/** One sample: in at the gains in force, into outL and outR. Audio thread, lock-free; the block's last sample only,
    since a tick's are worked out together. */
inline void router_panner_1to2_dsp (RouterPanner1to2& panner, float in) noexcept
{
    panner.outL = in * panner.gainL;
    panner.outR = in * panner.gainR;
}
