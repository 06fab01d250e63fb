// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/delay_pair.h"

/** From here on a tick's writes lie in one page or two. */
static constexpr std::uint64_t kFewestSlots = 8192;

/** Up to here a position has a bit for the half of a slot, so that floor and ceiling are what they should be. */
static constexpr std::uint64_t kMostSlots = std::uint64_t { 1 } << 22;

/** What steady heads need to read a tick before it is written. */
static constexpr std::uint64_t kShortestDelay = 8;

static bool isPlain (const DelayFad& line) noexcept
{
    return line.buffer != nullptr && line.bufferSize >= kFewestSlots &&
           line.bufferSize <= kMostSlots && line.delaySamples >= kShortestDelay &&
           line.delaySamples <= kMostSlots && ! line.resetPending &&
           line.reverse == line.reverseRequest && ! line.loop && ! delay_fad_is_stale (line);
}

void delay_pair_take (DelayPair& pair, DelayFad& one, DelayFad& two) noexcept
{
    const auto target1 = static_cast<float> (static_cast<std::int64_t> (one.delaySamples));
    const auto target2 = static_cast<float> (static_cast<std::int64_t> (two.delaySamples));
    const auto slots1 = static_cast<std::int32_t> (one.bufferSize);
    const auto slots2 = static_cast<std::int32_t> (two.bufferSize);
    const std::int32_t reverse1 = one.reverse ? -1 : 0;
    const std::int32_t reverse2 = two.reverse ? -1 : 0;

    pair.line[0] = &one;
    pair.line[1] = &two;
    pair.position = Floats { one.readPos, two.readPos, one.writePos, two.writePos };
    delay_pair_take_rates (pair);
    pair.target = Floats { target1, target2, 1.0f, 1.0f };
    pair.slots = Ints { slots1, slots2, slots1, slots2 };
    pair.size = toFloats (pair.slots);
    pair.isReversed = Ints { reverse1, reverse2, reverse1, reverse2 };
    pair.inputShare = Floats { 1.0f - one.thru, 1.0f - two.thru, 1.0f - one.thru, 1.0f - two.thru };
    pair.reversedThru = Floats { one.thru, two.thru, 0.0f, 0.0f };
    pair.lastIn = Floats { one.lastIn, two.lastIn, 0.0f, 0.0f };
    pair.canBePaired = isPlain (one) && isPlain (two);
}

void delay_pair_give_back (const DelayPair& pair) noexcept
{
    for (int i = 0; i < 2; ++i)
    {
        DelayFad& line = *pair.line[i];
        line.readPos = pair.position[i];
        line.writePos = pair.position[i + 2];
        line.lastIn = pair.lastIn[i];
    }
}
