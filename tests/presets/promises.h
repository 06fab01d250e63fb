// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "preset_run.h"

#include <functional>

/** What a check found, and whether it is as promised. */
struct Verdict
{
    bool holds;
    juce::String found;
};

using Check = std::function<Verdict (const Preset&)>;

/** All of them hold; what is found is joined. */
Check allOf (std::vector<Check> checks);

/** The same with a stored value set first. */
Check given (const char* parameter, double value, Check check);

enum Side
{
    left,
    right,
    either
};

// All of these listen to the wet sound alone, but where they say otherwise.

struct Echo
{
    double place;  ///< beats, or milliseconds
    Side side;
};

/** A burst comes back at these beats, to 5 ms, at 60, 105 and 174 beats a minute; from the side
    it is named for,
    at least 3 dB louder than on the other. */
Check echoesOnBeats (std::vector<Echo> echoes);

/** The same in milliseconds. */
Check echoesAt (std::vector<Echo> echoes);

/** From so many seconds after a burst on, nothing is left within 50 dB of the loudest echo. */
Check silentAfter (double seconds);

/** A tone's pitch swings so many cents, on one side at least, in every second of thirty. */
Check pitchSways (double low, double high);

/** Steady tones move in colour or place in every second of thirty: balance by so many dB, or
    centroid by semitones.
    The dry sound is left in. */
Check movesEverySecond (double decibels, double semitones);

/** The colour of steady tones travels so many semitones, on both sides if they are alike. */
Check colourTravels (double low, double high, Playing how = {});

/** A band of noise is so many dB above the input's. */
Check gainOfBand (double lowHertz, double highHertz, double low, double high);

/** A tone's level swings at least so many dB, at such a rate (hertz; 0: any). */
Check levelSwings (double decibels, double hertz = 0.0);

/** A tone goes to both sides by at least so many dB, its loudness steady to so many. */
Check pansAcross (double decibels, double steady);

/** Loud plucks have so many dB more above 1 kHz, against what is below, than ones 17 dB softer,
    and gain so many dB
    more; the soft ones are no more than so many dB below the dry sound. */
Check touch (double brighter, double louder, double softest);

/** After a burst it rings at these pitches, to so many cents, and for so many seconds to -30 dB. */
Check ringsAt (std::vector<double> hertz, double cents, double low, double high);
Check ringsFor (double low, double high);

/** A tone gains harmonics of so many dB below itself, or more. */
Check harmonics (double decibels);

/** A tone's median pitch is moved by so many semitones, to two thirds of one; and its pitch
    travels so many. */
Check shifts (double leftSemitones, double rightSemitones);
Check pitchTravels (double low, double high);

/** Echoes while a phrase plays are so many dB below those after it. */
Check ducks (double low, double high);

/** Seconds until the phrase's tail is 60 dB down. */
Check tailLasts (double low, double high);

/** The sides of noise differ: correlation at most this. */
Check wide (double correlation);

/** MIDI: see the table. */
Check gateOpens (double low, double high);
Check wheelOpens (double semitones);
Check keysRing (std::vector<int> notes, double cents);
Check keysSetTime();
Check noteIsHeld();

/** Loaded over a preset that went forwards it plays the last sound backwards. */
Check turnsBackwards();

/** Each cycle of so many beats swells by at least so many dB. */
Check swells (double beats, double decibels);

/** A steady loud phrase gets louder and brighter as it goes on. */
Check rises (double decibels, double semitones);
