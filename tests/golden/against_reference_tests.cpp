// SPDX-License-Identifier: AGPL-3.0-or-later
#include "support/duel.h"

#include <algorithm>
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

/** Both matrices at once, as a load does it: the sound has to be that of the single steps. */
void replaceMatrices (Duel& duel, Noise& noise)
{
    std::vector<SignalPair> signal;
    std::vector<ModPair> modulation;

    for (int i = noise.below (30); i > 0; --i)
        signal.push_back ({ noise.below (9) - 1, noise.below (12) - 1 });

    for (int i = noise.below (12); i > 0; --i)
        modulation.push_back ({ noise.below (8) - 1, noise.below (12) - 1 });

    engine_replace_connections (*duel.product.engine, signal);
    mod_router_replace (duel.product.engine->modulation, modulation);
    duel.engine->connectionCount = 0;
    duel.engine->routes.clear();

    for (const auto& pair : signal)
        duel.engine->connect (pair.source, pair.destination, true);

    for (const auto& pair : modulation)
        duel.engine->route (pair.source, pair.dest, true);
}

void randomEdit (Duel& duel, Noise& noise)
{
    if (noise.chance (0.03f))
        replaceMatrices (duel, noise);

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
            const int notes[] = { 35, 36, 60, 84, 85, 128 };  // few, so that most are let go again
            const auto data1 = static_cast<std::uint8_t> (status == 0xb0 ? noise.below (3)
                                                                         : notes[noise.below (6)]);
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

    const double farPlaces[] = { 0.0, 400'000.0, 400'001.37, -90'000.7, 3.0e7 };

    if (noise.chance (0.1f))
        duel.playHead.position = farPlaces[noise.below (5)];
}

int randomLength (Noise& noise)
{
    const int fixed[] = { 0, 1, 2, 3, 4, 5, 16, 64, 255, 256, 512 };

    if (noise.chance (0.01f))  // the longest that hosts offer
        return 8192 - noise.below (3);

    return noise.chance (0.5f) ? fixed[noise.below (11)] : noise.below (700);
}

void expectWithinRails (const std::vector<float>& samples)
{
    for (const float sample : samples)
        ASSERT_TRUE (std::abs (sample) <= 1.0f) << sample;
}

/** A block of noise, silence, or a level that drives everything into its limits; now and then with a sample that is
    no number, which counts as silence, or that is near the end of the range. */
std::vector<float> randomInput (Noise& noise, int n, float level)
{
    constexpr auto kInfinity = std::numeric_limits<float>::infinity();
    const float poisons[] = { std::numeric_limits<float>::quiet_NaN(), kInfinity, -kInfinity,
                              noise.chance (0.5f) ? 1.6e38f : 2.5e38f };
    auto samples = noise.samples (n, level);

    if (n > 0 && noise.chance (0.05f))
        samples[static_cast<std::size_t> (noise.below (n))] = poisons[noise.below (4)];

    return samples;
}

void walk (Duel& duel, Noise& noise, int blocks)
{
    for (int i = 0; i < blocks && ! testing::Test::HasFailure(); ++i)
    {
        for (int edits = noise.below (4); edits > 0; --edits)
            randomEdit (duel, noise);

        randomTransport (duel, noise);
        const int n = randomLength (noise);
        const float levels[] = { 0.0f, 0.5f, 1.0f, 20.0f };
        const float level = levels[noise.below (4)];
        auto left = randomInput (noise, n, level);
        auto right = randomInput (noise, n, level);
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

TEST (AgainstReference, EverythingConnectedRunsAwayWithTheSameBitsAndSoundsAgainOnceItIsMended)
{
    Noise noise (99);
    Duel duel;
    duel.prepare (48000.0);

    duel.connectAll (true);

    for (int source = 0; source < kNumModSources; ++source)
        for (int dest = 0; dest < kNumModDests; ++dest)
            duel.route (source, dest, true);

    for (int id = 0; id < kNumParameters; ++id)
        duel.set (static_cast<NumericalParamID> (id),
                  randomValue (duel, static_cast<NumericalParamID> (id), noise));

    duel.set (Kill, 0.0f);
    walk (duel, noise, 200);

    // Saturators without drive that feed themselves and each other double at every sample.
    duel.set (Saturation1, Saturation2, 0.0f);
    duel.set (InputLevel, DryLevel, 1.0f);

    for (int from : { sourceSaturation1, sourceSaturation2, sourceInputL })
        for (int to : { destSaturation1, destSaturation2, destFilter1, destDelay2 })
            duel.connect (from, to, true);

    duel.run (noise, 60, 256);
    const int rescues = duel.engine->nonFiniteRescues;
    EXPECT_GT (rescues, 0) << "it has to run away for this test to say anything";

    duel.connectAll (false);

    for (int destination = 0; destination < kNumSignalDests; ++destination)
        duel.connect (sourceInputL, destination, true);

    EXPECT_GT (duel.run (noise, 20, 256), 0.1f) << "the dry signal at least";
    EXPECT_LE (duel.engine->nonFiniteRescues, rescues + 1);
    EXPECT_TRUE (std::isfinite (duel.product.engine->delay1.out));
}

TEST (AgainstReference, LinesFullOfSoundThatRunAwayGiveItsBitsWhileTheyAreBeingCleared)
{
    for (const double rateBefore : { 44100.0, 1.0e6 })
    {
        Noise noise (41);
        Duel duel (rateBefore);
        duel.prepare (48000.0);
        duel.run (noise, rateBefore < 1.0e6 ? 1300 : 100, 512);  // once round the buffers

        for (int i = 0; i < 40 && ! HasFailure(); ++i)
        {
            std::vector<float> left (64, 3.0e38f), right = left;  // the envelope's sum overflows
            duel.process (left, right);

            for (int id = Delay1Time; id <= Delay2Multiplier; ++id)
                if (noise.chance (0.3f))
                    duel.set (static_cast<NumericalParamID> (id),
                              randomValue (duel, static_cast<NumericalParamID> (id), noise));

            duel.run (noise, noise.chance (0.2f) ? 200 : noise.below (60), 1 + noise.below (400));

            if (noise.chance (0.1f))
                duel.prepare (48000.0);
        }

        EXPECT_EQ (duel.engine->nonFiniteRescues, 40);
    }
}

TEST (AgainstReference, ARateThatAnotherInstanceSetsReachesTheEnvelopeAndNotTheLfos)
{
    Noise noise (8);
    Duel duel;
    duel.prepare (44100.0);
    duel.route (modSourceEnvelope, modDestLevel1, true);
    duel.route (modSourceLfo1, modDestLevel2, true);
    duel.route (modSourceLfo2, modDestPan2, true);
    duel.set (EnvSensitivity, 0.1f);
    duel.set (LFO2Sync, 1.0f);
    duel.set (Level1Mod, Level2Mod, 0.7f);
    duel.set (Pan2Mod, 0.7f);
    duel.set (Delay1Time, Delay2Time, 2.0f);
    duel.run (noise, 20, 256);

    VelkorAudioProcessor other;
    other.prepareToPlay (96000.0, 512);
    duel.globals.setRate (96000.0);
    EXPECT_GT (duel.run (noise, 20, 256), 0.1f);
}

TEST (AgainstReference, ALineWhoseDelayOutgrewItsBufferReadsAndWritesInsideIt)
{
    Noise noise (7);
    Duel duel;
    duel.prepare (44100.0);
    duel.set (Delay1Time, Delay2Time, 1000.0f);
    duel.set (Delay1Multiplier, Delay2Multiplier, 3.0f);
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
        duel.playHead.tempo = 20.0 + noise.below (3);
        duel.run (noise, 1, 2048);
    }
}
