// SPDX-License-Identifier: AGPL-3.0-or-later
#include "parameters/parameter_ranges.h"

#include <cmath>

namespace
{
float logFrom0to1 (float start, float end, float proportion)
{
    return start * std::pow (end / start, proportion);
}

float logTo0to1 (float start, float end, float value)
{
    return std::log (value / start) / std::log (end / start);
}

float cubicFrom0to1 (float, float end, float proportion)
{
    // 3.0f, not 3: with an integer the power would be taken in double
    return std::pow (proportion, 3.0f) * end;
}

float cubicTo0to1 (float, float end, float value)
{
    return std::pow (value / end, 0.33333334f);
}
}  // namespace

LogFreqRange::LogFreqRange (float rangeStart, float rangeEnd)
    : NormalisableRange (rangeStart, rangeEnd, logFrom0to1, logTo0to1)
{
}

CubicGainRange::CubicGainRange (float top)
    : NormalisableRange (0.0f, top, cubicFrom0to1, cubicTo0to1)
{
}
