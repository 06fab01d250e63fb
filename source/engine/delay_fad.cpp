// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/delay_fad.h"

#include "engine/engine_globals.h"
#include "engine/sync_beats.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>

static constexpr std::uint64_t kSlotsAtConstruction = 576000;  // 12 s at 48 kHz

static void placeHeads (DelayFad& line) noexcept
{
    line.readPos = 0.0f;
    line.writePos = static_cast<float> (line.delaySamples) - 1.0f;
}

/** Puts a buffer of zeros in the place of the line's. Without memory it returns false, and the line stays as it is. All
    pages count as written, so that the first clearing and sweep touch each: a block that came first to a page would
    wait for the system to supply it. */
static bool allocate (DelayFad& line, std::uint64_t slots) noexcept
{
    const std::uint64_t pages = ((slots - 1) >> kPageShift) + 1;

    // Not realloc: nothing of the old content is wanted, and if this fails the old buffer is to stay.
    void* const memory = std::calloc (slots * sizeof (float) + 2 * pages * sizeof (bool), 1);

    if (memory == nullptr)
        return false;

    std::free (line.buffer);
    line.buffer = static_cast<float*> (memory);
    line.bufferSize = slots;
    line.numPages = pages;
    line.written = static_cast<bool*> (static_cast<void*> (line.buffer + slots));
    line.stale = line.written + pages;
    line.numSwept = pages;
    std::fill_n (line.written, pages, true);
    return true;
}

void delay_fad_init (DelayFad& line) noexcept
{
    line = {};
    allocate (line, kSlotsAtConstruction);

    const float rate = loadRelaxed (gAudioSamplingRate);
    line.maxTimeMs =
        static_cast<std::uint64_t> (static_cast<float> (kSlotsAtConstruction) / (rate * 0.001f));
    const std::uint64_t half = line.maxTimeMs >> 1;
    line.timeMs = static_cast<float> (half);
    line.delaySamples = static_cast<std::uint64_t> (rate * line.timeMs * 0.001f);
    placeHeads (line);
}

void delay_fad_free (DelayFad& line) noexcept
{
    std::free (line.buffer);
    line.buffer = nullptr;
    line.bufferSize = 0;
    line.numPages = 0;
    line.numSwept = 0;
}

void delay_fad_prepare (DelayFad& line) noexcept
{
    const float perMs = loadRelaxed (gSamplesPerMillisecond);
    const auto slots =
        static_cast<std::uint64_t> (static_cast<float> (line.maxTimeMs) * perMs + 1.0f);

    if (slots == line.bufferSize || ! allocate (line, slots))
        return;

    line.delaySamples = static_cast<std::uint64_t> (line.timeMs * perMs);
    placeHeads (line);
    line.lastIn = 0.0f;
    line.readRate = 1.0f;
    line.writeRate = 1.0f;
}

void delay_fad_clear (DelayFad& line) noexcept
{
    std::transform (line.stale, line.stale + line.numPages, line.written, line.stale,
                    std::logical_or<>());
    std::fill_n (line.written, line.numPages, false);
    line.numSwept = 0;
    placeHeads (line);
}

static void zeroPage (DelayFad& line, std::uint64_t page) noexcept
{
    const std::uint64_t from = page << kPageShift;
    const std::uint64_t slots =
        std::min (std::uint64_t { 1 } << kPageShift, line.bufferSize - from);
    std::fill_n (line.buffer + from, slots, 0.0f);
    line.stale[page] = false;
}

void delay_fad_sweep (DelayFad& line, std::uint64_t maxPages) noexcept
{
    for (; delay_fad_is_stale (line) && maxPages > 0; --maxPages)
    {
        // memchr, since the stale pages may be few: a loop that looks at each takes longer than the rest.
        static_assert (sizeof (bool) == 1);
        const bool* const next = line.stale + line.numSwept;
        const auto* const found = std::memchr (next, 1, line.numPages - line.numSwept);

        if (found == nullptr)
        {
            line.numSwept = line.numPages;
            return;
        }

        line.numSwept = static_cast<std::uint64_t> (static_cast<const bool*> (found) - line.stale);
        zeroPage (line, line.numSwept++);
    }
}

void delay_fad_set_time (DelayFad& line, bool synced, std::int32_t mult, float timeNorm,
                         float timeMs, double tempo) noexcept
{
    float t = 0.0f;

    if (synced)
    {
        const auto msPerBeat = static_cast<float> (60000.0 / tempo);
        const auto index = static_cast<std::size_t> (syncBeatIndex (timeNorm));
        t = static_cast<float> (mult) * gBeatMults[index] * msPerBeat;
    }
    else
    {
        t = static_cast<float> (mult) * timeMs;
    }

    t = t < 12000.0f ? t : 12000.0f;
    line.timeMs = t < 2.0f ? 2.0f : t;

    const auto samples =
        static_cast<std::uint64_t> (line.timeMs * loadRelaxed (gSamplesPerMillisecond));

    if (samples != line.delaySamples)
    {
        line.delaySamples = samples;

        if (synced)
            line.resetPending = true;
    }
}

// --- the heads ---------------------------------------------------------------------------------------

/** Where a read head at r reads: the slot and the fraction beyond it. */
struct ReadPoint
{
    std::int64_t slot;
    float fraction;
};

/** Moves the read head to r and tells where it reads. A head that stands outside takes slot 0: rounding puts a
    reversed one exactly at the buffer's end now and then, and a delay longer than the buffer (another instance
    raised the global rate) can put it anywhere. A position that is no number, or too large to count in, as a rate
    of a few hertz gives, is put back to 0 as well. */
static ReadPoint takeReadPoint (DelayFad& line, float r, float size) noexcept
{
    line.readPos = r;

    if (r >= 0.0f && r < size)
    {
        const auto slot = static_cast<std::int64_t> (r);
        return { slot, r - static_cast<float> (slot) };
    }

    constexpr float kFarOut = 1.0e9f;

    if (! (r > -kFarOut && r < kFarOut))
        line.readPos = 0.0f;

    return { 0, 0.0f };
}

/** Before a slot is read or written: zeroes its page if that is stale. */
static void freshen (DelayFad& line, std::int64_t slot) noexcept
{
    const auto page = static_cast<std::uint64_t> (slot) >> kPageShift;

    if (page >= line.numSwept && line.stale[page]) [[unlikely]]
        zeroPage (line, page);
}

/** What goes into one of the slots that the write head crosses: between the previous input and this one at
    share a, and in loop mode the slot under the read head on top. */
static float writtenValue (const DelayFad& line, float in, float a, std::int64_t readSlot) noexcept
{
    float v = ((1.0f - line.thru) * in - line.lastIn) * a + line.lastIn;

    if (line.loop)
    {
        v = v + line.buffer[readSlot];
        v = v > 1.0f ? 1.0f : (v < -1.0f ? -1.0f : v);
    }

    return v;
}

static void writeSlot (DelayFad& line, std::int64_t slot, float value) noexcept
{
    freshen (line, slot);
    line.buffer[slot] = value;
    line.written[static_cast<std::uint64_t> (slot) >> kPageShift] = true;
}

/** The next whole number at or below x, which is no further out than a head can be. Without the library's
    care for the whole range of floats this is a handful of instructions. */
static std::int64_t floorOf (float x) noexcept
{
    const auto truncated = static_cast<std::int64_t> (x);
    return x < static_cast<float> (truncated) ? truncated - 1 : truncated;
}

static std::int64_t ceilOf (float x) noexcept
{
    const auto truncated = static_cast<std::int64_t> (x);
    return x > static_cast<float> (truncated) ? truncated + 1 : truncated;
}

static float shareOf (float crossed) noexcept
{
    const float share = 1.0f / (crossed + 1.0f);
    return share < 1.0f ? share : 1.0f;
}

/** A slot number that may lie outside by a little, or in odd cases by much. */
static std::int64_t wrapped (std::int64_t slot, std::int64_t slots) noexcept
{
    if (slot >= 0 && slot < slots)
        return slot;

    const std::int64_t rest = slot % slots;
    return rest < 0 ? rest + slots : rest;
}

static float runForward (DelayFad& line, float in, float r, float w, float readStep) noexcept
{
    const auto slots = static_cast<std::int64_t> (line.bufferSize);
    const auto size = static_cast<float> (static_cast<std::int64_t> (line.bufferSize));

    r = r + readStep;

    if (r >= size)
        r = r - size;

    const auto [i, f] = takeReadPoint (line, r, size);
    const std::int64_t j = i + 1 < slots ? i + 1 : 0;
    freshen (line, i);
    freshen (line, j);
    line.out = (1.0f - f) * line.buffer[i] + f * line.buffer[j];

    const std::int64_t start = floorOf (w);
    w = w + line.writeRate;
    const float share = shareOf (static_cast<float> (floorOf (w) - start));
    float a = 0.0f;

    for (std::int64_t c = start; w > static_cast<float> (c); ++c)
    {
        a = a + share;
        writeSlot (line, wrapped (c, slots), writtenValue (line, in, a, i));
    }

    return w >= size ? w - size : w;
}

static float runBackward (DelayFad& line, float in, float r, float w, float readStep) noexcept
{
    const auto slots = static_cast<std::int64_t> (line.bufferSize);
    const auto size = static_cast<float> (static_cast<std::int64_t> (line.bufferSize));

    r = r - readStep;

    if (r < 0.0f)
        r = r + size;

    const auto [i, f] = takeReadPoint (line, r, size);
    const std::int64_t j = i == 0 ? slots - 1 : i - 1;
    freshen (line, i);
    freshen (line, j);
    line.out = (1.0f - f) * line.buffer[i] + f * line.buffer[j] + line.thru * in;

    const std::int64_t start = ceilOf (w);
    w = w - line.writeRate;
    const float share = shareOf (static_cast<float> (start - ceilOf (w)));
    auto c = static_cast<std::int64_t> (w);
    float a = 0.0f;

    for (auto count = start - c; count > 0; --count)
    {
        if (c < 1)
            c = slots;

        a = a + share;
        writeSlot (line, c > slots ? (c - 1) % slots : c - 1, writtenValue (line, in, a, i));
        c = c - 1;
    }

    return w < 0.0f ? w + size : w;
}

void delay_fad_dsp (DelayFad& line, float in) noexcept
{
    if (line.bufferSize == 0)
        return;

    const auto size = static_cast<float> (static_cast<std::int64_t> (line.bufferSize));
    const auto target = static_cast<float> (static_cast<std::int64_t> (line.delaySamples));
    float w = line.writePos;
    float r = line.readPos;
    float ratio = 1.0f;

    if (line.resetPending)
    {
        if (line.reverse)
        {
            r = target + w - 1.0f;

            if (r >= size)
                r = r - size;
        }
        else
        {
            r = w - target + 1.0f;

            if (r < 0.0f)
                r = r + size;
        }

        line.resetPending = false;
    }
    else
    {
        auto gap = static_cast<std::int64_t> ((line.reverse ? r - w : w - r) + 1.0f);

        if (gap < 0)
            gap = gap + static_cast<std::int64_t> (line.bufferSize);

        // The heads may be 0 slots apart: then the ratio is infinite, the step 0, and the read head waits.
        ratio = target / static_cast<float> (gap);
    }

    // A reset that came with a change of direction is in the old direction, hence this order.
    if (line.reverse != line.reverseRequest)
    {
        line.reverse = line.reverseRequest;
        const float oldRead = r;
        r = w;
        w = oldRead;
    }

    const float readStep = line.readRate / ratio;
    line.writePos = line.reverse ? runBackward (line, in, r, w, readStep)
                                 : runForward (line, in, r, w, readStep);
    line.lastIn = in;
}
