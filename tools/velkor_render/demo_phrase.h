// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

/** Four bars of drums, bass and electric piano with room for echoes, in stereo, 6 dB below full scale at
    the peak; 8 seconds at 120 beats per minute. The same arguments give the same samples. */
juce::AudioBuffer<float> demoPhrase (double rate, double tempo);
