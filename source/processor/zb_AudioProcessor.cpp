// SPDX-License-Identifier: AGPL-3.0-or-later
#include "processor/zb_AudioProcessor.h"

zb_AudioProcessor::zb_AudioProcessor (const BusesProperties& buses) : juce::AudioProcessor (buses)
{
}
