// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <atomic>
#include <memory>

/** The parameters as a preset or a session stores them: their order, their texts, and what the
    parameter store does not know.

    The store has all that in its tree. But that tree and the undo history belong to the message
    thread: an editor reads and changes both without a lock, while hosts load and save on any
    thread. So this class keeps a second tree, under its own lock, which follows the store's. */
class StoredParameters : private juce::ValueTree::Listener
{
public:
    /** Both outlive this object. Any thread but the audio thread. */
    StoredParameters (juce::AudioProcessorValueTreeState& storeToUse,
                      juce::UndoManager& historyToClear);
    ~StoredParameters() override;

    /** Sets the parameters to those of an element, and clears the undo history. On the message
        thread the store's tree is replaced and the history is empty at once. On other threads
        a message clears the history. Any thread but the audio thread. */
    void load (const juce::XmlElement& parameters);

    /** A copy of the tree, with the present values in it. A value that is no number, which a
        host can set, is the default in the copy. Any thread but the audio thread. */
    juce::ValueTree save();

    /** Clears the history now if a load on another thread has asked for it. Message thread. */
    void clearHistoryIfAsked();

private:
    /** Owned by posted messages too: these parameters may be gone when a message arrives. */
    struct Link
    {
        juce::CriticalSection lock;  ///< guards target
        StoredParameters* target = nullptr;
    };

    void valueTreePropertyChanged (juce::ValueTree& param, const juce::Identifier& name) override;
    void valueTreeRedirected (juce::ValueTree& replaced) override;

    juce::ValueTree presentTree();
    void takePresentValues();
    void setParameters (const juce::ValueTree& values);
    void askForClearing();

    juce::AudioProcessorValueTreeState& store;
    juce::UndoManager& history;
    juce::CriticalSection lock;  ///< guards tree; nothing is called while it is held
    juce::ValueTree tree;        ///< shared with nobody: copies go out
    std::atomic<bool> mustClear { false };
    const std::shared_ptr<Link> link = std::make_shared<Link>();

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (StoredParameters)
};
