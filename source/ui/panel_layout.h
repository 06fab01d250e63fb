// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "parameters/parameter_table.h"

#include <array>

/** Where everything stands on the panel, in the coordinates of its background: x from 0 to 750, y from 0 to 525.
    The one source of placement: VelkorPanel builds its controls from these tables in this order, which is also the
    order from back to front, and scripts/make-artwork reads them to draw the background under them. That script
    wants one row to a line. */
namespace panel_layout
{

inline constexpr float kWidth = 750.0f;   ///< of the background
inline constexpr float kHeight = 525.0f;  ///< of the background

inline constexpr float kBigSliderHeight = 15.0f;
inline constexpr float kSmallSliderWidth = 53.0f;
inline constexpr float kSmallSliderHeight = 12.0f;
inline constexpr float kMultiplierWidth = 92.0f;
inline constexpr float kMultiplierHeight = 18.0f;
inline constexpr float kToggleWidth = 47.0f;
inline constexpr float kToggleHeight = 18.0f;
inline constexpr float kWaveWidth = 93.0f;
inline constexpr float kWaveHeight = 36.0f;
inline constexpr float kLabelHeight = 18.0f;

/** A control of a size that its kind fixes. */
struct Place
{
    NumericalParamID parameter;
    float x, y;
};

/** A control of a width of its own. */
struct WidePlace
{
    NumericalParamID parameter;
    float x, y, width;
};

/** The picture of a toggle; several toggles share one. */
enum class ToggleImage
{
    // clang-format off
    sync, thru, loop, reverse, reset, mono, kill, phaseL, phaseR
    // clang-format on
};

/** A toggle and its picture. */
struct TogglePlace
{
    NumericalParamID parameter;
    ToggleImage image;
    float x, y;
};

/** A text that shows one parameter and follows a second, the switch that changes the first one's unit. The two are
    the same where there is no such switch. */
struct LabelPlace
{
    NumericalParamID parameter, watched;
    float x, y, width;
};

/** A grid or a lamp: no parameter. */
struct Area
{
    float x, y, width, height;
};

// clang-format off
inline constexpr std::array<WidePlace, 26> kBigSliders {{
    { Delay1Time, 35, 70, 95 },
    { Delay1Fine, 35, 102, 95 },
    { Delay1Feedback, 35, 174, 95 },
    { Delay2Time, 155, 70, 95 },
    { Delay2Fine, 155, 102, 95 },
    { Delay2Feedback, 155, 174, 95 },
    { EnvSensitivity, 35, 242, 95 },
    { LFO1Rate, 35, 333, 95 },
    { LFO1Skew, 35, 365, 95 },
    { LFO2Rate, 155, 333, 95 },
    { LFO2Skew, 155, 365, 95 },
    { Filter1Freq, 285, 50, 95 },
    { Filter1Reso, 285, 82, 95 },
    { Filter1Mode, 285, 123, 95 },
    { Filter2Freq, 405, 50, 95 },
    { Filter2Reso, 405, 82, 95 },
    { Filter2Mode, 405, 123, 95 },
    { Saturation1, 285, 202, 95 },
    { Saturation2, 405, 202, 95 },
    { InputLevel, 534, 50, 95 },
    { WetLevel, 534, 82, 95 },
    { DryLevel, 534, 114, 95 },
    { Output1Level, 534, 169, 95 },
    { Output2Level, 534, 201, 95 },
    { Pan1, 638, 169, 66 },
    { Pan2, 638, 201, 66 },
}};

/** The ten at x 451 are the depths of the modulation grid's rows, top to bottom. */
inline constexpr std::array<Place, 12> kSmallSliders {{
    { EnvAttack, 189, 245 },
    { EnvDecay, 189, 257 },
    { Delay1Mod, 451, 308 },
    { Delay2Mod, 451, 320 },
    { LFO1Mod, 451, 332 },
    { LFO2Mod, 451, 344 },
    { Filter1Mod, 451, 356 },
    { Filter2Mod, 451, 368 },
    { Pan1Mod, 451, 380 },
    { Pan2Mod, 451, 392 },
    { Level1Mod, 451, 404 },
    { Level2Mod, 451, 416 },
}};

inline constexpr std::array<Place, 2> kMultipliers {{
    { Delay1Multiplier, 37, 50 },
    { Delay2Multiplier, 157, 50 },
}};

/** Only the second LFO has a reset: the place left of it stays empty. */
inline constexpr std::array<TogglePlace, 15> kToggles {{
    { Delay1Sync, ToggleImage::sync, 37, 133 },
    { Delay1Bypass, ToggleImage::thru, 37, 151 },
    { Delay1Loop, ToggleImage::loop, 84, 133 },
    { Delay1Reverse, ToggleImage::reverse, 84, 151 },
    { Delay2Sync, ToggleImage::sync, 157, 133 },
    { Delay2Bypass, ToggleImage::thru, 157, 151 },
    { Delay2Loop, ToggleImage::loop, 204, 133 },
    { Delay2Reverse, ToggleImage::reverse, 204, 151 },
    { LFO1Sync, ToggleImage::sync, 37, 313 },
    { LFO2Sync, ToggleImage::sync, 157, 313 },
    { LFO2Reset, ToggleImage::reset, 204, 313 },
    { MonoInput, ToggleImage::mono, 649, 50 },
    { Kill, ToggleImage::kill, 649, 68 },
    { PhaseInvert1, ToggleImage::phaseL, 649, 112 },
    { PhaseInvert2, ToggleImage::phaseR, 649, 130 },
}};

inline constexpr std::array<Place, 2> kWaves {{
    { LFO1Wave, 37, 396 },
    { LFO2Wave, 157, 396 },
}};

inline constexpr std::array<LabelPlace, 24> kLabels {{
    { Delay1Time, Delay1Sync, 73, 81, 57 },
    { Delay1Fine, Delay1Fine, 73, 113, 57 },
    { Delay1Feedback, Delay1Feedback, 73, 185, 57 },
    { EnvSensitivity, EnvSensitivity, 73, 253, 57 },
    { LFO1Rate, LFO1Sync, 73, 344, 57 },
    { LFO1Skew, LFO1Skew, 73, 376, 57 },
    { Delay2Time, Delay2Sync, 194, 81, 57 },
    { Delay2Fine, Delay2Fine, 194, 113, 57 },
    { Delay2Feedback, Delay2Feedback, 194, 185, 57 },
    { LFO2Rate, LFO2Sync, 194, 344, 57 },
    { LFO2Skew, LFO2Skew, 194, 376, 57 },
    { Filter1Freq, Filter1Freq, 331, 62, 47 },
    { Filter1Reso, Filter1Reso, 331, 94, 47 },
    { Filter1Mode, Filter1Mode, 331, 135, 47 },
    { Saturation1, Saturation1, 331, 214, 47 },
    { Filter2Freq, Filter2Freq, 452, 62, 47 },
    { Filter2Reso, Filter2Reso, 452, 94, 47 },
    { Filter2Mode, Filter2Mode, 452, 135, 47 },
    { Saturation2, Saturation2, 452, 214, 47 },
    { InputLevel, InputLevel, 581, 62, 47 },
    { WetLevel, WetLevel, 581, 94, 47 },
    { DryLevel, DryLevel, 581, 126, 47 },
    { Output1Level, Output1Level, 581, 181, 47 },
    { Output2Level, Output2Level, 581, 213, 47 },
}};

inline constexpr Area kModMatrix    { 292, 306,  83, 120 };
inline constexpr Area kSignalMatrix { 541, 306, 111, 120 };
inline constexpr Area kMidiLed      {  20, 480,  20,  19 };
// clang-format on

}  // namespace panel_layout
