// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <atomic>

/** A row of the program list. */
struct PresetInfo
{
    juce::File file;
    juce::String name;        ///< display name; empty until known
    bool nameLoaded = false;  ///< whether name is final
};

/** What the plug-ins of this frame have in common: the name of the present sound, its document, and the list
    of preset files as the host's programs. A product that sets programFolder turns that list on. This one
    leaves it empty, on purpose: a host sees one program, named presetName, and the browser is the way to
    the presets. */
class zb_AudioProcessor : public juce::AudioProcessor
{
public:
    explicit zb_AudioProcessor (const BusesProperties& buses);

    /** Applies a document, or does nothing if it is none of this product's. The context is for products that
        load in more than one way. Any thread but the audio thread. */
    virtual void loadStateFromXML (juce::XmlElement* document, const juce::var& context = {}) = 0;

    /** Makes target the document of the present sound, its tag included. Any thread but the audio thread. */
    virtual void saveStateToXML (juce::XmlElement& target, const juce::var& context = {}) = 0;

    /** Names the present sound. Hosts ask for the name on any thread, so nothing else assigns presetName while
        one may. Any thread but the audio thread; takes programListLock. */
    void setPresetName (juce::String name);

    /** The name of the present sound. Any thread but the audio thread; takes programListLock. */
    juce::String getPresetName() const;

    /** The number of rows, and at least 1: hosts must always see a program. Any thread. */
    int getNumPrograms() override;

    /** currentProgram, limited to what getNumPrograms tells. Any thread. */
    int getCurrentProgram() override;

    /** Loads the file of a row; does nothing out of range, or if the file holds none of our documents. Any
        thread but the audio thread. */
    void setCurrentProgram (int index) override;

    /** A row's name, looked up in its file the first time; presetName out of range. Any thread. Holds
        programListLock also while it reads the file, so others may spin for that long. */
    const juce::String getProgramName (int index) override;

    /** Has no effect. */
    void changeProgramName (int, const juce::String&) override {}

    /** Rebuilds the list from programFolder, with the names that the browser has found so far; keeps the old
        list if that is no folder. Any thread but the audio thread. */
    void refreshProgramList();

    /** What the host is told after every change of the sound that it didn't make. */
    static juce::AudioProcessorListener::ChangeDetails stateChanged();

    juce::String presetName;  ///< through the two functions above; directly by tests alone
    juce::String stateTag;    ///< root tag of this product's documents
    std::atomic<int> currentProgram { 0 };  ///< index of the present preset in the browser's list
    juce::URL factoryContentUrl;         ///< where more presets can be had; empty in this product
    bool factoryContentOffered = false;  ///< whether that is offered
    juce::Array<PresetInfo> programList;
    juce::SpinLock programListLock;  ///< guards programList and presetName
    juce::File programFolder;        ///< root of the list; empty in this product

private:
    /** Repaints the editor from the message thread, wherever it was asked for: the preset's name is in it. */
    class EditorRepaint : public juce::AsyncUpdater
    {
    public:
        explicit EditorRepaint (zb_AudioProcessor& processor) : owner (processor) {}
        ~EditorRepaint() override { cancelPendingUpdate(); }

        void handleAsyncUpdate() override;

    private:
        zb_AudioProcessor& owner;
    };

    EditorRepaint editorRepaint { *this };

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (zb_AudioProcessor)
};
