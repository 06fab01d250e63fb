// SPDX-License-Identifier: AGPL-3.0-or-later
#include "processor/NoticingAudioProcessor.h"

/** Marks this thread as the one on which the host loads a state. */
class NoticingAudioProcessor::Loading
{
public:
    explicit Loading (NoticingAudioProcessor& p)
        : processor (p), before (p.loadThread.exchange (juce::Thread::getCurrentThreadId()))
    {
    }

    ~Loading() { processor.loadThread = before; }

    Loading (const Loading&) = delete;
    Loading& operator= (const Loading&) = delete;

private:
    NoticingAudioProcessor& processor;
    const juce::Thread::ThreadID before;
};

NoticingAudioProcessor::NoticingAudioProcessor (Faders f) : faders (f)
{
    addListener (this);  // now, so that what the construction loads gives no notice
}

NoticingAudioProcessor::~NoticingAudioProcessor()
{
    removeListener (this);
}

void NoticingAudioProcessor::setStateInformation (const void* data, int sizeInBytes)
{
    const Loading loading (*this);
    VelkorAudioProcessor::setStateInformation (data, sizeInBytes);
}

void NoticingAudioProcessor::setCurrentProgram (int index)
{
    const Loading loading (*this);
    VelkorAudioProcessor::setCurrentProgram (index);
}

bool NoticingAudioProcessor::isHostsWork() const noexcept
{
    const auto thread = juce::Thread::getCurrentThreadId();
    return thread == blockThread || thread == loadThread;
}

void NoticingAudioProcessor::notice()
{
    updateHostDisplay (Details {}.withNonParameterStateChanged (true));
}

void NoticingAudioProcessor::audioProcessorChanged (juce::AudioProcessor*, const Details& details)
{
    if (! details.nonParameterStateChanged && ! isHostsWork())  // the first: it's ours
        notice();
}

void NoticingAudioProcessor::audioProcessorParameterChanged (juce::AudioProcessor*, int, float)
{
    if (faders == Faders::ofFormat || isHostsWork())
        return;

    if (numGestures > 0)
        changedInGesture = true;
    else
        notice();
}

void NoticingAudioProcessor::audioProcessorParameterChangeGestureBegin (juce::AudioProcessor*, int)
{
    ++numGestures;
}

void NoticingAudioProcessor::audioProcessorParameterChangeGestureEnd (juce::AudioProcessor*, int)
{
    // One notice for the whole move: some hosts save the state for their history then.
    if (--numGestures == 0 && changedInGesture.exchange (false))
        notice();
}
