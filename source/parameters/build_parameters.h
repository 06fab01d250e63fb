// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

/** Names of the delay multipliers 1, 2, 4 and 8, by choice index. */
extern const juce::StringArray delayMultiplierNames;

/** Names of the LFO waves, by choice index; in step with the generators of the engine. */
extern const juce::StringArray lfoWaveNames;

/** All parameters, made in the order of their numbers, which is the order that the host sees. The
    time and rate parameters don't follow their sync switches yet: see linkSyncParameters. Any thread but the
    audio thread: it allocates. */
juce::AudioProcessorValueTreeState::ParameterLayout buildParameters();

/** Joins the four time and rate parameters of a store to their sync switches. A pair that the store
    lacks, or that is of another class, stays apart. Call once, right after the store is made, on the same
    thread: the pointers are read by getText on any. */
void linkSyncParameters (juce::AudioProcessorValueTreeState& store);
