// SPDX-License-Identifier: AGPL-3.0-or-later
#include "processor/VelkorAudioProcessor.h"

#include "parameters/build_parameters.h"
#include "state/first_run_install.h"
#include "state/global_settings.h"
#include "state/preset_document.h"
#include "state/state_carriers.h"
#include "ui/VelkorAudioProcessorEditor.h"

#include <BinaryData.h>

// Stored: never edit.
static constexpr auto kStateTag = "VelkorSettings";
static constexpr auto kUiWidth = "uiWidth";
static constexpr auto kUiHeight = "uiHeight";

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
    stateTag = kStateTag;
    setPresetName ("- Init -");

    presetFolder = defaultPresetFolder();
    installFirstRunContent (presetFolder, BinaryData::Presets_zip, BinaryData::Presets_zipSize);
    loadDefaultPreset();
    readGlobals();
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
    return new VelkorAudioProcessorEditor (*this, parameterTree);
}

void VelkorAudioProcessor::prepareToPlay (double sampleRate, int)
{
    engine_prepare (*engine, sampleRate);
}

// --- state ---------------------------------------------------------------------------------------------

void VelkorAudioProcessor::getStateInformation (juce::MemoryBlock& destination)
{
    juce::XmlElement document (stateTag);
    saveStateToXML (document, juce::var());
    document.setAttribute (kUiWidth, uiWidth.load());
    document.setAttribute (kUiHeight, uiHeight.load());
    copyXmlToBinary (document, destination);
}

void VelkorAudioProcessor::setStateInformation (const void* data, int sizeInBytes)
{
    const auto document = readChunk (data, sizeInBytes);

    if (document == nullptr)
        return;

    loadStateFromXML (document.get(), juce::var());
    uiWidth = document->getIntAttribute (kUiWidth);
    uiHeight = document->getIntAttribute (kUiHeight);
}

void VelkorAudioProcessor::saveStateToXML (juce::XmlElement& target, const juce::var&)
{
    target = *writePresetDocument (stateTag, getPresetName(), storedParameters, *engine);
}

void VelkorAudioProcessor::loadStateFromXML (juce::XmlElement* document, const juce::var&)
{
    if (document == nullptr || ! isPresetDocument (*document, stateTag))
        return;

    setPresetName (readPresetName (*document));
    readPresetParameters (*document, storedParameters);

    if (engine != nullptr)
        readPresetMatrices (*document, *engine);

    // What a synchronous listener has added since the parameters were replaced goes too. The
    // history belongs to the message thread; a load on another one has asked for it to be cleared
    // there.
    if (juce::MessageManager::existsAndIsCurrentThread())
        undoManager.clearUndoHistory();

    updateHostDisplay (stateChanged());
}

void VelkorAudioProcessor::loadDefaultPreset()
{
    if (const auto document = readDefaultPreset (presetFolder))
        VelkorAudioProcessor::loadStateFromXML (document.get(), juce::var());
}

void VelkorAudioProcessor::readGlobals()
{
    GlobalSettings settings {
        uiWidth, uiHeight, saveAudio, toolTips, animationPlayer, glowRenderer
    };
    readGlobalSettings (globalSettingsFile (presetFolder), settings);
    uiWidth = settings.uiWidth;
    uiHeight = settings.uiHeight;
    saveAudio = settings.saveAudio;
    toolTips = settings.toolTips;
    animationPlayer = settings.animationPlayer;
    glowRenderer = settings.glowRenderer;
}

void VelkorAudioProcessor::writeGlobals() const
{
    writeGlobalSettings (globalSettingsFile (presetFolder),
                         { uiWidth, uiHeight, saveAudio, toolTips, animationPlayer, glowRenderer });
}

// --- matrices ------------------------------------------------------------------------------------------

void VelkorAudioProcessor::setSignalConnection (int source, int destination, bool on)
{
    engine_set_connection (*engine, source, destination, on);
    updateHostDisplay();
}

bool VelkorAudioProcessor::getSignalConnection (int source, int destination) const noexcept
{
    return signal_matrix_get (engine->signal, source, destination);
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
