// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

/** What a time:Position object tells. */
struct Lv2Position
{
    std::int64_t frame = 0;
    bool isRolling = false;
    float beatsPerMinute = 0.0f;  ///< 0 leaves it out
    double beat = -1.0;           ///< in quarter notes; a negative one leaves it out
};

/** A running plug-in, hosted by lilv as in most hosts of Linux: 2 audio ports in, 2 out, atom sequences in and
    out, all of them found by their symbols. */
class Lv2Instance
{
public:
    /** folder is the .lv2 folder of a bundle with one plug-in. Throws std::runtime_error if there is none or it
        refuses. */
    Lv2Instance (const std::string& folder, double sampleRate, std::int32_t maxBlock);
    ~Lv2Instance();

    /** These go into the next run, in the order of the calls. */
    void sendParameter (const std::string& uri, float value);
    void sendPosition (const Lv2Position& position);
    void sendMidi (std::int64_t frame, std::span<const std::uint8_t> bytes);

    /** What the port "enabled" says from the next run on; true at first. */
    void setEnabled (bool enabled);

    /** Processes in place. The number of MIDI events that the plug-in sent. */
    int run (float* left, float* right, std::uint32_t numSamples);

    /** The state as a host's session file keeps it (Turtle), and back. Throws std::runtime_error if that fails. */
    std::string saveState() const;
    void restoreState (const std::string& turtle);

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};
