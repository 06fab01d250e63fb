// SPDX-License-Identifier: AGPL-3.0-or-later
#include "processor/NoticingAudioProcessor.h"

#include <utility>

/** The processor into which the host loads a state on this thread; nullptr for none. */
static thread_local const NoticingAudioProcessor* loadingProcessor = nullptr;

/** Marks the host's load of a state, as long as it lives. */
class Loading
{
public:
    explicit Loading (const NoticingAudioProcessor& processor)
        : before (std::exchange (loadingProcessor, &processor))
    {
    }

    ~Loading() { loadingProcessor = before; }

    Loading (const Loading&) = delete;
    Loading& operator= (const Loading&) = delete;

private:
    const NoticingAudioProcessor* const before;
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
    return loadingProcessor == this || blockThread == juce::Thread::getCurrentThreadId();
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
