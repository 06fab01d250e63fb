// SPDX-License-Identifier: AGPL-3.0-or-later
#include "parameters/sync_display_parameter.h"

#include "engine/sync_beats.h"

#include <utility>

const juce::StringArray SyncDisplayParameter::kBeatLabels {
    "1/32", "1/16T", "1/16", "1/8T", "1/16D", "1/8",  "1/4T", "1/8D",
    "1/4",  "1/2T",  "1/4D", "1/2",  "1/1T",  "1/2D", "1/1",
};

SyncDisplayParameter::SyncDisplayParameter (const juce::ParameterID& parameterID,
                                            const juce::String& parameterName,
                                            juce::NormalisableRange<float> valueRange,
                                            float defaultValue, bool shouldInvertSync,
                                            const juce::AudioParameterFloatAttributes& attributes)
    : AudioParameterFloat (parameterID, parameterName, std::move (valueRange), defaultValue,
                           attributes),
      stringFunction (attributes.getStringFromValueFunction()), invertSync (shouldInvertSync)
{
}

juce::String SyncDisplayParameter::getText (float normalised, int maximumLength) const
{
    if (syncParameter != nullptr && syncParameter->get())
        return kBeatLabels[syncBeatIndex (invertSync ? 1.0f - normalised : normalised)];

    const auto realValue = convertFrom0to1 (normalised);

    return stringFunction != nullptr ? stringFunction (realValue, maximumLength)
                                     : juce::String (static_cast<double> (realValue), 2);
}
