// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <array>
#include <cstdint>
#include <optional>

/** What a host says about the song at one sample of a block. Every part may be missing. */
struct SongEvent
{
    int offset = 0;                   ///< sample of the block
    std::optional<double> songFrame;  ///< samples since the song's start
    std::optional<double> speed;      ///< 1 playing, 0 stopped, others faster, slower or backwards
    std::optional<double> tempo;      ///< beats per minute, of any note value
    std::optional<double> beatsPerBar;  ///< of the time signature
    std::optional<double> beatUnit;     ///< of the time signature: 4 for quarter notes
    std::optional<double> bar;          ///< from 0
    std::optional<double> barBeat;      ///< beats since the bar's start, with a fraction
    std::optional<double> beat;         ///< quarter notes since the song's start
};

/** Counts the song's quarter notes from what a host says now and then.

    Trusted in this order: bar and beat in the bar, the running beat, the frame with the tempo.
    Between events the count goes on by itself. Hosts differ in two things that no event says, so
    both are measured while the song plays: the note value that the tempo counts, and whether the
    fraction of barBeat is one of the beat or of a quarter note. A bar number alone doesn't say
    where a bar begins once the time signature has changed, so the beginnings of such regions are
    remembered as they are played.

    Audio thread; lock-free. A copy is an independent count. */
class SongPosition
{
public:
    /** In hertz; the count stays. */
    void setSampleRate (double rate) noexcept { sampleRate = rate; }

    /** Goes on by numSamples. */
    void advance (int numSamples) noexcept;

    /** Takes over what an event says of the present sample. Values that can't be are ignored. */
    void take (const SongEvent& event) noexcept;

    /** Whether the event says something else than the count gives: a jump, a start, a stop or
        another tempo. */
    bool isJump (const SongEvent& event) const noexcept;

    /** Quarter notes since the song's start; nothing before the first event. */
    std::optional<double> getQuarters() const noexcept;

    /** Quarter notes per minute; nothing if no event said a tempo. */
    std::optional<double> getTempo() const noexcept;

    bool isPlaying() const noexcept { return speed != 0.0; }

private:
    struct Meter
    {
        double beatsPerBar = 4.0, beatUnit = 4.0;

        double beat() const noexcept { return 4.0 / beatUnit; }  ///< in quarter notes
        bool operator== (const Meter&) const = default;
    };

    /** From bar on, quarter notes are origin plus what the bar number gives. */
    struct Region
    {
        double bar = 0.0;
        Meter meter;
        double origin = 0.0;
    };

    /** A place in the beat where a measurement began. */
    struct Anchor
    {
        double songFrame = 0.0, bar = 0.0, barBeat = 0.0;
    };

    double quartersIn (double samples) const noexcept;
    std::optional<double> locate (const SongEvent& event, bool isNewMeter) noexcept;
    double locateInBars (double bar, double barBeat, bool isNewMeter, bool isContinuous) noexcept;
    double withinBars (double bar, double barBeat, double expected) const noexcept;
    double findOrigin (double bar) const noexcept;
    void remember (const Region& region) noexcept;
    void measure (double bar, double barBeat, bool isContinuous) noexcept;

    double sampleRate = 44100.0;
    bool isKnown = false;
    double quarters = 0.0;
    double speed = 0.0;
    double tempo = 0.0;               ///< as the host counts it; 0 unknown
    double tempoNote = 1.0;           ///< quarter notes in the note value that the tempo counts
    std::optional<double> songFrame;  ///< of the present sample
    double lastBar = 0.0;
    Meter meter;
    double origin = 0.0;
    bool fractionIsOfQuarter = false;  ///< how barBeat is read
    bool fractionIsOfBeat = false;     ///< whether that has been seen for certain in this meter
    std::optional<Anchor> anchor;
    std::array<Region, 16> regions {};  ///< by bar
    int numRegions = 0;
};
