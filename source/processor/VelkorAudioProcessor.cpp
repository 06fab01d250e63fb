// SPDX-License-Identifier: AGPL-3.0-or-later
#include "processor/VelkorAudioProcessor.h"

#include "parameters/build_parameters.h"

VelkorAudioProcessor::VelkorAudioProcessor()
    : zb_AudioProcessor (BusesProperties()
                             .withInput ("Input", juce::AudioChannelSet::stereo(), true)
                             .withOutput ("Output", juce::AudioChannelSet::stereo(), true)),
      parameterTree (*this, &undoManager, "Parameters", buildParameters())
{
    for (std::size_t i = 0; i < paramValues.size(); ++i)
        paramValues[i] = parameterTree.getRawParameterValue (paramMapper[i].name);

    linkSyncParameters (parameterTree);
    engine = std::make_unique<VelkorEngine>();
    presetName = "- Init -";
}

VelkorAudioProcessor::~VelkorAudioProcessor()
{
    engine.reset();
}

juce::AudioProcessorValueTreeState::ParameterLayout VelkorAudioProcessor::buildParameters()
{
    return ::buildParameters();
}

bool VelkorAudioProcessor::isBusesLayoutSupported (const BusesLayout& layouts) const
{
    const auto in = layouts.getMainInputChannelSet();
    const auto out = layouts.getMainOutputChannelSet();
    return in == juce::AudioChannelSet::stereo() &&
           (out == juce::AudioChannelSet::stereo() || out == juce::AudioChannelSet::mono());
}

juce::AudioProcessorEditor* VelkorAudioProcessor::createEditor()
{
    return new juce::GenericAudioProcessorEditor (*this);
}

void VelkorAudioProcessor::prepareToPlay (double sampleRate, int)
{
    engine_prepare (*engine, sampleRate);
}

void VelkorAudioProcessor::getStateInformation (juce::MemoryBlock& destination)
{
    if (const auto xml = parameterTree.copyState().createXml())
        copyXmlToBinary (*xml, destination);
}

void VelkorAudioProcessor::setStateInformation (const void* data, int sizeInBytes)
{
    if (const auto xml = getXmlFromBinary (data, sizeInBytes))
        if (xml->hasTagName (parameterTree.state.getType()))
            parameterTree.replaceState (juce::ValueTree::fromXml (*xml));
}

// --- matrices ------------------------------------------------------------------------------------------

void VelkorAudioProcessor::setSignalConnection (int source, int destination, bool on)
{
    engine_set_connection (*engine, source, destination, on);
    updateHostDisplay();
}

void VelkorAudioProcessor::setModConnection (int source, int dest, bool on)
{
    mod_router_set (engine->modulation, source, dest, on);
    updateHostDisplay();
}

bool VelkorAudioProcessor::getModConnection (int source, int dest) const noexcept
{
    return mod_router_get (engine->modulation, source, dest);
}
