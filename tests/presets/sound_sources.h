// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include <vector>

/** Two channels at kSoundRate. */
using Sound = juce::AudioBuffer<float>;

inline constexpr double kSoundRate = 48000.0;  // Hz: the loudness filters are given for it
inline constexpr double kPhraseSeconds = 6.0;
inline constexpr double kSourceTempo = 105.0;  // beats a minute

/** Frames in so many seconds. */
int framesIn (double seconds);

Sound silence (double seconds);

/** The sound, then silence. */
Sound followedBySilence (const Sound& sound, double seconds);

struct Source
{
    const char* name;
    Sound sound;
};

/** Drum loop, pluck, chords, pad and voice: five phrases of kPhraseSeconds at -18 LUFS, the same on
    every machine. Built once. */
const std::vector<Source>& soundSources();

/** One tone on both channels, faded in and out over 10 ms. */
Sound tone (double hertz, double seconds, double peak);

/** Tones half an octave apart from 80 Hz to 7 kHz, all alike: what moves in it is the preset's
    doing. */
Sound toneCluster (double seconds);

/** Equal energy per octave, the same on both channels, at an RMS of 0.1. */
Sound pinkNoise (double seconds);

/** A 4 ms burst of noise at the start, then silence; sides: 0 left, 1 right, 2 both. */
Sound burst (double seconds, int side, double peak = 0.7);

/** Plucks of one pitch, one each so many seconds, with these peaks. */
Sound plucks (const std::vector<double>& peaks, double every);
