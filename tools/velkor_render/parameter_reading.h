// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <string>

/** What a parameter's raw value counts, which is not always what its text shows. */
enum class RawUnit
{
    milliseconds,
    seconds,
    hertz,
    gain,        ///< linear, shown in decibels
    factor,      ///< shown as "x1.00" or with a sign
    proportion,  ///< 0 to 1 or -1 to 1, most of them shown in percent
    number,
    toggle,
    choice
};

/** The unit of a parameter's raw value. Switches count as 0 and 1, choices by their index. */
RawUnit rawUnitOf (const juce::RangedAudioParameter& parameter);

/** A unit, for people; empty for what is a mere number. */
const char* unitName (RawUnit unit);

/** The words of a switch or a choice, by raw value; empty for other parameters. */
juce::StringArray wordsOf (const juce::RangedAudioParameter& parameter);

/** The raw value that a text means for a parameter: a plain number is that value; a number with a unit is
    converted; other texts are those that the parameter shows, and stand for the middle of the stretch that
    shows them (or for the end of the travel, if that shows them too). A time or rate knows beat lengths
    only while its sync is on. Fails by usage if the text has no meaning here or lies out of range. */
float readParameterText (const juce::RangedAudioParameter& parameter, const std::string& text);
