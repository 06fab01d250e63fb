// SPDX-License-Identifier: AGPL-3.0-or-later
#include "parameters/parameter_text.h"

#include <cmath>

namespace
{
juce::String decimals (float value, int numDecimals)
{
    return juce::String (static_cast<double> (value), numDecimals);
}

/** To the nearest integer; juce::roundToInt takes a tie to the even one. */
juce::String rounded (float value)
{
    return juce::String (juce::roundToInt (value));
}

/** Only the plus: a negative number brings its own sign. */
const char* plusSign (float value)
{
    return value >= 0.0f ? "+" : "";
}

/** One band of the filter morph, up to but without its end. */
struct ModeBand
{
    float end;
    const char* text;
};

constexpr ModeBand kModeBands[] = {
    { 0.1f, "Notch" },    { 0.2833f, "Ntch/LP" },  { 0.3833f, "Lowpass" },
    { 0.6167f, "LP/BP" }, { 0.7167f, "Bandpass" }, { 0.9f, "BP/HP" },
};
}  // namespace

juce::String delayTimeText (float milliseconds, int)
{
    if (milliseconds >= 1000.0f)
        return decimals (milliseconds / 1000.0f, 2) + " s";

    return rounded (milliseconds) + " ms";
}

juce::String timesText (float factor, int)
{
    return "x" + decimals (factor, 2);
}

juce::String signedRatioText (float ratio, int)
{
    return plusSign (ratio) + decimals (ratio, 2);
}

juce::String onOffText (bool isOn, int)
{
    return isOn ? "On" : "Off";
}

juce::String directionText (bool isReverse, int)
{
    return isReverse ? "Reverse" : "Forward";
}

juce::String polarityText (bool isInverted, int)
{
    return isInverted ? "Inverted" : "Normal";
}

juce::String lfoRateText (float hertz, int)
{
    return decimals (hertz, 2) + " Hz";
}

juce::String signedHertzText (float hertz, int)
{
    return plusSign (hertz) + decimals (hertz, 1) + " Hz";
}

juce::String percentText (float proportion, int)
{
    return rounded (proportion * 100.0f) + "%";
}

juce::String signedPercentText (float proportion, int)
{
    // the sign of the value, not of what is left of it after rounding
    return plusSign (proportion) + rounded (proportion * 100.0f) + "%";
}

juce::String frequencyText (float hertz, int)
{
    if (hertz >= 1000.0f)
        return decimals (hertz / 1000.0f, 2) + " kHz";

    return rounded (hertz) + " Hz";
}

juce::String twoDecimalsText (float value, int)
{
    return decimals (value, 2);
}

juce::String saturationText (float drive, int)
{
    return decimals (drive * 11.0f, 1);
}

juce::String panText (float position, int)
{
    const auto steps = juce::roundToInt ((position - 0.5f) * 20.0f);

    if (steps == 0)
        return "Center";

    return steps < 0 ? "L " + juce::String (-steps) : "R " + juce::String (steps);
}

juce::String envTimeText (float seconds, int)
{
    return rounded (seconds * 1000.0f) + " ms";
}

juce::String filterModeText (float mode, int)
{
    for (const auto& band : kModeBands)
        if (mode < band.end)
            return band.text;

    return "Highpass";
}

float numberOf (const juce::String& text)
{
    const auto number = static_cast<float> (text.getDoubleValue());
    return std::isnan (number) ? 0.0f : number;
}
