// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "engine/engine.h"
#include "parameters/parameter_binding.h"
#include "processor/zb_AudioProcessor.h"
#include "state/stored_parameters.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <atomic>
#include <memory>

/** What the host talks to: owns the parameters, the undo history and one engine. */
class VelkorAudioProcessor : public zb_AudioProcessor,
                             public juce::AudioProcessorValueTreeState::Listener
{
public:
    VelkorAudioProcessor();
    ~VelkorAudioProcessor() override;

    /** The 57 parameters in the order in which the host sees them. Any thread but the audio thread. */
    static juce::AudioProcessorValueTreeState::ParameterLayout buildParameters();

    const juce::String getName() const override { return "Velkor"; }
    bool isBusesLayoutSupported (const BusesLayout& layouts) const override;
    double getTailLengthSeconds() const override { return 0.0; }
    bool acceptsMidi() const override { return true; }
    bool producesMidi() const override { return false; }
    bool isMidiEffect() const override { return false; }
    bool hasEditor() const override { return true; }
    juce::AudioProcessorEditor* createEditor() override;

    /** Sets the sample rate, for the other instances of the process too, and clears the signal state.
        Never beside a block. */
    void prepareToPlay (double sampleRate, int samplesPerBlock) override;

    /** Does nothing: the buffers stay. */
    void releaseResources() override {}

    /** Audio thread. Allocates nothing, waits for nothing but the engine's two spin locks. */
    void processBlock (juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi) override;
    using juce::AudioProcessor::processBlock;

    /** Passes the input on and reads the MIDI, so that no key is held that was let go. Audio thread. */
    void processBlockBypassed (juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi) override;
    using juce::AudioProcessor::processBlockBypassed;

    /** The document of the sound in one line, with the editor's size. Any thread but the audio thread. */
    void getStateInformation (juce::MemoryBlock& destination) override;

    /** Loads what getStateInformation gave, and the editor's size with it, also out of a document that is
        none of this product's; does nothing without a document. Any thread but the audio thread. */
    void setStateInformation (const void* data, int sizeInBytes) override;

    /** Replaces name, parameters and matrices by those of a document, and clears the undo
        history, which off the message thread happens a moment later; ignores a document that has
        another root or no parameters. Takes programListLock, the store's lock, connectionLock
        and modLock, one after the other. Any thread but the audio thread. */
    void loadStateFromXML (juce::XmlElement* document, const juce::var& context = {}) override;

    /** Makes target the document of the present sound. Takes programListLock and the parameters'
        lock, one after the other; reads the matrices without theirs. Any thread but the audio
        thread. */
    void saveStateToXML (juce::XmlElement& target, const juce::var& context = {}) override;

    /** Writes the settings of the machine; a failure isn't noticed. Message thread. */
    void writeGlobals() const;

    /** Makes or breaks a connection of the signal matrix and tells the host. Message thread; takes
        connectionLock. */
    void setSignalConnection (int source, int destination, bool on);

    /** Whether source is connected to destination; false out of range. Any thread, lock-free. */
    bool getSignalConnection (int source, int destination) const noexcept;

    /** Makes or breaks a route of the modulation matrix and tells the host. Message thread; takes modLock. */
    void setModConnection (int source, int dest, bool on);

    /** Whether source is routed to dest; false out of range. Any thread, lock-free. */
    bool getModConnection (int source, int dest) const noexcept;

    /** Part of the listener's interface; never registered, since parameters are pulled, once per block. */
    void parameterChanged (const juce::String&, float) override {}

    juce::UndoManager undoManager;  ///< the message thread's, and so is the tree of the store
    juce::AudioProcessorValueTreeState parameterTree;
    StoredParameters storedParameters { parameterTree, undoManager };
    juce::File presetFolder;  ///< factory and user presets
    bool saveAudio = false;   ///< as in GlobalSettings, and so the next three
    bool toolTips = true;
    bool animationPlayer = true;
    bool glowRenderer = true;
    std::atomic<int> uiWidth { 900 };      ///< the editor's, pixels; any thread
    std::atomic<int> uiHeight { 300 };     ///< the editor's, pixels; any thread
    std::unique_ptr<VelkorEngine> engine;  ///< deleted before the parameters go
    ParamPointers paramValues {};          ///< resolved once, in the constructor

    /** Set when a block held a MIDI event that the engine used; whoever shows it takes it by exchange. */
    std::atomic<bool> midiActivity { false };

private:
    void loadDefaultPreset();
    void readGlobals();
    void takeMidi (const juce::MidiBuffer& midi) noexcept;
    Transport readTransport() const;

    ParamSnapshot boundValues = noSnapshot();  ///< what the engine got last; the audio thread's

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (VelkorAudioProcessor)
};
