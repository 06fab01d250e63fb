// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "engine/delay_fad.h"
#include "engine/lanes.h"

/** Both delay lines side by side while a block runs. The lanes of positions and their like are: read head of line 1,
    of line 2, write head of line 1, of line 2. The records are behind while a tick runs; they are what a line's rarer
    states (a reset, a turn, a loop, heads outside the buffer) are run on, by delay_fad_dsp. */
struct DelayPair
{
    DelayFad* line[2];
    Floats position;      ///< slots
    Floats rate;          ///< slots per sample, in all four lanes, unsigned
    Floats target;        ///< target distance of the heads in slots; 1 for the write heads
    Floats size;          ///< of the buffers, in slots
    Ints slots;           ///< the same
    Ints isReversed;      ///< mask
    Floats inputShare;    ///< of the input in what is written: 0 for a bypassed line
    Floats reversedThru;  ///< of the input in the output, in reverse only
    Floats lastIn;        ///< first two lanes
    Floats
        steadyEnd;  ///< up to where the heads are steady for certain, see headsAreSteady; 0 if that is unknown
    bool canBePaired;  ///< both lines are in a state that the lanes know
};

/** Takes both lines over from the records, at the head of a block. Audio thread. */
void delay_pair_take (DelayPair& pair, DelayFad& one, DelayFad& two) noexcept;

/** Gives all but the outputs back to the records, at the end of a block. Audio thread. */
void delay_pair_give_back (const DelayPair& pair) noexcept;

/** Takes the speeds of both lines from the records, after a tick has set them. Audio thread. */
inline void delay_pair_take_rates (DelayPair& pair) noexcept
{
    const float rate1 = pair.line[0]->readRate;
    const float rate2 = pair.line[1]->readRate;
    pair.rate = Floats { rate1, rate2, rate1, rate2 };
    pair.steadyEnd = splat (0.0f);
}
