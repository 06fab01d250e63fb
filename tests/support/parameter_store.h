// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "parameters/parameter_table.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <utility>

/** A parameter store on a processor of its own, filled from the given layout. Message thread. */
class ParameterStore
{
public:
    explicit ParameterStore (juce::AudioProcessorValueTreeState::ParameterLayout layout)
        : state (processor, nullptr, "Parameters", std::move (layout))
    {
    }

    /** The parameter of that id; the caller knows that there is one. */
    juce::RangedAudioParameter& operator[] (NumericalParamID number)
    {
        return *state.getParameter (paramMapper[number].name);
    }

    juce::ScopedJuceInitialiser_GUI framework;  ///< first: the store has a timer
    juce::AudioProcessorGraph processor;  ///< an empty one: somebody has to own the parameters
    juce::AudioProcessorValueTreeState state;
};
