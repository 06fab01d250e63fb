// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <array>
#include <optional>
#include <string_view>

/** Every automatable parameter, in the order in which the host sees them. The number is an array
    index (parameterInfo, the processor's live values) and is never stored: presets and sessions
    know a parameter by its id string. */
enum NumericalParamID
{
    // clang-format off
    Delay1Time,       Delay2Time,
    Delay1Fine,       Delay2Fine,
    Delay1Mod,        Delay2Mod,
    Delay1Sync,       Delay2Sync,
    Delay1Loop,       Delay2Loop,
    Delay1Reverse,    Delay2Reverse,
    Delay1Bypass,     Delay2Bypass,
    Delay1Feedback,   Delay2Feedback,
    Delay1Multiplier, Delay2Multiplier,
    LFO1Rate,         LFO2Rate,
    LFO1Mod,          LFO2Mod,
    LFO1Sync,         LFO2Sync,
    LFO1Wave,         LFO2Wave,
    LFO1Skew,         LFO2Skew,
    Filter1Freq,      Filter2Freq,
    Filter1Mod,       Filter2Mod,
    Filter1Reso,      Filter2Reso,
    Filter1Mode,      Filter2Mode,
    Saturation1,      Saturation2,
    Level1Mod,        Level2Mod,
    Pan1,             Pan2,
    Pan1Mod,          Pan2Mod,
    LFO2Reset,
    EnvSensitivity,
    EnvAttack,
    EnvDecay,
    InputLevel,
    MonoInput,
    Kill,
    WetLevel,
    DryLevel,
    Output1Level,     Output2Level,
    PhaseInvert1,     PhaseInvert2
    // clang-format on
};

/** Length of every table that is indexed by NumericalParamID. */
inline constexpr int kNumParameters = 57;

static_assert (PhaseInvert2 + 1 == kNumParameters, "the last number ends the tables");

/** What a parameter is called outside this process. */
struct ParameterInfo
{
    const char* name;  ///< stored: never edit. The id string, and the display name too
    int versionHint;   ///< stored by hosts: never edit
};

/** The row of each parameter, indexed by NumericalParamID. Constant, any thread. */
extern const std::array<ParameterInfo, kNumParameters> parameterInfo;

/** The first row of parameterInfo. */
extern const ParameterInfo* const paramMapper;

/** The number behind an id string, compared exactly; empty if no parameter has it. A linear search
    for tools and loaders: the audio thread goes by number. Any thread. */
std::optional<NumericalParamID> findParameter (std::string_view id) noexcept;
