// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

/** A level that is stored as linear gain and read in decibels. */
class AudioParameterGain : public juce::AudioParameterFloat
{
public:
    using AudioParameterFloat::AudioParameterFloat;

    /** Decibels as "+0.00 dB", with "-INF dB" for -100 dB and below. Any thread. */
    juce::String getText (float normalised, int maximumLength) const override;

    /** The travel of a typed text. The number in it is taken as a linear gain although getText writes
        decibels, and the last three characters, taken for " dB", go unread: "0.50 dB" is a gain of
        0.5, "-6.00 dB" is silence and "0.5" is 0. That the two don't mirror each other must stay.
        Any thread. */
    float getValueForText (const juce::String& text) const override;

private:
    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (AudioParameterGain)
};
