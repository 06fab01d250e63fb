// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "sound_sources.h"

#include <span>
#include <vector>

/** Integrated loudness in LUFS after ITU-R BS.1770-4: K-weighting, blocks of 400 ms, both gates.
    -120 if all is below the absolute gate. Without gates, of a part: momentary (). */
double loudness (const Sound& sound);
double loudness (const Sound& sound, int start, int n);

/** Peak in dBTP between the samples too: 4 times oversampled, as BS.1770-4 has it. */
double truePeak (const Sound& sound);

/** Runs of three and more samples at full scale, of either channel. */
int clippedRuns (const Sound& sound);

/** Left minus right, K-weighted energy in dB. */
double balance (const Sound& sound, int start, int n);

/** What the loudness loses when both channels play the mean of the two: 0 or less. */
double monoLoss (const Sound& sound, int start, int n);

/** RMS of both channels in dBFS, -150 at the least. */
double levelAt (const Sound& sound, double seconds, double length);
double levelAt (const Sound& sound, int channel, double seconds, double length);

/** Seconds after from until windows of 0.2 s stay so many dB below the reference in dBFS; the
    sound's end if never. */
double secondsUntilBelow (const Sound& sound, double from, double reference, double decibels);

/** Power per FFT bin (Hann window, 4096 frames, mean of both channels or one of them) around a
    moment. */
std::vector<double> spectrumAt (const Sound& sound, double seconds, int channel = -1,
                                int size = 4096);

/** Energy-weighted mean of the log frequency from 40 Hz to 16 kHz, in hertz. */
double centroid (std::span<const double> spectrum);

/** The strongest frequency in a range, between bins by a parabola. */
double peakHertz (std::span<const double> spectrum, double low, double high);

/** Power in a band, dB. */
double bandLevel (std::span<const double> spectrum, double low, double high);

/** Frequency of a tone, by its phase in steps of 10 ms against a reference near it. */
std::vector<double> pitchTrack (const Sound& sound, int channel, double hertz, double start,
                                double seconds);

double semitones (double ratio);
