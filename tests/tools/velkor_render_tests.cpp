// SPDX-License-Identifier: AGPL-3.0-or-later
#include "render_run.h"

#include <algorithm>
#include <cmath>

// What velkor-render makes of files: formats, rates, lengths and reports.

namespace
{
const Words kDryOnly = { "--disconnect", "all",           "--set",  "Dry Level=1",
                         "--set",        "Input Level=1", "--tail", "0" };

/** Noise whose values are whole 16-bit steps, so that all formats hold it exactly. */
juce::AudioBuffer<float> gridNoise (int channels, int length)
{
    juce::Random random (7);
    juce::AudioBuffer<float> samples (channels, length);

    for (int channel = 0; channel < channels; ++channel)
        for (int i = 0; i < length; ++i)
            samples.setSample (channel, i,
                               static_cast<float> (random.nextInt ({ -20000, 20001 })) / 32768.0f);

    return samples;
}

/** Mono is expected on both sides. */
void expectSame (const Sound& got, const juce::AudioBuffer<float>& want, float tolerance)
{
    ASSERT_EQ (got.samples.getNumChannels(), 2);
    ASSERT_EQ (got.length(), want.getNumSamples());

    for (int channel = 0; channel < 2; ++channel)
        for (int i = 0; i < got.length(); ++i)
            ASSERT_NEAR (got.at (channel, i),
                         want.getSample (std::min (channel, want.getNumChannels() - 1), i),
                         tolerance)
                << "channel " << channel << ", frame " << i;
}
}  // namespace

class RenderFiles : public RenderTest
{
};

TEST_F (RenderFiles, EveryInputFormatComesThroughUnharmed)
{
    const auto noise = gridNoise (2, 5000);
    write ("a.wav", noise, 44100.0, 16);
    write ("b.aiff", noise, 44100.0, 24);
    write ("c.flac", noise, 44100.0, 24);
    write ("d.wav", noise, 44100.0, 32);
    ASSERT_TRUE (file ("c.flac").moveFileTo (file ("misnamed.wav")));

    for (const auto* name : { "a.wav", "b.aiff", "misnamed.wav", "d.wav" })
    {
        SCOPED_TRACE (name);
        render (kDryOnly + Words { "--bits", "16", name, "o.wav" });
        expectSame (read ("o.wav"), noise, 0.0f);
    }

    const auto mono = gridNoise (1, 4000);
    write ("mono.flac", mono, 44100.0, 16);
    render (kDryOnly + Words { "--bits", "16", "mono.flac", "o.wav" });
    expectSame (read ("o.wav"), mono, 0.0f);

    const auto smooth = sine (300.0, 44100.0, 20000, 0.5f);  // the one format that loses something
    write ("e.ogg", smooth, 44100.0, 16);
    render (kDryOnly + Words { "e.ogg", "o.wav" });
    expectSame (read ("o.wav"), smooth, 0.02f);
}

TEST_F (RenderFiles, TheExtensionDecidesTheOutputFormatAndBitsItsWordLength)
{
    struct Case
    {
        const char *name, *bits, *format;
        int wantBits;
    };

    const auto noise = gridNoise (2, 3000);
    write ("in.wav", noise, 48000.0, 16);

    for (const auto& c :
         { Case { "o.WAV", "24", "WAV file", 24 }, Case { "p.wav", "32", "WAV file", 32 },
           Case { "o.aif", "16", "AIFF file", 16 }, Case { "p.flac", "24", "FLAC file", 24 } })
    {
        SCOPED_TRACE (c.name);
        render (kDryOnly + Words { "--bits", c.bits, "in.wav", c.name });
        const auto sound = read (c.name);
        EXPECT_EQ (sound.format, c.format);
        EXPECT_EQ (sound.bits, c.wantBits);
        EXPECT_EQ (sound.isFloat, c.wantBits == 32);
        EXPECT_EQ (sound.rate, 48000.0);
        expectSame (sound, noise, 2.5e-7f);  // one step of 24 bits each way: unity isn't exact
    }

    // Values go to the nearest step, and full scale stays in range.
    const float steps[] = { 100.7f, 100.3f, 40000.0f };
    const float want[][2] = { { 101.0f, -101.0f }, { 100.0f, -100.0f }, { 32767.0f, -32768.0f } };
    juce::AudioBuffer<float> samples (2, 3);

    for (int i = 0; i < 3; ++i)
        for (int channel = 0; channel < 2; ++channel)
            samples.setSample (channel, i, (channel == 0 ? steps[i] : -steps[i]) / 32768.0f);

    write ("in.wav", samples);
    render (kDryOnly + Words { "--bits", "16", "in.wav", "o.wav" });
    const auto sound = read ("o.wav");

    for (int i = 0; i < 3; ++i)
        for (int channel = 0; channel < 2; ++channel)
            EXPECT_NEAR (sound.at (channel, i) * 32768.0f, want[i][channel], 0.01f) << i;
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
    write ("b.aiff", impulses (2205, 10, 0.5f, 0.5f), 44100.0, 24);
    const Words longest = {
        "--set", "Delay 1 Time=1000",     "--set", "Delay 1 Multiplier=x8",
        "--set", "Delay 1 Feedback=0 dB", "--set", "Delay 1 Fine=1.5",
    };
    render (longest + Words { "a.wav", "b.aiff", "made/of/late/" });
    EXPECT_EQ (read ("made/of/late/a.wav").rate, 96000.0);
    EXPECT_EQ (read ("made/of/late/b.wav").rate, 44100.0);

    // The 96 kHz file before it leaves no trace in the second.
    render (longest + Words { "b.aiff", "alone.wav" });
    EXPECT_TRUE (file ("alone.wav").hasIdenticalContentTo (file ("made/of/late/b.wav")));

    ASSERT_TRUE (file ("there").createDirectory().wasOk());
    render ({ "--format", "flac", "--tail", "0", "a.wav", "b.aiff", "there" });
    EXPECT_EQ (read ("there/a.flac").format, "FLAC file");
    EXPECT_EQ (read ("there/b.flac").length(), 2205);
    EXPECT_EQ (file ("there").getNumberOfChildFiles (juce::File::findFilesAndDirectories), 2);
}

TEST_F (RenderFiles, TheReportIsJsonAndTrue)
{
    write ("in \"x\".wav", impulses (1000, 10, 0.5f, 0.0f), 48000.0);
    const auto result =
        render (kDryOnly + Words { "--json", "--tempo", "90", "in \"x\".wav", "o.flac" });
    const auto report = juce::JSON::parse (result.out);
    const auto& job = report["files"][0];
    EXPECT_EQ (job["input"].toString(), "in \"x\".wav");
    EXPECT_EQ (job["output"].toString(), "o.flac");
    EXPECT_EQ (static_cast<int> (job["frames"]), 1000);
    EXPECT_EQ (static_cast<double> (job["rate"]), 48000.0);
    EXPECT_EQ (static_cast<int> (job["bits"]), 24);
    EXPECT_NEAR (static_cast<double> (job["seconds"]), 1000.0 / 48000.0, 1e-6);
    EXPECT_NEAR (static_cast<double> (job["peakDbfs"][0]), -6.0206, 1e-4);
    EXPECT_NEAR (static_cast<double> (job["rmsDbfs"][0]), -36.0206, 1e-4);  // 30 dB: one of 1000
    EXPECT_EQ (static_cast<double> (report["settings"]["tempo"]), 90.0);
    EXPECT_NEAR (static_cast<double> (report["settings"]["parameters"]["Dry Level"]), 1.0, 1e-6);
}

TEST_F (RenderFiles, TheDemoIsFourBarsAtTheTempoAndAlwaysTheSame)
{
    render (kDryOnly + Words { "--demo", "a.wav" });
    render (kDryOnly + Words { "--demo", "b.wav" });
    EXPECT_TRUE (file ("a.wav").hasIdenticalContentTo (file ("b.wav")));
    const auto demo = read ("a.wav");
    EXPECT_EQ (demo.length(), 8 * 48000);
    EXPECT_NEAR (demo.samples.getMagnitude (0, demo.length()), 0.5f, 0.01f);
    render (kDryOnly + Words { "--demo", "--tempo", "60", "slow.wav" });
    EXPECT_EQ (read ("slow.wav").length(), 16 * 48000);
}
