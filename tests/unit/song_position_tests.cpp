// SPDX-License-Identifier: AGPL-3.0-or-later
#include "processor/song_position.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace
{

SongEvent makeEvent (double frame, double bar, double barBeat, double beatsPerBar, double beatUnit,
                     double tempo, double speed = 1.0)
{
    return { 0, frame, speed, tempo, beatsPerBar, beatUnit, bar, barBeat, {} };
}

SongPosition at48000()
{
    SongPosition song;
    song.setSampleRate (48000.0);
    return song;
}

}  // namespace

// Ardour 7.3 at 90 eighth notes a minute: it doesn't say that they are eighths, and counts whole
// beats in eighths but their fraction in quarter notes. Numbers as it sent them.
TEST (SongPosition, TempoAndFractionInOtherNoteValuesAreMeasured)
{
    auto song = at48000();
    const double beats[] = { 0.0, 0.0161458347, 0.0317708366, 0.0479166694 };

    for (int i = 0; i < 4; ++i)
    {
        song.take (makeEvent (1024.0 * i, 0, beats[i], 6, 8, 90));
        EXPECT_NEAR (*song.getQuarters(), 1024.0 * i / 64000.0, 0.0003) << i;
        song.advance (1024);
    }

    EXPECT_EQ (*song.getTempo(), 45.0);
    song.take (makeEvent (53248, 0, 1.33177090, 6, 8, 90));
    EXPECT_NEAR (*song.getQuarters(), 53248.0 / 64000.0, 0.0003);
}

// By the standard, beats and tempo are of the time signature's note value.
TEST (SongPosition, HostsThatCountAllInBeatsAreRead)
{
    auto song = at48000();

    for (int i = 0; i < 200; ++i)
    {
        const double eighths = i * 1024 / 48000.0 * 120.0 / 60.0;
        song.take (makeEvent (1024.0 * i, static_cast<int> (eighths / 6), std::fmod (eighths, 6.0),
                              6, 8, 120));

        if (i > 12)  // the fraction has been above a half
        {
            ASSERT_NEAR (*song.getQuarters(), eighths / 2.0, 1.0e-5) << i;
        }

        song.advance (1024);
    }

    EXPECT_EQ (*song.getTempo(), 60.0);
}

TEST (SongPosition, WhatCantBeIsIgnoredAndWhatIsMissingStays)
{
    constexpr double kInf = std::numeric_limits<double>::infinity();
    auto song = at48000();
    EXPECT_FALSE (song.getQuarters() || song.getTempo());
    song.take (makeEvent (105600, 1, 2.5, 3, 4, 150));
    EXPECT_EQ (*song.getQuarters(), 5.5);

    const SongEvent garbage[] = {
        makeEvent (kInf, kInf, kInf, kInf, kInf, kInf, kInf),
        makeEvent (-kInf, 1.0e300, -1.0e300, -3, -4, -150, 1.0e9),
        makeEvent (kInf - kInf, kInf - kInf, kInf - kInf, 0, 0, 0, kInf - kInf),
        {},
    };

    for (const auto& event : garbage)
    {
        EXPECT_FALSE (song.isJump (event)) << &event - garbage;
        song.take (event);
        EXPECT_EQ (*song.getQuarters(), 5.5) << &event - garbage;
        EXPECT_EQ (*song.getTempo(), 150.0) << &event - garbage;
    }

    SongEvent bar;
    bar.bar = 3.0;
    bar.barBeat = 0.0;
    song.take (bar);
    EXPECT_EQ (*song.getQuarters(), 9.0);

    SongEvent stop;
    stop.speed = 0.0;
    EXPECT_TRUE (song.isJump (stop));
    song.take (stop);
    song.advance (48000);
    EXPECT_EQ (*song.getQuarters(), 9.0);
}

// A host that leaves the frame where it is, one that counts samples on while its song jumps, and
// one that is behind a tempo change already, so that its frame and tempo give whole beats less.
TEST (SongPosition, BarsAreTrustedWhereTheFrameSaysSomethingElse)
{
    for (const double start : { 0.0, 24000.0, 336000.0 })
        for (const double step : { 0.0, 48000.0 })
        {
            auto song = at48000();
            song.take (makeEvent (start, 4, 0, 4, 4, 120));
            EXPECT_EQ (*song.getQuarters(), 16.0) << start << ", " << step;
            song.advance (48000);
            song.take (makeEvent (start + step, 8, 0, 4, 4, 120));
            EXPECT_EQ (*song.getQuarters(), 32.0) << start << ", " << step;
            song.advance (48000);
            song.take (makeEvent (start + 2 * step, 2, 1, 4, 4, 120));
            EXPECT_EQ (*song.getQuarters(), 9.0) << start << ", " << step;
            EXPECT_EQ (*song.getTempo(), 120.0) << start << ", " << step;
        }
}

TEST (SongPosition, FrameAndTempoAreTheLastResort)
{
    auto song = at48000();
    SongEvent event;
    event.songFrame = 96000.0;
    event.tempo = 90.0;
    event.speed = 1.0;
    song.take (event);
    EXPECT_DOUBLE_EQ (*song.getQuarters(), 3.0);
    event.beat = 7.25;
    song.take (event);
    EXPECT_DOUBLE_EQ (*song.getQuarters(), 7.25);
    song.advance (32000);
    EXPECT_DOUBLE_EQ (*song.getQuarters(), 8.25);
}
