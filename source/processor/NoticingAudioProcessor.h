// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "processor/VelkorAudioProcessor.h"

#include <atomic>

/** Whether a host hears of moved faders by the format itself, or by a notice. */
enum class Faders
{
    ofFormat,
    byNotice
};

/** The processor in a format whose hosts ask for unsaved work by a notice of their own: behind each
    notice of the core it sends one that the state has changed. It doesn't for what the host does
    itself, which is loading a state, and setting parameters in its block. */
class NoticingAudioProcessor : public VelkorAudioProcessor, private juce::AudioProcessorListener
{
public:
    explicit NoticingAudioProcessor (Faders faders);
    ~NoticingAudioProcessor() override;

    void setStateInformation (const void* data, int sizeInBytes) override;
    void setCurrentProgram (int index) override;

protected:
    /** The thread on which the host is at work, nullptr for none. Lock-free. */
    std::atomic<juce::Thread::ThreadID> blockThread { nullptr };

private:
    using Details = juce::AudioProcessor::ChangeDetails;

    void audioProcessorChanged (juce::AudioProcessor*, const Details& details) override;
    void audioProcessorParameterChanged (juce::AudioProcessor*, int, float) override;
    void audioProcessorParameterChangeGestureBegin (juce::AudioProcessor*, int) override;
    void audioProcessorParameterChangeGestureEnd (juce::AudioProcessor*, int) override;
    bool isHostsWork() const noexcept;
    void notice();

    const Faders faders;
    std::atomic<int> numGestures { 0 };
    std::atomic<bool> changedInGesture { false };

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (NoticingAudioProcessor)
};
