// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

/** What the plots of the manual show, measured on the engine's own records. Each function prints its curves to
    standard output: a line "# NAME" before each curve, a row of numbers a point, two blank lines behind. All work at
    kPlotRate unless they say otherwise, and print the same on every run. */

inline constexpr double kPlotRate = 48000.0;  ///< Hz

/** Starts a curve, under a name that no other one of the same output bears. */
void beginCurve (const char* name);

/** Prints one point. */
void point (double x, double y);
void point (double x, double y, double z);

/** Ends a curve. */
void endCurve();

/** Gain in dB over frequency in hertz, at 1 kHz and Reso 3, of each named response. */
void printFilterMorph();

/** Gain in dB over frequency in hertz of the lowpass at 1 kHz, by Reso. */
void printFilterResonance();

/** Where the filter's peak lies, in hertz, over what Freq shows, at four sample rates. */
void printFilterReach();

/** Output over input of the saturator, by what its control shows. */
void printSaturation();

/** Output over input of the filter's limiter and of the limit on feedback. */
void printLimits();

/** Gain of both sides, as a factor, over what the pan control shows (-10 left to 10 right). */
void printPan();

/** Value over cycles of each wave at a skew of 10, 50 and 90 %. */
void printLfo();

/** The follower's value, 1 being what a steady input comes to, over seconds: a tone from 0.1 s to 1.1 s with an
    attack of 50 ms and a decay of 250 ms on the controls. */
void printEnvelope();

/** Seconds, delay in ms and pitch in semitones of a line whose time, or speed, changes at 0.5 s. */
void printGlide();
