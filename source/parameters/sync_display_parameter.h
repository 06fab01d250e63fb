// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <functional>

/** A time or rate that reads as a beat length while its sync switch is on. Only the text follows the
    switch: the stored value stays in milliseconds or hertz, and its place on the travel picks the
    beat, the same one that the engine plays. */
class SyncDisplayParameter : public juce::AudioParameterFloat
{
public:
    /** The free-mode text rule is taken from the attributes, which may have none. syncParameter
        stays empty until somebody sets it. */
    SyncDisplayParameter (const juce::ParameterID&, const juce::String& name,
                          juce::NormalisableRange<float>, float defaultValue, bool shouldInvertSync,
                          const juce::AudioParameterFloatAttributes&);

    /** The beat's label while the switch is on, else the free-mode text. Any thread: one atomic load
        of the switch, no lock. */
    juce::String getText (float normalised, int maximumLength) const override;

    /** Names of the beat lengths, in step with gBeatMults. */
    static const juce::StringArray kBeatLabels;

    /** Free-mode text from a value in real units and a maximum length; may be empty. */
    std::function<juce::String (float, int)> stringFunction;

    /** The switch to follow, owned by the store. Set once, before the host can ask for a text. */
    juce::AudioParameterBool* syncParameter = nullptr;

    /** True if the travel runs from the longest beat to the shortest, as a rate's does. */
    bool invertSync;

private:
    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (SyncDisplayParameter)
};
