// SPDX-License-Identifier: AGPL-3.0-or-later
#include "processor/song_position.h"

#include <algorithm>
#include <cmath>

namespace
{

constexpr double kDefaultTempo = 120.0;  ///< what the sync maths takes without one

/** Above 100 hours of song. The LFOs walk from the song's start to the position, so it has to have
    a bound. */
constexpr double kMaxQuarters = 1.0e6;

/** In quarter notes: twice what hosts round to, and well below what is heard. */
constexpr double kTolerance = 0.002;

/** Hosts count in ticks of a quarter note, which 32 bits lose. They are found again here. */
constexpr double kTicks = 1920.0;

/** In quarter notes: bars begin on a 32nd note at the finest. */
constexpr double kBarStep = 0.125;

bool isWithin (const std::optional<double>& value, double low, double high) noexcept
{
    return value && *value >= low && *value <= high;  // not for NaN
}

double toTick (double quarters) noexcept
{
    const double tick = std::round (quarters * kTicks) / kTicks;
    return std::abs (quarters - tick) < 2.0e-6 ? tick : quarters;
}

}  // namespace

double SongPosition::quartersIn (double samples) const noexcept
{
    return samples / sampleRate * (tempo > 0.0 ? tempo * tempoNote : kDefaultTempo) / 60.0;
}

void SongPosition::advance (int numSamples) noexcept
{
    if (std::abs (quarters) < kMaxQuarters)
        quarters += quartersIn (numSamples * speed);

    if (songFrame)
        *songFrame += numSamples * speed;
}

std::optional<double> SongPosition::getQuarters() const noexcept
{
    return isKnown ? std::optional (quarters) : std::nullopt;
}

std::optional<double> SongPosition::getTempo() const noexcept
{
    return tempo > 0.0 ? std::optional (tempo * tempoNote) : std::nullopt;
}

bool SongPosition::isJump (const SongEvent& event) const noexcept
{
    SongPosition after = *this;
    after.take (event);
    return after.isKnown != isKnown || after.speed != speed || after.getTempo() != getTempo() ||
           std::abs (after.quarters - quarters) > kTolerance;
}

void SongPosition::take (const SongEvent& event) noexcept
{
    const auto lastMeter = meter;

    if (isWithin (event.beatsPerBar, 0.001, 1024.0))
        meter.beatsPerBar = *event.beatsPerBar;

    if (isWithin (event.beatUnit, 1.0, 128.0))
        meter.beatUnit = *event.beatUnit;

    if (isWithin (event.tempo, 0.001, 100000.0) && *event.tempo != tempo)
    {
        tempo = *event.tempo;
        anchor.reset();
    }

    if (isWithin (event.speed, -100.0, 100.0) && *event.speed != speed)
    {
        speed = *event.speed;
        anchor.reset();
    }

    if (meter != lastMeter)
    {
        anchor.reset();
        fractionIsOfBeat = false;
    }

    if (const auto place = locate (event, meter != lastMeter);
        isWithin (place, -kMaxQuarters, kMaxQuarters))
    {
        quarters = *place;
        isKnown = true;
    }

    if (isWithin (event.songFrame, -1.0e15, 1.0e15))
        songFrame = *event.songFrame;
}

std::optional<double> SongPosition::locate (const SongEvent& event, bool isNewMeter) noexcept
{
    const bool saysFrame = isWithin (event.songFrame, -1.0e15, 1.0e15);
    const bool isContinuous =
        isKnown && saysFrame && songFrame && std::abs (*event.songFrame - *songFrame) <= 1.0;

    if (isWithin (event.barBeat, -1.0e6, 1.0e6))
    {
        if (isWithin (event.bar, -1.0e6, 1.0e6))
            lastBar = *event.bar;

        if (saysFrame)
            songFrame = *event.songFrame;

        return locateInBars (lastBar, *event.barBeat, isNewMeter, isContinuous);
    }

    if (isWithin (event.beat, -kMaxQuarters, kMaxQuarters))
        return *event.beat;

    if (isWithin (event.bar, -1.0e6, 1.0e6))
    {
        const double length = meter.beatsPerBar * meter.beat();
        const double start = findOrigin (*event.bar) + *event.bar * length;

        if (! isKnown || quarters < start - kTolerance || quarters > start + length + kTolerance)
            return start;

        return std::nullopt;  // within that bar already
    }

    if (! saysFrame || isContinuous)
        return std::nullopt;  // the count is as good

    if (isKnown && songFrame)
        return quarters + quartersIn (*event.songFrame - *songFrame);

    return quartersIn (*event.songFrame);
}

double SongPosition::locateInBars (double bar, double barBeat, bool isNewMeter,
                                   bool isContinuous) noexcept
{
    measure (bar, barBeat, isContinuous);

    // Not far: else the host's tempo map was edited, or it counts frames on while its song jumps.
    if (isContinuous)
    {
        double inBars = withinBars (bar, barBeat, quarters - origin);

        if (isNewMeter)
        {
            const auto isOff = [this] (double place)
            { return std::abs (std::remainder (quarters - place, kBarStep)); };

            // Nothing is measured of the new beat yet.
            fractionIsOfQuarter = ! fractionIsOfQuarter && meter.beat() != 1.0;
            const double other = withinBars (bar, barBeat, quarters - origin);

            if (isOff (other) < isOff (inBars))
                inBars = other;
            else
                fractionIsOfQuarter = ! fractionIsOfQuarter && meter.beat() != 1.0;

            remember ({ bar, meter, std::round ((quarters - inBars) / kBarStep) * kBarStep });
        }

        if (std::abs (origin + inBars - quarters) < 0.25)
            return toTick (origin + inBars);
    }

    const double byFrame = songFrame ? quartersIn (*songFrame) : 0.0;
    const double inBars = withinBars (bar, barBeat, byFrame);
    origin = findOrigin (bar);
    return toTick (origin + inBars);
}

double SongPosition::withinBars (double bar, double barBeat, double expected) const noexcept
{
    const double barStart = bar * meter.beatsPerBar * meter.beat();
    const double whole = std::floor (barBeat);

    if (! fractionIsOfQuarter)
        return barStart + barBeat * meter.beat();

    double best = barStart + whole * meter.beat() + barBeat - whole;

    // A beat longer than a quarter note has a fraction above 1, which hides how many beats are
    // whole.
    if (meter.beat() > 1.0 && whole > 0.0)
    {
        const double other = best - meter.beat() + 1.0;

        if (std::abs (other - expected) < std::abs (best - expected))
            best = other;
    }

    return best;
}

double SongPosition::findOrigin (double bar) const noexcept
{
    for (int i = numRegions; --i >= 0;)
        if (const auto& region = regions[static_cast<std::size_t> (i)]; region.bar <= bar)
        {
            if (region.meter == meter)
                return region.origin;

            break;
        }

    return 0.0;
}

void SongPosition::remember (const Region& region) noexcept
{
    origin = region.origin;

    // What was learned of later bars doesn't hold if the bars before them have changed.
    while (numRegions > 0 && regions[static_cast<std::size_t> (numRegions - 1)].bar >= region.bar)
        --numRegions;

    if (numRegions == static_cast<int> (regions.size()))
    {
        std::move (regions.begin() + 1, regions.end(), regions.begin());
        --numRegions;
    }

    regions[static_cast<std::size_t> (numRegions++)] = region;
}

void SongPosition::measure (double bar, double barBeat, bool isContinuous) noexcept
{
    if (! songFrame || ! (tempo > 0.0))
        return;

    const double beat = meter.beat();

    // Beyond a quarter note's share of the beat it can only be a fraction of the beat.
    if (beat < 1.0 && barBeat - std::floor (barBeat) > beat + 0.001)
        fractionIsOfBeat = true;

    const bool isSameBeat = anchor && isContinuous && bar == anchor->bar &&
                            std::floor (barBeat) == std::floor (anchor->barBeat);

    if (! isSameBeat)
        anchor = Anchor { *songFrame, bar, barBeat };

    const double moved = barBeat - anchor->barBeat;
    const double samples = *songFrame - anchor->songFrame;

    if (moved < 0.009 || samples <= 0.0)  // too few ticks to measure
        return;

    const double inTempo = samples * tempo / 60.0 / sampleRate;
    const double whole = std::round (std::log2 (moved / inTempo));

    if (std::abs (moved - inTempo * std::exp2 (whole)) > 0.5 * kTolerance || std::abs (whole) > 4.0)
        return;  // the tempo is changing

    // The simpler of both explanations: in 6/8 half the speed is a tempo in quarter notes of a host
    // that counts the fraction in them too, as long as that fraction stays below a half.
    const double ofBeat = whole + std::log2 (beat);
    fractionIsOfQuarter = beat != 1.0 && ! fractionIsOfBeat && std::abs (whole) < std::abs (ofBeat);
    tempoNote = std::exp2 (fractionIsOfQuarter ? whole : ofBeat);
}
