// SPDX-License-Identifier: AGPL-3.0-or-later
#include "parameters/parameter_table.h"

#include <algorithm>
#include <cstddef>

namespace
{
/** The same for every parameter. */
constexpr int kVersionHint = 100;

/** A row with its own number beside it, so that the compiler can tell a slip in the order. */
struct NumberedRow
{
    NumericalParamID number;
    ParameterInfo info;
};

// stored: never edit
constexpr std::array kRows {
    // clang-format off
    NumberedRow { Delay1Time,       { "Delay 1 Time",       kVersionHint } },
    NumberedRow { Delay2Time,       { "Delay 2 Time",       kVersionHint } },
    NumberedRow { Delay1Fine,       { "Delay 1 Fine",       kVersionHint } },
    NumberedRow { Delay2Fine,       { "Delay 2 Fine",       kVersionHint } },
    NumberedRow { Delay1Mod,        { "Delay 1 Mod",        kVersionHint } },
    NumberedRow { Delay2Mod,        { "Delay 2 Mod",        kVersionHint } },
    NumberedRow { Delay1Sync,       { "Delay 1 Sync",       kVersionHint } },
    NumberedRow { Delay2Sync,       { "Delay 2 Sync",       kVersionHint } },
    NumberedRow { Delay1Loop,       { "Delay 1 Loop",       kVersionHint } },
    NumberedRow { Delay2Loop,       { "Delay 2 Loop",       kVersionHint } },
    NumberedRow { Delay1Reverse,    { "Delay 1 Reverse",    kVersionHint } },
    NumberedRow { Delay2Reverse,    { "Delay 2 Reverse",    kVersionHint } },
    NumberedRow { Delay1Bypass,     { "Delay 1 Bypass",     kVersionHint } },
    NumberedRow { Delay2Bypass,     { "Delay 2 Bypass",     kVersionHint } },
    NumberedRow { Delay1Feedback,   { "Delay 1 Feedback",   kVersionHint } },
    NumberedRow { Delay2Feedback,   { "Delay 2 Feedback",   kVersionHint } },
    NumberedRow { Delay1Multiplier, { "Delay 1 Multiplier", kVersionHint } },
    NumberedRow { Delay2Multiplier, { "Delay 2 Multiplier", kVersionHint } },
    NumberedRow { LFO1Rate,         { "LFO 1 Rate",         kVersionHint } },
    NumberedRow { LFO2Rate,         { "LFO 2 Rate",         kVersionHint } },
    NumberedRow { LFO1Mod,          { "LFO 1 Mod",          kVersionHint } },
    NumberedRow { LFO2Mod,          { "LFO 2 Mod",          kVersionHint } },
    NumberedRow { LFO1Sync,         { "LFO 1 Sync",         kVersionHint } },
    NumberedRow { LFO2Sync,         { "LFO 2 Sync",         kVersionHint } },
    NumberedRow { LFO1Wave,         { "LFO 1 Wave",         kVersionHint } },
    NumberedRow { LFO2Wave,         { "LFO 2 Wave",         kVersionHint } },
    NumberedRow { LFO1Skew,         { "LFO 1 Skew",         kVersionHint } },
    NumberedRow { LFO2Skew,         { "LFO 2 Skew",         kVersionHint } },
    NumberedRow { Filter1Freq,      { "Filter 1 Freq",      kVersionHint } },
    NumberedRow { Filter2Freq,      { "Filter 2 Freq",      kVersionHint } },
    NumberedRow { Filter1Mod,       { "Filter 1 Mod",       kVersionHint } },
    NumberedRow { Filter2Mod,       { "Filter 2 Mod",       kVersionHint } },
    NumberedRow { Filter1Reso,      { "Filter 1 Reso",      kVersionHint } },
    NumberedRow { Filter2Reso,      { "Filter 2 Reso",      kVersionHint } },
    NumberedRow { Filter1Mode,      { "Filter 1 Mode",      kVersionHint } },
    NumberedRow { Filter2Mode,      { "Filter 2 Mode",      kVersionHint } },
    NumberedRow { Saturation1,      { "Saturation 1",       kVersionHint } },
    NumberedRow { Saturation2,      { "Saturation 2",       kVersionHint } },
    NumberedRow { Level1Mod,        { "Level 1 Mod",        kVersionHint } },
    NumberedRow { Level2Mod,        { "Level 2 Mod",        kVersionHint } },
    NumberedRow { Pan1,             { "Pan 1",              kVersionHint } },
    NumberedRow { Pan2,             { "Pan 2",              kVersionHint } },
    NumberedRow { Pan1Mod,          { "Pan 1 Mod",          kVersionHint } },
    NumberedRow { Pan2Mod,          { "Pan 2 Mod",          kVersionHint } },
    NumberedRow { LFO2Reset,        { "LFO 2 Reset",        kVersionHint } },
    NumberedRow { EnvSensitivity,   { "Env Sensitivity",    kVersionHint } },
    NumberedRow { EnvAttack,        { "Env Attack",         kVersionHint } },
    NumberedRow { EnvDecay,         { "Env Decay",          kVersionHint } },
    NumberedRow { InputLevel,       { "Input Level",        kVersionHint } },
    NumberedRow { MonoInput,        { "Mono Input",         kVersionHint } },
    NumberedRow { Kill,             { "Kill",               kVersionHint } },
    NumberedRow { WetLevel,         { "Wet Level",          kVersionHint } },
    NumberedRow { DryLevel,         { "Dry Level",          kVersionHint } },
    NumberedRow { Output1Level,     { "Output 1 Level",     kVersionHint } },
    NumberedRow { Output2Level,     { "Output 2 Level",     kVersionHint } },
    NumberedRow { PhaseInvert1,     { "Phase Invert 1",     kVersionHint } },
    NumberedRow { PhaseInvert2,     { "Phase Invert 2",     kVersionHint } },
    // clang-format on
};

using Rows = std::array<NumberedRow, kNumParameters>;

constexpr bool rowsAreInOrder (const Rows& rows)
{
    for (std::size_t i = 0; i < rows.size(); ++i)
        if (static_cast<std::size_t> (rows[i].number) != i)
            return false;

    return true;
}

constexpr bool namesAreUnique (const Rows& rows)
{
    for (std::size_t i = 0; i < rows.size(); ++i)
        for (std::size_t k = i + 1; k < rows.size(); ++k)
            if (std::string_view (rows[i].info.name) == rows[k].info.name)
                return false;

    return true;
}

constexpr std::array<ParameterInfo, kNumParameters> withoutNumbers (const Rows& rows)
{
    std::array<ParameterInfo, kNumParameters> result {};
    std::ranges::transform (rows, result.begin(), &NumberedRow::info);
    return result;
}

static_assert (kRows.size() == kNumParameters, "one row for each number");
static_assert (rowsAreInOrder (kRows), "every number once, in order: it is an array index");
static_assert (namesAreUnique (kRows), "a stored id means one parameter");
}  // namespace

constexpr std::array<ParameterInfo, kNumParameters> parameterInfo = withoutNumbers (kRows);

constexpr const ParameterInfo* paramMapper = parameterInfo.data();

std::optional<NumericalParamID> findParameter (std::string_view id) noexcept
{
    const auto found =
        std::ranges::find_if (kRows, [id] (const NumberedRow& row) { return id == row.info.name; });

    if (found == kRows.end())
        return std::nullopt;

    return found->number;
}
