// SPDX-License-Identifier: AGPL-3.0-or-later
#include "session_player.h"

#include <cstddef>
#include <gtest/gtest.h>

// What the host tests compare is worth nothing if a part of the session can't be heard.

namespace
{

class SessionTest : public testing::Test
{
protected:
    /** The sound of the session with edit done to each of its blocks. */
    template <typename Edit>
    juce::AudioBuffer<float> play (Edit&& edit) const
    {
        auto edited = session;

        for (auto& block : edited.blocks)
            edit (block);

        DirectPlayer player;
        player.processor.prepareToPlay (edited.sampleRate, edited.maxBlock);
        return player.play (edited);
    }

    const juce::ScopedJuceInitialiser_GUI framework;
    const Session session = makeSession (48000.0, 1);
    const juce::AudioBuffer<float> whole = play ([] (SessionBlock&) {});
};

/** Takes the events out that the claim is true for. */
template <typename Claim>
void drop (juce::MidiBuffer& midi, Claim&& claim)
{
    juce::MidiBuffer rest;

    for (const auto event : midi)
        if (! claim (event.getMessage()))
            rest.addEvent (event.getMessage(), event.samplePosition);

    midi = rest;
}

}  // namespace

TEST_F (SessionTest, NeedsEachParameterNotesWheelAndTransport)
{
    for (int number = 0; number < kNumParameters; ++number)
    {
        const auto without = [number] (SessionBlock& block)
        { std::erase_if (block.changes, [number] (const auto& c) { return c.id == number; }); };

        // The LFOs run by their rates alone.
        const bool isHeard = number != LFO1Mod && number != LFO2Mod;
        EXPECT_EQ (differ (whole, play (without)), isHeard) << paramMapper[number].name;
    }

    const auto withoutMidi = [&] (auto claim)
    { return play ([claim] (SessionBlock& block) { drop (block.midi, claim); }); };

    EXPECT_TRUE (differ (whole, withoutMidi ([] (auto m) { return m.isNoteOn(); })));
    EXPECT_TRUE (differ (whole, withoutMidi ([] (auto m) { return m.isNoteOff(); })));
    EXPECT_TRUE (differ (whole, withoutMidi ([] (auto m) { return m.isController(); })));
    EXPECT_FALSE (differ (whole, withoutMidi ([] (auto m) { return m.isPitchWheel(); })));

    EXPECT_TRUE (differ (whole, play ([] (SessionBlock& block) { block.tempo.reset(); })));
    EXPECT_TRUE (differ (whole, play ([] (SessionBlock& block) { block.position.reset(); })));
    EXPECT_FALSE (differ (whole, play ([] (SessionBlock& block) { block.isPlaying = false; })));

    // What comes in a block without samples counts.
    const auto emptyWithoutMidi = [] (SessionBlock& block)
    {
        if (block.numSamples == 0)
            block.midi.clear();
    };

    EXPECT_TRUE (differ (whole, play (emptyWithoutMidi)));
}
