// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

/** A range whose travel is logarithmic: equal steps of the control are equal ratios of the value.
    Continuous: a value is only clipped to the range, never snapped. Single precision throughout.
    Any thread. */
class LogFreqRange : public juce::NormalisableRange<float>
{
public:
    /** Both in the parameter's unit, 0 < rangeStart < rangeEnd. */
    LogFreqRange (float rangeStart, float rangeEnd);
};

/** Linear gain from silence to top with a cubic travel, which puts the useful decibels over the upper
    half of the control. Continuous, like LogFreqRange. Single precision throughout. Any thread. */
class CubicGainRange : public juce::NormalisableRange<float>
{
public:
    /** top is the gain (not decibels) at the end of the travel, above 0. */
    explicit CubicGainRange (float top);
};
