// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

/** A running plug-in, hosted by lilv as in most hosts of Linux: 2 audio ports in, 2 out, atom sequences in and
    out, all of them found by their symbols. What fails throws std::runtime_error. */
class Lv2Instance
{
public:
    /** folder is the .lv2 folder of a bundle with one plug-in. */
    Lv2Instance (const std::string& folder, double sampleRate, std::int32_t maxBlock);
    ~Lv2Instance();

    /** These go into the next run, in the order of the calls. */
    void sendParameter (const std::string& uri, float value);
    void sendMidi (std::int64_t frame, std::span<const std::uint8_t> bytes);

    /** beat counts quarter notes. A tempo of 0 and a negative beat are left out. */
    void sendPosition (std::int64_t frame, bool isRolling, float tempo, double beat);

    /** Processes in place. The number of MIDI events that the plug-in sent. */
    int run (float* left, float* right, std::uint32_t numSamples);

    /** The state as a host's session file keeps it (Turtle), and back. */
    std::string saveState() const;
    void restoreState (const std::string& turtle);

    float enabled = 1.0f;  ///< the port of that name

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};
