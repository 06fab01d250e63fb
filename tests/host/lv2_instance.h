// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

/** A place of the song in a host's terms. */
struct Lv2Position
{
    std::int64_t frame = 0;
    float speed = 0.0f, tempo = 120.0f;
    std::int64_t bar = 0;
    float barBeat = 0.0f, beatsPerBar = 4.0f;
    std::int32_t beatUnit = 4;
};

/** A running plug-in, hosted by lilv as in most hosts of Linux: 2 audio ports in, 2 out, atom
    sequences in and out, all of them found by their symbols. What fails throws std::runtime_error.
    */
class Lv2Instance
{
public:
    /** folder is the .lv2 folder of a bundle with one plug-in. */
    Lv2Instance (const std::string& folder, double sampleRate, std::int32_t maxBlock);
    ~Lv2Instance();

    /** These go into the next run, in the order of the calls. */
    void sendParameter (const std::string& uri, float value);
    void sendMidi (std::int64_t frame, std::span<const std::uint8_t> bytes);

    /** As Ardour and jalv say it, at a sample of the block. */
    void sendPosition (std::int64_t offset, const Lv2Position& position);

    /** Processes in place. The number of MIDI events that the plug-in sent. */
    int run (float* left, float* right, std::uint32_t numSamples);

    /** The state as a host's session file keeps it (Turtle), and back. */
    std::string saveState() const;
    void restoreState (const std::string& turtle);

    /** Whether the track has MIDI. Without, Ardour feeds no port that takes it, and the position
        goes to the other one alone. */
    bool hasMidi = true;

    int numStateChanges = 0;  ///< notices of changed state that the plug-in sent
    float enabled = 1.0f;     ///< the port of that name

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};
