// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

class VelkorAudioProcessor;
struct PatchEdits;

/** Makes the user's changes: pulls cables and routes, sets the parameters (switches first, so that it is
    known which times are synced), then makes cables and routes. Fails by usage at the first one that names
    something unknown or asks for a value that can't be. Not while a block runs. */
void applyEdits (VelkorAudioProcessor& processor, const PatchEdits& edits);

/** Breaks all connections of the signal matrix. */
void clearSignalMatrix (VelkorAudioProcessor& processor);

/** Removes all modulation routes. */
void clearModMatrix (VelkorAudioProcessor& processor);

/** The connections that are made, as "Delay 1 > Output 1". */
juce::StringArray signalConnections (const VelkorAudioProcessor& processor);

/** The routes that are made, as "LFO 1 > Pan 1". */
juce::StringArray modRoutes (const VelkorAudioProcessor& processor);
