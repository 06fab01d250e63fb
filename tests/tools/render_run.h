// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_audio_formats/juce_audio_formats.h>

#include <gtest/gtest.h>
#include <string>
#include <vector>

/** Arguments of the program. */
using Words = std::vector<std::string>;

/** What a run of the program left behind. */
struct Outcome
{
    int exitCode = -1;
    std::string out, err;
};

/** A sound file as it was read back. */
struct Sound
{
    juce::AudioBuffer<float> samples;
    double rate = 0.0;
    int bits = 0;
    bool isFloat = false;
    std::string format;  ///< by the reader that knew it, not by the extension

    int length() const { return samples.getNumSamples(); }
    float at (int channel, int frame) const { return samples.getSample (channel, frame); }

    /** The frames of a channel that are above a level, and no others. */
    std::vector<int> framesAbove (float level, int channel) const;
};

/** Runs velkor-render in a temporary folder, with a home and a folder for temporary files that are made
    for the test. */
class RenderTest : public ::testing::Test
{
protected:
    RenderTest();
    ~RenderTest() override;

    /** Runs the program with these arguments; names of files are relative to the folder. setUp is shell
        code to run before it, in the same shell. */
    Outcome run (const Words& arguments, const std::string& setUp = {}) const;

    /** Runs it and expects it to succeed in silence. */
    Outcome render (const Words& arguments) const;

    /** Saves the patch that these arguments make as p.zbpreset, and reads the settings that are reported. */
    juce::var savedSettings (const Words& arguments) const;

    /** That two of those hold the same 57 values, cables and routes; the name may differ. */
    static void expectSamePatch (const juce::var& got, const juce::var& want);

    juce::File file (const std::string& name) const { return folder.getChildFile (name); }

    /** Writes a WAV file of floating point, and the folders on its way. */
    void write (const std::string& name, const juce::AudioBuffer<float>& samples,
                double rate = 44100.0) const;

    /** A test failure, and an empty sound, if there is no such file. */
    Sound read (const std::string& name) const;

    /** All that is in the folder, by relative path, hidden files too. */
    juce::StringArray content() const;

    juce::File folder, home, temporaries;
};

/** Silence with one frame per channel that isn't. */
juce::AudioBuffer<float> impulses (int length, int frame, float left, float right);

/** The same sine on both channels. */
juce::AudioBuffer<float> sine (double hertz, double rate, int length, float level);

/** a, then b. */
Words operator+ (Words a, const Words& b);

/** Leaves nothing of a patch: no cable, no route, no dry sound. Both outputs are hard left, and what is
    written is floating point. */
Words emptyPatch();

/** Input L through Delay 1, without feedback and multiplier, to the left side; nothing else. */
Words oneDelay();
