// SPDX-License-Identifier: AGPL-3.0-or-later
#include "engine/delay_fad.h"

#include "engine/engine_globals.h"
#include "engine/sync_beats.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>

static constexpr std::uint64_t kSlotsAtConstruction = 576000;  // 12 s at 48 kHz

static void placeHeads (DelayFad& line) noexcept
{
    line.readPos = 0.0f;
    line.writePos = static_cast<float> (line.delaySamples) - 1.0f;
}

/** Marks all of a new buffer as written, so that the first clearing touches each of its pages: a block that came
    first to a page would wait for the system to supply it. */
static void markWhole (DelayFad& line) noexcept
{
    const std::uint64_t last = line.bufferSize - 1;
    line.markShift = std::max (0, static_cast<int> (std::bit_width (last / kNumWrittenMarks)));
    line.written.fill (false);
    std::fill_n (line.written.begin(), (last >> line.markShift) + 1, true);
}

void delay_fad_init (DelayFad& line) noexcept
{
    line = {};
    line.buffer = static_cast<float*> (std::calloc (kSlotsAtConstruction, sizeof (float)));

    if (line.buffer != nullptr)
    {
        line.bufferSize = kSlotsAtConstruction;
        markWhole (line);
    }

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
}

void delay_fad_prepare (DelayFad& line) noexcept
{
    const float perMs = loadRelaxed (gSamplesPerMillisecond);
    const auto slots =
        static_cast<std::uint64_t> (static_cast<float> (line.maxTimeMs) * perMs + 1.0f);

    if (slots == line.bufferSize)
        return;

    // Not realloc: nothing of the old content is wanted, and if this fails the old buffer is to stay.
    auto* const buffer = static_cast<float*> (std::calloc (slots, sizeof (float)));

    if (buffer == nullptr)
        return;

    std::free (line.buffer);
    line.buffer = buffer;
    line.bufferSize = slots;
    markWhole (line);
    line.delaySamples = static_cast<std::uint64_t> (line.timeMs * perMs);
    placeHeads (line);
    line.lastIn = 0.0f;
    line.readRate = 1.0f;
    line.writeRate = 1.0f;
}

static void clearWritten (DelayFad& line) noexcept
{
    bool* const begin = line.written.data();
    bool* const end = begin + line.written.size();
    const std::uint64_t stretch = std::uint64_t { 1 } << line.markShift;

    // memchr, since the marks that are set are few: a loop that looks at each takes longer than the rest.
    static_assert (sizeof (bool) == 1);
    auto* mark = begin;

    while (auto* const found = std::memchr (mark, 1, static_cast<std::size_t> (end - mark)))
    {
        mark = static_cast<bool*> (found);
        *mark = false;
        const auto from = static_cast<std::uint64_t> (mark - begin) << line.markShift;
        const std::uint64_t count = std::min (stretch, line.bufferSize - from);
        std::memset (line.buffer + from, 0, count * sizeof (float));
    }
}

void delay_fad_clear (DelayFad& line) noexcept
{
    if (line.buffer != nullptr)
        clearWritten (line);

    placeHeads (line);
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
    line.buffer[slot] = value;
    line.written[static_cast<std::uint64_t> (slot) >> line.markShift] = true;
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
