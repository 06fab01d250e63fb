// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

/** What the plug-ins of this frame have in common: the name of the present sound and the program calls. */
class zb_AudioProcessor : public juce::AudioProcessor
{
public:
    explicit zb_AudioProcessor (const BusesProperties& buses);

    /** Hosts always see at least one program; here exactly one, named presetName. Any thread. */
    int getNumPrograms() override { return 1; }
    int getCurrentProgram() override { return 0; }
    void setCurrentProgram (int) override {}
    const juce::String getProgramName (int) override { return presetName; }
    void changeProgramName (int, const juce::String&) override {}

    juce::String presetName;  ///< the display name of the present sound

private:
    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (zb_AudioProcessor)
};
