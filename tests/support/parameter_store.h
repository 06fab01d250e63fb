// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "parameters/parameter_table.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <utility>

/** A processor that does nothing: somebody has to own the parameters. */
class IdleProcessor : public juce::AudioProcessor
{
public:
    const juce::String getName() const override { return "Idle"; }
    void prepareToPlay (double, int) override {}
    void releaseResources() override {}
    void processBlock (juce::AudioBuffer<float>&, juce::MidiBuffer&) override {}
    double getTailLengthSeconds() const override { return 0.0; }
    bool acceptsMidi() const override { return false; }
    bool producesMidi() const override { return false; }
    juce::AudioProcessorEditor* createEditor() override { return nullptr; }
    bool hasEditor() const override { return false; }
    int getNumPrograms() override { return 1; }
    int getCurrentProgram() override { return 0; }
    void setCurrentProgram (int) override {}
    const juce::String getProgramName (int) override { return {}; }
    void changeProgramName (int, const juce::String&) override {}
    void getStateInformation (juce::MemoryBlock&) override {}
    void setStateInformation (const void*, int) override {}
};

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
    IdleProcessor processor;
    juce::AudioProcessorValueTreeState state;
};
