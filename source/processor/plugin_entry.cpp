// SPDX-License-Identifier: AGPL-3.0-or-later
#include "processor/Lv2AudioProcessor.h"

juce::AudioProcessor* JUCE_CALLTYPE createPluginFilter()
{
    if (juce::PluginHostType::getPluginLoadedAs() == juce::AudioProcessor::wrapperType_LV2)
        return new Lv2AudioProcessor();

    return new VelkorAudioProcessor();
}
