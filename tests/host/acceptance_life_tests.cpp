// SPDX-License-Identifier: AGPL-3.0-or-later
#include "acceptance_session.h"
#include "support/duel.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

// In what order and on which threads hosts are free to make, prepare, play, bypass and end instances.

namespace
{

juce::AudioProcessor::BusesLayout layoutOf (const juce::AudioChannelSet& in,
                                            const juce::AudioChannelSet& out)
{
    juce::AudioProcessor::BusesLayout layout;
    layout.inputBuses.add (in);
    layout.outputBuses.add (out);
    return layout;
}

}  // namespace

TEST (Acceptance, RefusesLayoutsAndKeepsItsOwnAndOnAMonoOutputTheLeftSideIsHeard)
{
    using Set = juce::AudioChannelSet;
    const auto session = makeSession (48000.0, 40);
    const auto want = playedAlone (session);

    DirectPlayer player;
    auto& processor = player.processor;
    ASSERT_TRUE (processor.setBusesLayout (layoutOf (Set::stereo(), Set::mono())));

    for (const auto& refused :
         { layoutOf (Set::mono(), Set::mono()), layoutOf (Set::mono(), Set::stereo()),
           layoutOf (Set::disabled(), Set::stereo()), layoutOf (Set::stereo(), Set::disabled()),
           layoutOf (Set::disabled(), Set::disabled()), layoutOf (Set::createLCR(), Set::stereo()),
           layoutOf (Set::quadraphonic(), Set::quadraphonic()),
           layoutOf (Set::stereo(), Set::discreteChannels (2)) })
    {
        EXPECT_FALSE (processor.setBusesLayout (refused));
        EXPECT_EQ (processor.getMainBusNumOutputChannels(), 1);
        EXPECT_EQ (processor.getMainBusNumInputChannels(), 2);
    }

    // The framework hands over as many channels as the wider side has.
    processor.prepareToPlay (48000.0, session.maxBlock);
    const auto got = player.play (session);
    juce::AudioBuffer<float> left (1, got.getNumSamples()), wantLeft (1, got.getNumSamples());
    left.copyFrom (0, 0, got, 0, 0, got.getNumSamples());
    wantLeft.copyFrom (0, 0, want, 0, 0, got.getNumSamples());
    expectSameSamples (left, wantLeft);
}

TEST (Acceptance, BlocksUpTo8192AtRatesFrom22050To192000GiveTheReferencesBits)
{
    for (const double rate : { 22050.0, 32000.0, 88200.0, 176400.0, 192000.0 })
    {
        SCOPED_TRACE (rate);
        Noise noise (50 + static_cast<std::uint32_t> (rate));
        Duel duel;
        duel.prepare (rate);
        duel.playHead.tempo = 97.0;
        std::vector<int> sizes { 1, 8192, 2, 8191, 1, 4097, 3, 1023, 1025 };

        for (int i = 0; i < 12; ++i)
            sizes.push_back (1 + noise.below (8192));

        for (std::size_t i = 0; i < sizes.size(); ++i)
        {
            for (int edits = 0; edits < 5; ++edits)
                setParameter (duel.product,
                              static_cast<NumericalParamID> (noise.below (kNumParameters)),
                              noise.unit());

            duel.connect (noise.below (kNumSignalSources), noise.below (kNumSignalDests),
                          noise.chance (0.7f));
            duel.route (noise.below (kNumModSources), noise.below (kNumModDests),
                        noise.chance (0.7f));
            duel.midi (0x90, static_cast<std::uint8_t> (30 + noise.below (60)), 100);
            const auto size = static_cast<std::size_t> (sizes[i]);
            std::vector<float> left (size), right (size);
            std::generate (left.begin(), left.end(), [&noise] { return 0.5f * noise(); });
            std::generate (right.begin(), right.end(), [&noise] { return 0.5f * noise(); });
            ASSERT_TRUE (duel.process (left, right)) << "block " << i << " of " << size;
        }
    }
}

TEST (Acceptance, AnEditorOpenedBeforePreparingAndReopenedBesideAudioChangesNoSound)
{
    auto session = makeSession (48000.0, 60);
    const auto state = std::exchange (session.state, {});
    DirectPlayer player;
    auto& processor = player.processor;
    std::unique_ptr<juce::AudioProcessorEditor> editor (processor.createEditorIfNeeded());
    ASSERT_NE (editor, nullptr);
    const auto picture = [&] { return editor->createComponentSnapshot (editor->getLocalBounds()); };
    EXPECT_TRUE (picture().isValid());
    player.load (state);  // here: while an editor is open, the undo history is the message thread's
    processor.prepareToPlay (session.sampleRate, session.maxBlock);

    std::vector<juce::AudioBuffer<float>> got;
    std::atomic<int> openings { 0 };
    std::thread audio (
        [&]
        {
            while (openings < 8)
                got.push_back (player.play (session));
        });

    auto* const messages = juce::MessageManager::getInstance();

    for (; openings < 8; ++openings)
    {
        messages->runDispatchLoopUntil (60);  // three ticks of the editor's timer
        EXPECT_TRUE (picture().isValid());
        editor.reset();
        messages->runDispatchLoopUntil (5);
        editor.reset (processor.createEditorIfNeeded());
    }

    audio.join();
    editor.reset();
    DirectPlayer alone;
    alone.load (state);
    alone.processor.prepareToPlay (session.sampleRate, session.maxBlock);

    for (const auto& output : got)
        expectSameSamples (output, alone.play (session));
}

TEST (Acceptance, ManyInstancesOnManyThreadsEachSoundAsOneAlone)
{
    constexpr std::size_t kInstances = 12, kThreads = 4;
    const auto session = shortened (makeSession (48000.0, 70));
    const auto want = playedAlone (session);
    std::vector<std::unique_ptr<DirectPlayer>> players;

    for (std::size_t i = 0; i < kInstances; ++i)
        players.push_back (std::make_unique<DirectPlayer>());

    for (const auto& player : players)  // the last rate is everybody's
        player->processor.prepareToPlay (session.sampleRate, session.maxBlock);

    std::vector<juce::AudioBuffer<float>> outputs (kInstances);
    std::vector<std::thread> threads;

    for (std::size_t t = 0; t < kThreads; ++t)
        threads.emplace_back (
            [&, t]
            {
                for (std::size_t i = t; i < kInstances; i += kThreads)
                    outputs[i] = players[i]->play (session);
            });

    for (auto& thread : threads)
        thread.join();

    for (const auto& output : outputs)
        expectSameSamples (output, want);

    players.erase (players.begin(), players.begin() + 7);  // the others stay in use
    const auto state = makeState (71);
    players.front()->load (state);
    players.back()->load (state);
    const auto plain = withoutEvents (session);
    expectSameSamples (players.front()->play (plain), players.back()->play (plain));
}

TEST (Acceptance, PreparingAgainNeedsNoReleaseAndReleasingLosesNothing)
{
    const auto session = withoutEvents (makeSession (48000.0, 80));
    const auto state = makeState (81);

    // prepare, play, prepare, play: with a release between, and without; then a release in the middle of playing.
    const auto second = [&] (bool releases)
    {
        const auto player = preparedPlayer (session);
        player->load (state);
        player->play (shortened (session));

        if (releases)
        {
            player->processor.releaseResources();
            player->processor.releaseResources();
        }

        player->processor.prepareToPlay (session.sampleRate, session.maxBlock);
        player->processor.prepareToPlay (session.sampleRate, session.maxBlock);
        return player->play (session);
    };

    const auto want = second (false);
    expectWorthComparing (want, session);
    expectSameSamples (second (true), want);

    // Of the default patch with its echo nothing is left of the first sound but what the delays hold outside of
    // their buffers: the sample that comes out next, and half of the one that went in last.
    const auto tailOf = [&session] (bool preparesAgain)
    {
        const auto player = preparedPlayer (session);
        player->play (session);

        if (preparesAgain)
            player->processor.prepareToPlay (session.sampleRate, session.maxBlock);

        juce::AudioBuffer<float> silence (2, 48000);
        silence.clear();
        juce::MidiBuffer midi;
        player->processor.processBlock (silence, midi);
        const auto* const left = silence.getReadPointer (0);
        return std::count_if (left, left + 48000,
                              [] (float sample) { return std::abs (sample) > 1e-4f; });
    };

    EXPECT_GT (tailOf (false), 20000);
    EXPECT_LE (tailOf (true), 2);
}

TEST (Acceptance, BypassedByTheHostItPassesItsInputAndTakesUpWhereItStood)
{
    const auto session = makeSession (48000.0, 90);
    const auto want = playedAlone (session);
    const auto player = preparedPlayer (session);

    class Interrupted : public SessionPlayer
    {
    public:
        explicit Interrupted (DirectPlayer& p) : player (p) {}
        void load (const juce::MemoryBlock& chunk) override { player.load (chunk); }
        void set (NumericalParamID id, float value) override { player.set (id, value); }

        void process (juce::AudioBuffer<float>& samples, const SessionBlock& block) override
        {
            if (++count % 5 == 0)
            {
                juce::AudioBuffer<float> other (2, 300);
                Noise noise (91);

                for (int n = 0; n < 600; ++n)
                    other.setSample (n % 2, n / 2, noise());

                const auto before = other;
                juce::MidiBuffer midi;
                midi.addEvent (juce::MidiMessage::noteOn (1, 60, 1.0f), 7);
                player.processor.processBlockBypassed (other, midi);
                expectSameSamples (other, before);
            }

            player.process (samples, block);
        }

    private:
        DirectPlayer& player;
        int count = 0;
    };

    Interrupted interrupted (*player);
    expectSameSamples (interrupted.play (session), want);
}

TEST (Acceptance, OfflineSoundsAsInRealTime)
{
    const auto session = makeSession (48000.0, 110);
    const auto want = playedAlone (session);
    expectWorthComparing (want, session);

    const auto offline = preparedPlayer (session);
    offline->processor.setNonRealtime (true);
    expectSameSamples (offline->play (session), want);

    DirectPlayer toldFirst;  // hosts tell it before preparing or after
    toldFirst.processor.setNonRealtime (true);
    toldFirst.processor.prepareToPlay (session.sampleRate, session.maxBlock);
    expectSameSamples (toldFirst.play (session), want);
}
