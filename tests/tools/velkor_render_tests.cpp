// SPDX-License-Identifier: AGPL-3.0-or-later
#include "render_run.h"

#include <cmath>

// What velkor-render makes of files: formats, rates and folders.

namespace
{
const Words kDryOnly = { "--disconnect", "all",           "--set",  "Dry Level=1",
                         "--set",        "Input Level=1", "--tail", "0" };

/** Noise whose values are whole 16-bit steps, so that all formats hold it exactly. */
juce::AudioBuffer<float> gridNoise (int length)
{
    juce::Random random (7);
    juce::AudioBuffer<float> samples (2, length);

    for (int channel = 0; channel < 2; ++channel)
        for (int i = 0; i < length; ++i)
            samples.setSample (channel, i,
                               static_cast<float> (random.nextInt ({ -20000, 20001 })) / 32768.0f);

    return samples;
}

void expectSame (const Sound& got, const juce::AudioBuffer<float>& want, float tolerance)
{
    ASSERT_EQ (got.samples.getNumChannels(), 2);
    ASSERT_EQ (got.length(), want.getNumSamples());

    for (int channel = 0; channel < 2; ++channel)
        for (int i = 0; i < got.length(); ++i)
            ASSERT_NEAR (got.at (channel, i), want.getSample (channel, i), tolerance)
                << "channel " << channel << ", frame " << i;
}
}  // namespace

class RenderFiles : public RenderTest
{
};

TEST_F (RenderFiles, EveryFormatIsWrittenByItsExtensionAndReadByItsContent)
{
    struct Case
    {
        const char *name, *bits, *format;
    };

    const auto noise = gridNoise (3000);
    write ("in.wav", noise, 48000.0);

    for (const auto& c :
         { Case { "o.WAV", "16", "WAV file" }, Case { "p.wav", "32", "WAV file" },
           Case { "o.aif", "24", "AIFF file" }, Case { "o.flac", "24", "FLAC file" } })
    {
        SCOPED_TRACE (c.name);
        render (kDryOnly + Words { "--bits", c.bits, "in.wav", c.name });
        const auto sound = read (c.name);
        EXPECT_EQ (sound.format, c.format);
        EXPECT_EQ (std::to_string (sound.bits), c.bits);
        EXPECT_EQ (sound.isFloat, sound.bits == 32);
        EXPECT_EQ (sound.rate, 48000.0);
        expectSame (sound, noise, 2.5e-7f);  // one step of 24 bits each way: unity isn't exact

        ASSERT_TRUE (file (c.name).copyFileTo (file ("misnamed.wav")));
        render (kDryOnly + Words { "--bits", "16", "misnamed.wav", "back.wav" });
        expectSame (read ("back.wav"), noise, 0.0f);
    }
}

TEST_F (RenderFiles, MonoGoesToBothSidesAndValuesToTheNearestStepInRange)
{
    const float steps[] = { 100.7f, -100.7f, 100.3f, -100.3f, 40000.0f, -40000.0f };
    const float want[] = { 101.0f, -101.0f, 100.0f, -100.0f, 32767.0f, -32768.0f };
    juce::AudioBuffer<float> mono (1, 6);

    for (int i = 0; i < 6; ++i)
        mono.setSample (0, i, steps[i] / 32768.0f);

    write ("mono.wav", mono);
    render (kDryOnly + Words { "--bits", "16", "mono.wav", "o.wav" });
    const auto sound = read ("o.wav");
    ASSERT_EQ (sound.length(), 6);

    for (int i = 0; i < 6; ++i)
        for (int channel = 0; channel < 2; ++channel)
            EXPECT_NEAR (sound.at (channel, i) * 32768.0f, want[i], 0.01f) << i;
}

TEST_F (RenderFiles, RateConvertsWithoutDelayOrLossOrAlias)
{
    write ("in.wav", sine (1000.0, 44100.0, 44100, 0.5f));
    render (kDryOnly + Words { "--rate", "96000", "in.wav", "up.wav" });
    const auto up = read ("up.wav");
    EXPECT_EQ (up.rate, 96000.0);
    ASSERT_EQ (up.length(), 96000);
    const auto want = sine (1000.0, 96000.0, 96000, 0.5f);

    for (int i = 1000; i < 95000; ++i)  // the ends have the file's sudden start and end in them
        ASSERT_NEAR (up.at (0, i), want.getSample (0, i), 1e-4f) << i;

    // What doesn't fit under the lower rate would come back at 14100 Hz.
    const auto levelOf = [this] (double hertz)
    {
        write ("high.wav", sine (hertz, 96000.0, 96000, 0.5f), 96000.0);
        render (kDryOnly + Words { "--rate", "44100", "high.wav", "down.wav" });
        return juce::Decibels::gainToDecibels (
            read ("down.wav").samples.getRMSLevel (0, 2000, 40000), -200.0f);
    };

    EXPECT_LT (levelOf (30000.0), -80.0f);
    EXPECT_NEAR (levelOf (1000.0), -9.03f, 0.02f);
}

TEST_F (RenderFiles, SeveralInputsGoToAFolderAndDoNotTouchEachOther)
{
    write ("a.wav", impulses (4800, 10, 0.5f, 0.5f), 96000.0);
    write ("b.wav", impulses (2205, 10, 0.5f, 0.5f));
    const Words longest = {
        "--set", "Delay 1 Time=1000",     "--set", "Delay 1 Multiplier=x8",
        "--set", "Delay 1 Feedback=0 dB", "--set", "Delay 1 Fine=1.5",
    };
    render (longest + Words { "--format", "flac", "a.wav", "b.wav", "made/of/late/" });
    EXPECT_EQ (read ("made/of/late/a.flac").rate, 96000.0);
    EXPECT_EQ (read ("made/of/late/b.flac").format, "FLAC file");

    // The 96 kHz file before it leaves no trace in the second.
    render (longest + Words { "b.wav", "alone.flac" });
    EXPECT_TRUE (file ("alone.flac").hasIdenticalContentTo (file ("made/of/late/b.flac")));
}
