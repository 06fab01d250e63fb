// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "lv2_bundle.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>

/** What a time:Position object tells; what is empty is left out of it. */
struct Lv2Position
{
    std::int64_t frame = 0;
    bool isRolling = false;
    std::optional<float> beatsPerMinute;
    std::optional<double> beat;
};

/** A running plug-in: 2 audio ports in, 2 out, atom sequences in and out. */
class Lv2Instance
{
public:
    /** Throws std::runtime_error if the plug-in refuses. The bundle must outlive this. */
    Lv2Instance (const Lv2Bundle& bundle, double sampleRate, std::int32_t maxBlock);
    ~Lv2Instance();

    /** These go into the next run, in the order of the calls. */
    void sendParameter (const std::string& uri, float value);
    void sendPosition (const Lv2Position& position);
    void sendMidi (std::int64_t frame, std::span<const std::uint8_t> bytes);

    /** What the port "enabled" says from the next run on; true at first. */
    void setEnabled (bool enabled);

    void run (const float* inLeft, const float* inRight, float* outLeft, float* outRight,
              std::uint32_t numSamples);

    /** Parameter values that the plug-in sent in the last run, by URI. */
    std::map<std::string, float> getSentParameters() const;

    /** What the last run sent besides parameter values. */
    int getNumOtherEvents() const;

    /** The state as a host's session file keeps it (Turtle), and back. False if the plug-in refuses. */
    std::string saveState() const;
    bool restoreState (const std::string& turtle);

    /** Hands the plug-in a single string property. */
    bool restoreProperty (const std::string& uri, const std::string& value);

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};
