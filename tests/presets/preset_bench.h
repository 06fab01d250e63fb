// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "support/duel.h"

#include <cstdint>
#include <vector>

/** What the tests of presets share: sounds to send in, an instance that plays a preset, and measures of what
    comes out. Everything runs at one sample rate and is the same on every run. */

inline constexpr double kRate = 44100.0;  ///< Hz

/** A stretch of stereo sound. */
struct Sound
{
    std::vector<float> left, right;

    int frames() const { return static_cast<int> (left.size()); }
};

/** Frames in a time. */
int framesIn (double seconds);

Sound silence (double seconds);

/** One sound after the other. */
Sound operator+ (const Sound& first, const Sound& second);

/** Four seconds of struck chords with noise in both channels, not quite alike, peaking at -6 dBFS. */
Sound bandPhrase();

/** A soft click of 1 ms, 10 ms into a silence. */
Sound click (double seconds);

Sound sine (double hertz, double seconds, float level);

/** White noise, the same in both channels. */
Sound noise (double seconds, float level = 0.25f);

double decibels (double ratio);

/** Root mean square from one time to another, in seconds. */
double rms (const std::vector<float>& channel, double from, double to);

/** Of both channels together. */
double rms (const Sound& sound, double from, double to);

double peak (const Sound& sound);

/** An instance of the plug-in with a preset in it, as the repository ships it. Message thread. */
class PresetBench
{
public:
    explicit PresetBench (const juce::File& preset, double tempo = 120.0);
    ~PresetBench();

    /** Sets a parameter in its own unit, by its id. */
    void set (const char* id, float value);

    /** MIDI for the next block that plays. */
    void note (int number, bool on);
    void wheel (int value);

    /** Plays on, through blocks of 256 frames. */
    Sound play (const Sound& input);

    VelkorAudioProcessor processor;

private:
    FakePlayHead playHead;  ///< a transport that runs, in step with what is played
    std::int64_t frame = 0;
    juce::MidiBuffer events;
};

/** The preset files in the order of their numbers. */
std::vector<juce::File> factoryFiles();
