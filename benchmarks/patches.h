// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "processor/VelkorAudioProcessor.h"

#include <array>
#include <optional>
#include <string_view>
#include <vector>

/** What a timed instance is set to, on top of what a new one has. */
struct Patch
{
    std::string_view name;
    bool isConnected = false;  ///< all 80 connections of the signal matrix
    bool isModulated = false;  ///< all 60 routes, and every modulation amount other than 0
    bool isReversed = false;   ///< both lines
    float speed1 = 1.0f, speed2 = 1.0f;  ///< of the two lines' heads, 0.5 to 1.5
    bool isRunningAway = false;          ///< beyond all numbers within 64 frames, in every block
    int numConnections =
        -1;              ///< that many and no others, spread over the grid; as they are if negative
    int numRoutes = -1;  ///< the same of the modulation matrix
};

inline constexpr std::array kPatches {
    // clang-format off
    //      name          connected  modulated  reversed  speeds
    Patch { "default",    false,     false,     false,    1.0f,  1.0f },
    Patch { "fractional", false,     false,     false,    0.77f, 1.23f },
    Patch { "reversed",   false,     false,     true,     0.77f, 1.23f },
    Patch { "modulated",  false,     true,      false,    1.0f,  1.0f },
    Patch { "connected",  true,      false,     false,    1.0f,  1.0f },
    Patch { "everything", true,      true,      true,     0.77f, 1.23f },
    // clang-format on
};

/** The default patch and saturators that feed themselves and each other. */
inline constexpr Patch kRunaway { .name = "runaway", .isRunningAway = true };

/** The patch of that name among kPatches, or the default one with as many connections or routes as a name such as
    "connections:40" or "routes:12" says; empty if there is none. */
std::optional<Patch> findPatch (std::string_view name) noexcept;

/** An instance that is set to a patch and fed with noise, block by block. */
class PatchedInstance
{
public:
    /** Prepared and past its first block, which brings in the MIDI. Message thread. */
    PatchedInstance (const Patch& patch, double sampleRate, int blockSize);

    /** One block. False if the patch ran away and was silenced: then its time says nothing about a patch that
        is to keep sounding. Includes copying the noise, two blocks' worth of memcpy. Any one thread at a time;
        allocates nothing. */
    bool process();

private:
    void set (NumericalParamID id, float realValue);
    void apply (const Patch& patch);
    void connect (int count);
    void route (int count);
    void quietFeedback();

    VelkorAudioProcessor processor;
    std::vector<float> noiseLeft, noiseRight;
    juce::AudioBuffer<float> buffer;
    juce::MidiBuffer midi;
};
