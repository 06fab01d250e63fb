// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "engine/delay_pair.h"
#include "engine/engine_globals.h"

// How the heads of both lines get through a tick: one of three ways, chosen before its first sample. They differ in
// what they cost, never in a bit. Each is made at the head of the tick, gets dsp() once per sample with the inputs in
// the first two lanes, returns the outputs there, and is finished behind the last sample.

/** The heads' distances as delay_fad_dsp counts them, in the first two lanes; 1 in the others. */
inline Ints headGaps (const DelayPair& pair) noexcept
{
    const Floats ahead = flipSign (upperPair (pair.position) - pair.position,
                                   pair.isReversed & splat (std::int32_t { INT32_MIN }));
    const Ints gaps = truncated (ahead + 1.0f);
    return gaps + (pair.slots & (gaps < 0));
}

/** Whether all heads stand inside their buffers. */
inline bool headsAreInside (const DelayPair& pair) noexcept
{
    return all ((pair.position >= 0.0f) & (pair.position < pair.size));
}

/** Whether for the length of a tick nothing about the heads can change but their places: forward, at speed 1, at the
    target distance, the write heads on whole slots, no head near its buffer's end, and no read head near a power of
    two, where its fraction would be rounded. Once that holds it does up to the next such place: that is noted in
    steadyEnd, which delay_pair_take, delay_pair_take_rates and MovingHeads take back. The heads are inside. */
inline bool headsAreSteady (DelayPair& pair) noexcept
{
    const Floats needed = pair.position + static_cast<float> (ControlTick + 1);

    if (all (needed < pair.steadyEnd)) [[likely]]
        return true;

    constexpr Ints kWriteHeads { 0, 0, -1, -1 };
    const Ints exponent = bitsOf (pair.position) & splat (std::int32_t { 0x7f800000 });
    const Floats nextPower = std::bit_cast<Floats> (exponent + splat (std::int32_t { 0x00800000 }));
    const Floats end = smaller (pair.size, select (kWriteHeads, pair.size, nextPower));
    const Ints isWhole = toFloats (truncated (pair.position)) == pair.position;

    if (! all ((pair.rate == 1.0f) & (toFloats (headGaps (pair)) == pair.target) & (needed < end) &
               (isWhole | ~kWriteHeads) & ~pair.isReversed))
        return false;

    pair.steadyEnd = end;
    return true;
}

/** One sample of each line by itself, on the records. */
inline Floats delaySingly (const DelayPair& pair, Floats in) noexcept
{
    delay_fad_dsp (*pair.line[0], in[0]);
    delay_fad_dsp (*pair.line[1], in[1]);
    return Floats { pair.line[0]->out, pair.line[1]->out, 0.0f, 0.0f };
}

/** Each line by itself, for any state. */
class SingleHeads
{
public:
    explicit SingleHeads (DelayPair& p) noexcept : pair (p) { delay_pair_give_back (pair); }

    Floats dsp (int, Floats in) noexcept { return delaySingly (pair, in); }

    void finish() noexcept { delay_pair_take (pair, *pair.line[0], *pair.line[1]); }

private:
    DelayPair& pair;
};

/** What steady heads of line i (0 or 1) read in a tick, one sample to a lane. No slot is read in a tick after it has
    been written there: a read head is eight slots behind the write head at least, or so far behind that it comes to
    every slot first. */
inline Floats steadyOutputs (const DelayPair& pair, int i) noexcept
{
    const auto slot = static_cast<std::int32_t> (pair.position[i]);
    const Floats fraction = splat (pair.position[i] - static_cast<float> (slot));
    const float* const from = pair.line[i]->buffer + slot + 1;  // a head moves before it reads
    return (1.0f - fraction) * load (from) + fraction * load (from + 1);
}

/** Writes a tick of line i, one sample to a lane. At speed 1 and on whole slots the write head crosses one slot per
    sample, and ends half-way to the next. */
inline void steadyWrite (const DelayPair& pair, int i, Floats in) noexcept
{
    const Floats last = splat (pair.lastIn[i]);
    const Floats before = __builtin_shufflevector (last, in, 0, 4, 5, 6);
    DelayFad& line = *pair.line[i];
    const auto first = static_cast<std::uint32_t> (pair.position[i + 2]);
    store (line.buffer + first, (pair.inputShare[i] * in - before) * 0.5f + before);
    line.written[first >> kPageShift] = true;
    line.written[(first + ControlTick - 1) >> kPageShift] = true;
}

/** Moves steady heads on by a tick whose last inputs were lastIn, in the first two lanes. */
inline void steadyFinish (DelayPair& pair, Floats lastIn) noexcept
{
    pair.position += static_cast<float> (ControlTick);
    pair.lastIn = lastIn;
}

/** For steady heads and a whole tick: its four outputs are read at once, and its four inputs written at once. */
class SteadyHeads
{
public:
    explicit SteadyHeads (DelayPair& p) noexcept : pair (p)
    {
        const Floats out1 = steadyOutputs (pair, 0);
        const Floats out2 = steadyOutputs (pair, 1);
        store (outputs, interleaveLow (out1, out2));
        store (outputs + 4, interleaveHigh (out1, out2));
    }

    Floats dsp (int n, Floats in) noexcept
    {
        storePair (inputs + 2 * n, in);
        return loadPair (outputs + 2 * n);
    }

    void finish() noexcept
    {
        const Floats early = load (inputs);
        const Floats late = load (inputs + 4);
        steadyWrite (pair, 0, firstOfPairs (early, late));
        steadyWrite (pair, 1, secondOfPairs (early, late));
        steadyFinish (pair, upperPair (late));
    }

private:
    DelayPair& pair;
    float outputs[2 * ControlTick];  ///< of line 1 and 2 in turn
    float inputs[2 * ControlTick];   ///< the same
};

/** For any speed, distance and direction, inside the buffers. If a head leaves its buffer, as rounding makes a reversed
    one do now and then, or crosses no slot, the rest of the tick runs line by line. */
class MovingHeads
{
public:
    explicit MovingHeads (DelayPair& p) noexcept
        : pair (p), lastSlot (p.slots - 1), unitStep (p.isReversed | 1),
          signs (p.isReversed & splat (std::int32_t { INT32_MIN })), gaps (splat (-1))
    {
    }

    Floats dsp (int, Floats in) noexcept
    {
        if (areSingle) [[unlikely]]
            return delaySingly (pair, in);

        if (const Ints now = headGaps (pair); any (now != gaps))
        {
            gaps = now;
            step = flipSign (pair.rate / (pair.target / toFloats (gaps)), signs);
        }

        const Floats next = pair.position + step;  // not yet wrapped
        const Floats wrapped =
            next - where (next >= pair.size, pair.size) + where (next < 0.0f, pair.size);
        const Ints slot = truncated (wrapped);

        // A slow reversed write head that sets out from 0 exactly crosses no slot at all.
        const Ints isAtStart = pair.isReversed & (pair.position == 0.0f);

        if (any ((slot | (lastSlot - slot) | isAtStart) < 0)) [[unlikely]]
        {
            delay_pair_give_back (pair);
            areSingle = true;
            return delaySingly (pair, in);
        }

        const Floats out = read (slot, wrapped - toFloats (slot), in);
        write (next, in);
        pair.position = wrapped;
        pair.lastIn = in;
        return out;
    }

    void finish() noexcept
    {
        pair.steadyEnd = splat (0.0f);

        if (areSingle) [[unlikely]]
            delay_pair_take (pair, *pair.line[0], *pair.line[1]);
    }

private:
    /** The slot next to each in its head's direction. */
    Ints beside (Ints slot) const noexcept
    {
        const Ints next = slot + unitStep;
        return (next & (next != pair.slots)) + (pair.slots & (next < 0));
    }

    Floats read (Ints slot, Floats fraction, Floats in) const noexcept
    {
        const Ints other = beside (slot);
        const float* const b1 = pair.line[0]->buffer;
        const float* const b2 = pair.line[1]->buffer;
        const Floats near { b1[slot[0]], b2[slot[1]], 0.0f, 0.0f };
        const Floats far { b1[other[0]], b2[other[1]], 0.0f, 0.0f };
        const Floats thru = select (pair.isReversed, pair.reversedThru * in,
                                    splat (-0.0f));  // adding -0 changes nothing
        return (1.0f - fraction) * near + fraction * far + thru;
    }

    /** Writes the slots that the write heads cross on their way from position to next. All in the last two lanes. */
    void write (Floats next, Floats in) noexcept
    {
        const Ints from = truncated (pair.position);
        const Ints to = truncated (next);
        const Ints isPartFrom = pair.position > toFloats (from);  // masks count as -1
        const Ints isPartTo = next > toFloats (to);
        const Ints way = ((to - from) ^ pair.isReversed) - pair.isReversed;
        const Ints count = way - select (pair.isReversed, isPartFrom, isPartTo);
        const Ints crossed = count + isPartTo;
        const Floats share = upperPair (1.0f / (toFloats (crossed) + 1.0f));
        const Ints first = select (pair.isReversed, select (to < 1, lastSlot, to - 1), from);

        const Floats change = pair.inputShare * in - pair.lastIn;
        const Floats values = change * share + pair.lastIn;
        writeSlot (0, first[2], values[0]);
        writeSlot (1, first[3], values[1]);

        if (any ((count > 1) & Ints { 0, 0, -1, -1 }))
            writeMore (count, first, change, share);
    }

    void writeSlot (int i, std::int32_t slot, float value) noexcept
    {
        DelayFad& line = *pair.line[i];
        line.buffer[slot] = value;
        line.written[static_cast<std::uint32_t> (slot) >> kPageShift] = true;
    }

    /** The second slot of those lines that cross two or three, and the third of those. */
    void writeMore (Ints count, Ints first, Floats change, Floats share) noexcept
    {
        const Ints second = beside (first);
        const Ints third = beside (second);
        const Floats twice = share + share;
        const Floats ofSecond = change * twice + pair.lastIn;
        const Floats ofThird = change * (twice + share) + pair.lastIn;

        for (int i = 0; i < 2; ++i)
        {
            if (count[i + 2] > 1)
                writeSlot (i, second[i + 2], ofSecond[i]);

            if (count[i + 2] > 2) [[unlikely]]
                writeSlot (i, third[i + 2], ofThird[i]);
        }
    }

    DelayPair& pair;
    Ints lastSlot;  ///< of the buffers
    Ints unitStep;  ///< 1, or -1 in reverse
    Ints signs;     ///< top bit set in reverse
    Ints gaps;      ///< that step was worked out for; -1, which no gap is, before the first sample
    Floats
        step {};  ///< signed; of the read heads and, since their targets are 1, of the write heads
    bool areSingle = false;
};
