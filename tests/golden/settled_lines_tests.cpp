// SPDX-License-Identifier: AGPL-3.0-or-later
#include "support/duel.h"

#include <BinaryData.h>
#include <gtest/gtest.h>

// Where the engine takes its short ways: lines that have settled, wirings without loops among filters and saturators,
// nothing modulated. The random walks hardly come there, since they turn every knob.

namespace
{

/** A wiring whose delays, filters and saturators are all heard, by what leads to what among the last two. */
struct Wiring
{
    const char* name;
    std::vector<SignalPair> pairs;
};

// clang-format off
const Wiring kWirings[] = {
    { "default", {
        { sourceInputL, destDelay1 }, { sourceInputR, destDelay2 }, { sourceDelay1, destFeedback1 },
        { sourceDelay2, destFeedback2 }, { sourceDelay1, destOutput1 }, { sourceDelay2, destOutput2 } } },
    { "filters into saturators", {
        { sourceInputL, destDelay1 }, { sourceDelay1, destFilter1 }, { sourceInputR, destFilter2 },
        { sourceFilter1, destSaturation1 }, { sourceFilter2, destSaturation1 }, { sourceDelay2, destSaturation2 },
        { sourceSaturation1, destFeedback1 }, { sourceSaturation2, destDelay2 }, { sourceFilter2, destDelay2 },
        { sourceSaturation1, destOutput1 }, { sourceDelay2, destOutput2 } } },
    { "saturators into filters", {
        { sourceInputL, destSaturation1 }, { sourceDelay2, destSaturation2 }, { sourceSaturation1, destFilter2 },
        { sourceInputR, destFilter1 }, { sourceSaturation2, destFilter1 }, { sourceFilter1, destDelay1 },
        { sourceFilter2, destDelay2 }, { sourceDelay1, destFeedback2 }, { sourceFilter1, destOutput1 },
        { sourceDelay1, destOutput1 }, { sourceDelay2, destOutput2 }, { sourceSaturation2, destOutput2 } } },
    { "a loop between both", {
        { sourceInputL, destFilter1 }, { sourceFilter1, destSaturation1 }, { sourceSaturation1, destFilter1 },
        { sourceInputR, destSaturation2 }, { sourceSaturation2, destFilter2 }, { sourceFilter2, destDelay2 },
        { sourceFilter1, destDelay1 }, { sourceDelay1, destFeedback2 }, { sourceDelay1, destOutput1 },
        { sourceDelay2, destOutput2 } } },
};
// clang-format on

/** Settles, glides to a new time and settles again, at several lengths of the block, with one change in each stretch. */
void liveThrough (Duel& duel, Noise& noise)
{
    duel.run (noise, 8, 512);
    duel.set (Delay1Time, 41.0f);
    duel.set (Delay2Time, 27.5f);
    duel.run (noise, 150, 256);
    duel.set (Delay1Bypass, Delay2Bypass, 1.0f);
    duel.run (noise, 6, 509);
    duel.set (Delay1Bypass, Delay2Bypass, 0.0f);
    duel.set (Delay2Fine, 0.9f);
    duel.run (noise, 6, 64);
    duel.set (Delay2Fine, 1.0f);
    duel.set (Delay1Sync, Delay2Sync,
              1.0f);  // settled at once, the second with its heads between slots
    duel.run (noise, 100, 333);
    duel.connect (sourceDelay1, destOutput2, true);
    duel.connect (sourceDelay2, destOutput2, false);
    duel.set (Delay1Reverse, Delay2Reverse, 1.0f);
    duel.run (noise, 30, 128);
    duel.set (Delay1Reverse, Delay2Reverse, 0.0f);
    duel.set (MonoInput, 1.0f);
    duel.run (noise, 60, 512);
    duel.set (Delay1Loop, 1.0f);
    duel.run (noise, 10, 130);
    duel.set (Delay1Loop, 0.0f);
    duel.run (noise, 40, 7);
}

}  // namespace

class SettledLines : public testing::TestWithParam<std::tuple<int, double>>
{
};

TEST_P (SettledLines, GiveTheReferencesBitsInEveryKindOfWiring)
{
    const auto& [which, rateBefore] = GetParam();
    const Wiring& wiring = kWirings[which];
    SCOPED_TRACE (wiring.name);
    Noise noise (static_cast<std::uint32_t> (which));
    Duel duel (rateBefore);
    duel.prepare (48000.0);
    duel.connectAll (false);

    for (const auto& [source, destination] : wiring.pairs)
        duel.connect (source, destination, true);

    duel.set (Saturation1, Saturation2, 0.4f);
    duel.set (Delay1Feedback, Delay2Feedback, 0.7f);
    duel.set (Filter1Mode, 0.4f);
    duel.set (Filter2Reso, 6.0f);
    duel.set (Delay1Time, 63.0f);
    duel.set (Delay2Time, 20.0f);
    duel.set (Delay1Multiplier, Delay2Multiplier, 0.0f);
    liveThrough (duel, noise);
}

// A process that has worked at megahertz makes short buffers, round which the heads come every few blocks.
INSTANTIATE_TEST_SUITE_P (WiringsAndBuffers, SettledLines,
                          testing::Combine (testing::Range (0, 4),
                                            testing::Values (44100.0, 1.0e6, 3.0e6)));

TEST (AgainstReference, ReversedLinesAtHalvesAndQuartersOfASlotGiveItsBitsRoundAfterRound)
{
    Noise noise (5);

    for (const float speed : { 0.5f, 0.75f, 1.5f })
        for (const bool bothWays : { false, true })
        {
            SCOPED_TRACE (speed);
            Duel duel (3.0e6);
            duel.prepare (48000.0);
            duel.set (Delay1Time, Delay2Time, 40.0f);
            duel.set (Delay1Multiplier, Delay2Multiplier, 0.0f);
            duel.run (noise, 20, 512);
            duel.set (Delay1Reverse, 1.0f);
            duel.set (Delay2Reverse, bothWays ? 0.0f : 1.0f);
            duel.set (Delay1Fine, Delay2Fine, speed);
            duel.run (noise, 150, 512);
        }
}

TEST (AgainstReference, HeadsSoFarOutThatSlowOnesStandStillGiveItsBits)
{
    Noise noise (6);
    Duel duel;
    duel.set (Delay1Time, Delay2Time, 1000.0f);  // synced, 1/1: eight of them are cut to 12 s
    duel.set (Delay1Multiplier, Delay2Multiplier, 3.0f);
    duel.set (Delay1Sync, Delay2Sync, 1.0f);
    duel.playHead.tempo = 60.0;
    duel.prepare (768000.0);
    duel.run (noise, 1, 64);
    duel.prepare (
        768000.0);  // the write heads set out from 9.2 million: a float has no halves there
    duel.playHead.tempo = 1.0e6;  // 2 ms
    duel.set (Delay1Reverse, 1.0f);

    for (int i = 0; i < 20; ++i)
    {
        duel.set (Delay1Fine, Delay2Fine, 0.5f);
        duel.run (noise, 1, 64);
        duel.set (Delay1Fine, Delay2Fine, 1.0f);
        duel.run (noise, 1, 512);
    }
}

TEST (AgainstReference, WiringsDrawnAtRandomGiveItsBitsWhileTheLinesAreSettled)
{
    Noise noise (2024);

    for (int round = 0; round < 60 && ! testing::Test::HasFailure(); ++round)
    {
        SCOPED_TRACE (round);
        Duel duel (round % 2 == 0 ? 44100.0 : 1.0e6);
        const bool isTiny = round % 3 == 2;  // a delay of five slots, a tick or two
        duel.prepare (isTiny ? 2500.0 : 44100.0);
        duel.connectAll (false);
        duel.set (Delay1Time, Delay2Time, isTiny ? 2.0f : 30.0f);
        duel.set (Delay1Multiplier, Delay2Multiplier, 0.0f);

        for (int i = 2 + noise.below (round < 40 ? 14 : 80); i > 0; --i)
            duel.connect (noise.below (kNumSignalSources), noise.below (kNumSignalDests), true);

        duel.run (noise, 12, 256);
        duel.connect (noise.below (kNumSignalSources), noise.below (kNumSignalDests), false);
        duel.connect (noise.below (kNumSignalSources), noise.below (kNumSignalDests), true);
        duel.run (noise, 6, 250);
    }
}

TEST (AgainstReference, EveryFactoryPresetGivesItsBits)
{
    juce::MemoryInputStream bytes (BinaryData::Presets_zip, BinaryData::Presets_zipSize, false);
    juce::ZipFile archive (bytes);
    int presets = 0;

    for (int i = 0; i < archive.getNumEntries() && ! testing::Test::HasFailure(); ++i)
    {
        const std::unique_ptr<juce::InputStream> stream (archive.createStreamForEntry (i));
        const auto document = juce::parseXML (stream->readEntireStreamAsString());

        if (document == nullptr)
            continue;

        ++presets;
        SCOPED_TRACE (archive.getEntry (i)->filename);
        Noise noise (static_cast<std::uint32_t> (i));
        Duel duel;
        duel.prepare (44100.0);
        duel.connectAll (false);
        duel.product.loadStateFromXML (document.get());
        const auto& signal = duel.product.engine->signal;

        for (std::size_t c = 0; c < static_cast<std::size_t> (signal.connectionCount); ++c)
            duel.engine->connect (signal.connSource[c], signal.connDest[c], true);

        for (const auto* route : duel.product.engine->modulation.router.routes)
            duel.engine->route (route->source, route->dest, true);

        duel.playHead.tempo = 93.0;
        duel.playHead.position = 1.0;
        duel.midi (0x90, 55, 100);
        duel.run (noise, 40, 512);
        duel.midi (0x80, 55, 0);
        duel.run (noise, 8, 171);
    }

    EXPECT_EQ (presets, 65) << "the bank and the default";
}
