// SPDX-License-Identifier: AGPL-3.0-or-later
#include "parameters/gain_parameter.h"

#include "parameters/parameter_text.h"

#include <algorithm>
#include <cmath>

namespace
{
/** Where the display gives up and says that there is nothing to hear. */
constexpr float kSilenceDb = -100.0f;

/** Length of the " dB" that a typed text is expected to end with. */
constexpr int kUnitLength = 3;
}  // namespace

juce::String AudioParameterGain::getText (float normalised, int) const
{
    const auto gain = convertFrom0to1 (normalised);
    const auto gainDb = gain > 0.0f ? std::max (20.0f * std::log10 (gain), kSilenceDb) : kSilenceDb;

    if (gainDb <= kSilenceDb)
        return "-INF dB";

    const auto* sign = gainDb >= 0.0f ? "+" : "";

    return sign + juce::String (static_cast<double> (gainDb), 2) + " dB";
}

float AudioParameterGain::getValueForText (const juce::String& text) const
{
    return convertTo0to1 (numberOf (text.dropLastCharacters (kUnitLength)));
}
