// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

// Value to text, one function for each way of reading a parameter. They take a value in real units
// and the host's wish for a maximum length, which none of them heeds. Integers are rounded to the
// nearest, ties to even; what is scaled is scaled in single precision. No state, any thread, but they
// allocate the text: not for the audio thread.

/** Milliseconds as "500 ms", from 1000 on as "1.00 s". 999.6 still reads "1000 ms". */
juce::String delayTimeText (float milliseconds, int maximumLength);

/** A speed factor as "x1.00". */
juce::String timesText (float factor, int maximumLength);

/** A signed speed offset as "+0.50"; 0 counts as positive. */
juce::String signedRatioText (float ratio, int maximumLength);

/** "On" or "Off". */
juce::String onOffText (bool isOn, int maximumLength);

/** "Reverse" or "Forward". */
juce::String directionText (bool isReverse, int maximumLength);

/** "Inverted" or "Normal". */
juce::String polarityText (bool isInverted, int maximumLength);

/** Hertz as "1.00 Hz". */
juce::String lfoRateText (float hertz, int maximumLength);

/** A signed offset in hertz as "+2.5 Hz"; 0 counts as positive. */
juce::String signedHertzText (float hertz, int maximumLength);

/** 0 to 1 as "50%". */
juce::String percentText (float proportion, int maximumLength);

/** -1 to 1 as "+50%". The sign is the value's own, so a tiny negative value reads "0%" where 0 and a
    tiny positive one read "+0%". */
juce::String signedPercentText (float proportion, int maximumLength);

/** Hertz as "440 Hz", from 1000 on as "5.31 kHz". 999.9 still reads "1000 Hz". */
juce::String frequencyText (float hertz, int maximumLength);

/** The bare value as "0.00". */
juce::String twoDecimalsText (float value, int maximumLength);

/** 0 to 1 as "0.0" to "11.0". */
juce::String saturationText (float drive, int maximumLength);

/** 0 to 1 as "L 10" over "Center" to "R 10". */
juce::String panText (float position, int maximumLength);

/** Seconds, as the envelope parameters are stored, as "250 ms". */
juce::String envTimeText (float seconds, int maximumLength);

/** 0 to 1 as the filter response, or pair of responses, that the morph stands at: "Notch" to
    "Highpass". */
juce::String filterModeText (float mode, int maximumLength);

/** The number that a typed text begins with. Text without one gives 0, "nan" too: a host must not get what is no number.
    "inf" and what is too large give an infinity, which the ranges clip. */
float numberOf (const juce::String& text);
