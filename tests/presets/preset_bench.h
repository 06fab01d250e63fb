// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "processor/VelkorAudioProcessor.h"

#include <cstdint>
#include <string>
#include <vector>

/** What the tests of the factory bank share: sounds to send in, an instance that plays a preset, and
    measures of what comes out. Everything runs at one sample rate and is the same on every run. */

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

/** Four seconds of drums, bass and chords in both channels, not quite alike, peaking at -6 dBFS. */
Sound bandPhrase();

/** A soft click of 1 ms, 10 ms into a silence. */
Sound click (double seconds);

/** When the click stands highest. */
inline constexpr double kClickSeconds = 0.0105;

Sound sine (double hertz, double seconds, float level = 0.25f);

/** White noise, the same in both channels. */
Sound noise (double seconds, float level = 0.25f);

double decibels (double ratio);

/** Root mean square from one time to another, in seconds. */
double rms (const std::vector<float>& channel, double from, double to);

/** Of both channels together. */
double rms (const Sound& sound, double from, double to);

double peak (const Sound& sound);

/** Level above a frequency against the level of everything, in dB, from one time to another. */
double brightness (const std::vector<float>& channel, double from, double to,
                   double hertz = 2000.0);

/** Amplitude of one frequency under a raised-cosine window, from one time to another. */
double amplitudeAt (const std::vector<float>& channel, double hertz, double from, double to);

/** When repeats of a click begin: the middles, in seconds, of everything that sticks out by itself and is at
    most 36 dB below the loudest. */
std::vector<double> onsets (const std::vector<float>& channel);

/** Likeness of n frames of a from one place and of b from another: 1 alike but for the level, 0 unrelated. */
double correlation (const std::vector<float>& a, int startA, const std::vector<float>& b,
                    int startB, int n);

/** A transport that runs, in step with what its owner plays. */
class RunningPlayHead : public juce::AudioPlayHead
{
public:
    juce::Optional<PositionInfo> getPosition() const override;

    double tempo = 120.0;    ///< beats per minute
    std::int64_t frame = 0;  ///< since the start
};

/** An instance of the plug-in with a preset in it, as the repository ships it. Message thread. */
class PresetBench
{
public:
    explicit PresetBench (int number, double tempo = 120.0);
    explicit PresetBench (const juce::File& preset, double tempo = 120.0);
    ~PresetBench();

    /** Loads another factory preset, or any other, over what is playing. */
    void load (int number);
    void load (const juce::File& preset);

    /** Sets a parameter in its own unit, by its id. */
    void set (const char* id, float value);

    /** MIDI for the next block that plays. */
    void note (int number, bool on);
    void wheel (int value);

    /** Plays on, through blocks of 256 frames. */
    Sound play (const Sound& input);

    VelkorAudioProcessor processor;

private:
    RunningPlayHead playHead;
    juce::MidiBuffer events;
};

/** Whether the first repeats of a click come at these distances from it, in seconds. */
void expectRepeats (const std::vector<float>& channel, const std::vector<double>& expected,
                    const std::string& what);

inline constexpr double kTempos[] = { 90.0, 120.0, 147.0 };  ///< beats per minute

/** The preset files in the order of their numbers. */
std::vector<juce::File> factoryFiles();
