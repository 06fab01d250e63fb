// SPDX-License-Identifier: AGPL-3.0-or-later
#include "support/duel.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

// The whole processor against a second engine that was written without a look at this one.

namespace
{

/** A parameter's new value: the ends of its range and its middle come more often than chance gives. */
float randomValue (Duel& duel, NumericalParamID id, Noise& noise)
{
    const auto& range =
        duel.product.parameterTree.getParameter (paramMapper[id].name)->getNormalisableRange();
    const int pick = noise.below (8);

    if (pick == 0)
        return range.start;

    if (pick == 1)
        return range.end;

    if (pick == 2)
        return range.convertFrom0to1 (0.5f);

    return range.convertFrom0to1 (noise.unit());
}

void randomEdit (Duel& duel, Noise& noise)
{
    switch (noise.below (4))
    {
    case 0:
        for (int i = noise.below (6); i >= 0; --i)
        {
            const auto id = static_cast<NumericalParamID> (noise.below (kNumParameters));
            duel.set (id, randomValue (duel, id, noise));
        }
        break;

    case 1:
        duel.connect (noise.below (9), noise.below (11), noise.chance (0.6f));
        break;

    case 2:
        duel.route (noise.below (7), noise.below (11), noise.chance (0.6f));
        break;

    default:
        for (int i = noise.below (4); i >= 0; --i)
        {
            const std::uint8_t statuses[] = { 0x90, 0x91, 0x80, 0xb0, 0xe3, 0xc5 };
            const auto status = statuses[noise.below (6)];
            const auto data1 = static_cast<std::uint8_t> (status == 0xb0 ? noise.below (3)
                                                                         : 30 + noise.below (60));
            duel.midi (status, data1, static_cast<std::uint8_t> (noise.below (3) * 50));
        }
        break;
    }
}

void randomTransport (Duel& duel, Noise& noise)
{
    duel.playHead.answers = noise.chance (0.9f);
    duel.playHead.tempo = noise.chance (0.1f) ? std::optional<double>()
                                              : 20.0 + 400.0 * static_cast<double> (noise.unit());
    duel.playHead.position = noise.chance (0.1f)
                                 ? std::optional<double>()
                                 : -20.0 + 2000.0 * static_cast<double> (noise.unit());

    if (noise.chance (0.1f))
        duel.playHead.tempo = noise.chance (0.5f) ? 0.0 : -30.0;
}

int randomLength (Noise& noise)
{
    const int fixed[] = { 0, 1, 2, 3, 4, 5, 16, 64, 255, 256, 512 };
    return noise.chance (0.5f) ? fixed[noise.below (11)] : noise.below (700);
}

/** Input of a block: noise, silence, or a level that drives everything into its limits. */
void fill (std::vector<float>& samples, int n, Noise& noise, float gain)
{
    samples.resize (static_cast<std::size_t> (n));

    for (auto& sample : samples)
        sample = gain * noise();
}

void expectWithinRails (const std::vector<float>& samples)
{
    for (const float sample : samples)
        ASSERT_TRUE (std::abs (sample) <= 1.0f) << sample;
}

void walk (Duel& duel, Noise& noise, int blocks)
{
    std::vector<float> left, right;

    for (int i = 0; i < blocks && ! testing::Test::HasFailure(); ++i)
    {
        for (int edits = noise.below (4); edits > 0; --edits)
            randomEdit (duel, noise);

        randomTransport (duel, noise);
        const int n = randomLength (noise);
        const float gains[] = { 0.0f, 0.5f, 1.0f, 20.0f };
        const float gain = gains[noise.below (4)];
        fill (left, n, noise, gain);
        fill (right, n, noise, gain);
        const int channels = noise.chance (0.05f) ? 1 : 2;
        ASSERT_TRUE (duel.process (left, right, channels)) << "block " << i;
        expectWithinRails (left);

        if (channels > 1)
            expectWithinRails (right);
    }
}

}  // namespace

class RandomWalk : public testing::TestWithParam<std::tuple<double, double>>
{
};

TEST_P (RandomWalk, OfParametersMatricesMidiTransportAndBlockLengthsGivesTheReferencesBits)
{
    const auto [rateBefore, rate] = GetParam();

    for (std::uint32_t seed = 1; seed <= 6 && ! HasFailure(); ++seed)
    {
        SCOPED_TRACE (seed);
        Noise noise (seed + static_cast<std::uint32_t> (rate));
        Duel duel (rateBefore);
        duel.prepare (rate);
        walk (duel, noise, 150);
        duel.prepare (noise.chance (0.5f) ? rate : 44100.0);
        walk (duel, noise, 50);
    }
}

// The last two were built in a process that worked at megahertz: their buffers are a fraction of a second, so
// that the heads come round often and most delays outgrow them.
INSTANTIATE_TEST_SUITE_P (
    Rates, RandomWalk,
    testing::Values (std::tuple { 44100.0, 44100.0 }, std::tuple { 44100.0, 48000.0 },
                     std::tuple { 96000.0, 96000.0 }, std::tuple { 44100.0, 192000.0 },
                     std::tuple { 192000.0, 22050.0 }, std::tuple { 2.0e6, 44100.0 },
                     std::tuple { 8.0e6, 22050.0 }));

TEST (AgainstReference, FiltersWithoutInputWhisperTheSameOffsets)
{
    Duel duel;
    duel.prepare (44100.0);
    duel.disconnectAll();
    duel.connect (sourceFilter1, destOutput1, true);
    duel.connect (sourceFilter2, destOutput2, true);
    duel.set (DryLevel, 0.0f);
    duel.set (Filter1Mode, 0.2f);
    duel.set (Filter2Reso, 9.0f);
    std::vector<float> left (1021, 0.0f);
    std::vector<float> right = left;

    for (int i = 0; i < 4; ++i)
        ASSERT_TRUE (duel.process (left, right));

    EXPECT_NE (left.back(), 0.0f) << "with nothing there is nothing to compare";
}

TEST (AgainstReference, EverythingConnectedAndRoutedStaysBitForBitTheSame)
{
    Noise noise (99);
    Duel duel;
    duel.prepare (48000.0);

    for (int destination = 0; destination < kNumSignalDests; ++destination)
        for (int source = 0; source < kNumSignalSources; ++source)
            duel.connect (source, destination, true);

    for (int source = 0; source < kNumModSources; ++source)
        for (int dest = 0; dest < kNumModDests; ++dest)
            duel.route (source, dest, true);

    for (int id = 0; id < kNumParameters; ++id)
        duel.set (static_cast<NumericalParamID> (id),
                  randomValue (duel, static_cast<NumericalParamID> (id), noise));

    duel.set (Kill, 0.0f);
    walk (duel, noise, 200);
}

TEST (AgainstReference, ALineWhoseDelayOutgrewItsBufferReadsAndWritesInsideIt)
{
    Noise noise (7);
    Duel duel;
    duel.prepare (44100.0);
    duel.set (Delay1Time, 1000.0f);
    duel.set (Delay2Time, 1000.0f);
    duel.set (Delay1Multiplier, 3.0f);
    duel.set (Delay2Multiplier, 3.0f);
    duel.set (Delay1Sync, 1.0f);  // a synced line jumps, so its head is put outside at once
    walk (duel, noise, 5);

    // Another instance at a higher rate: 12 s are now longer than what this one has room for.
    VelkorAudioProcessor other;
    other.prepareToPlay (192000.0, 512);
    duel.globals.setRate (192000.0);

    for (int i = 0; i < 40 && ! HasFailure(); ++i)
    {
        duel.set (Delay1Reverse, noise.chance (0.5f) ? 1.0f : 0.0f);
        duel.set (Delay2Reverse, noise.chance (0.5f) ? 1.0f : 0.0f);
        duel.set (Delay1Loop, noise.chance (0.3f) ? 1.0f : 0.0f);
        std::vector<float> left, right;
        fill (left, 2048, noise, 0.5f);
        fill (right, 2048, noise, 0.5f);
        duel.playHead.tempo = 20.0 + noise.below (3);
        duel.process (left, right);
    }
}

TEST (AgainstReference, SamplesThatAreNoNumbersCountAsSilence)
{
    Duel duel;
    duel.prepare (44100.0);
    Noise noise (3);

    for (const float poison :
         { std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
           -std::numeric_limits<float>::infinity() })
    {
        std::vector<float> left, right, cleanLeft;
        fill (left, 256, noise, 0.5f);
        fill (right, 256, noise, 0.5f);
        left[17] = poison;
        right[0] = poison;

        // The reference gets the block with zeros in those places.
        auto zeroed = left;
        zeroed[17] = 0.0f;
        auto zeroedRight = right;
        zeroedRight[0] = 0.0f;

        float values[reference::kNumParams];
        readValues (duel.product, values);
        float* channels[] = { left.data(), right.data() };
        juce::AudioBuffer<float> buffer (channels, 2, 256);
        juce::MidiBuffer midi;
        duel.product.processBlock (buffer, midi);
        duel.engine->process (values, {}, {}, zeroed.data(), zeroedRight.data(), 256);
        EXPECT_EQ (left, zeroed);
        EXPECT_EQ (right, zeroedRight);
    }
}

TEST (AgainstReference, APatchThatRunsAwayNeverLeavesTheRailsAndSoundsAgainOnceItIsMended)
{
    Duel duel;
    duel.prepare (44100.0);

    // Two saturators that feed themselves and each other double at every sample.
    for (int from : { sourceSaturation1, sourceSaturation2 })
        for (int to : { destSaturation1, destSaturation2, destFilter1, destDelay2 })
            duel.connect (from, to, true);

    duel.connect (sourceInputL, destSaturation2, true);
    duel.connect (sourceSaturation2, destOutput1, true);
    Noise noise (4);
    std::vector<float> left, right;

    for (int i = 0; i < 60; ++i)
    {
        fill (left, 256, noise, 0.5f);
        fill (right, 256, noise, 0.5f);
        duel.process (left, right);
        expectWithinRails (left);
        expectWithinRails (right);
    }

    EXPECT_GT (duel.engine->nonFiniteRescues, 0)
        << "the patch has to run away for this test to say anything";

    for (int from : { sourceSaturation1, sourceSaturation2 })
        for (int to : { destSaturation1, destSaturation2 })
            duel.connect (from, to, false);

    const int rescuesBefore = duel.engine->nonFiniteRescues;

    for (int i = 0; i < 20; ++i)
    {
        fill (left, 256, noise, 0.5f);
        fill (right, 256, noise, 0.5f);
        ASSERT_TRUE (duel.process (left, right));
    }

    EXPECT_LE (duel.engine->nonFiniteRescues, rescuesBefore + 1);
    EXPECT_TRUE (std::isfinite (duel.product.engine->delay1.out));
    float peak = 0.0f;

    for (const float sample : left)
        peak = std::max (peak, std::abs (sample));

    EXPECT_GT (peak, 0.1f) << "the dry signal at least";
}
