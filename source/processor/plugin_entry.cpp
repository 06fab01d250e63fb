// SPDX-License-Identifier: AGPL-3.0-or-later
#include "processor/Lv2AudioProcessor.h"
#include "processor/NoticingAudioProcessor.h"

juce::AudioProcessor* JUCE_CALLTYPE createPluginFilter()
{
    switch (juce::PluginHostType::getPluginLoadedAs())
    {
    case juce::AudioProcessor::wrapperType_LV2:
        return new Lv2AudioProcessor();
    case juce::AudioProcessor::wrapperType_VST3:
        return new NoticingAudioProcessor (Faders::ofFormat);
    default:
        return new VelkorAudioProcessor();
    }
}
