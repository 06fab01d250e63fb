// SPDX-License-Identifier: AGPL-3.0-or-later
#include "session.h"
#include "support/duel.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <gtest/gtest.h>
#include <latch>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

// What hosts are free to do, on the processor itself, so that the sanitizers see it too.

TEST (Acceptance, ParametersSetByManyThreadsBesideAudioKeepTheLastValue)
{
    constexpr int kThreads = 4;
    const auto session = withoutEvents (makeSession (48000.0, 24));
    DirectPlayer player (session.sampleRate);
    std::array<float, kNumParameters> last {};
    std::atomic<bool> isPlaying { true };
    std::latch played { kThreads };  // then no thread sets what another has set for the last time
    std::vector<std::thread> threads;

    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back (
            [&, t]
            {
                Noise noise (100 + static_cast<std::uint32_t> (t));

                while (isPlaying)
                    player.set (static_cast<NumericalParamID> (noise.below (kNumParameters)),
                                noise.unit());

                played.arrive_and_wait();

                for (int number = t; number < kNumParameters; number += kThreads)
                    player.set (static_cast<NumericalParamID> (number),
                                last[static_cast<std::size_t> (number)] = noise.unit());
            });

    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE (std::isfinite (
            player.play (session).getRMSLevel (0, 0, session.input.getNumSamples())));

    isPlaying = false;

    for (auto& thread : threads)
        thread.join();

    for (std::size_t i = 0; i < kNumParameters; ++i)
    {
        // The framework takes a value through its range and back, and the logarithmic and cubic ones round.
        const float want =
            player.parameter (static_cast<NumericalParamID> (i)).convertFrom0to1 (last[i]);
        EXPECT_NEAR (player.processor.paramValues[i]->load(), want, 1e-6f + std::abs (want) * 4e-6f)
            << paramMapper[i].name;
    }
}

TEST (Acceptance, AnEditorOpenedBeforePreparingAndReopenedBesideAudioChangesNoSound)
{
    const auto session = makeSession (48000.0, 60);
    DirectPlayer player;
    auto& processor = player.processor;
    std::unique_ptr<juce::AudioProcessorEditor> editor (processor.createEditorIfNeeded());
    ASSERT_NE (editor, nullptr);
    processor.prepareToPlay (session.sampleRate, Session::kMaxBlock);

    std::vector<juce::AudioBuffer<float>> got;
    std::atomic<int> openings { 0 };
    std::thread audio (
        [&]
        {
            while (openings < 8)
                got.push_back (player.play (session));  // loads the session's state first
        });

    auto* const messages = juce::MessageManager::getInstance();

    for (; openings < 8; ++openings)
    {
        messages->runDispatchLoopUntil (60);  // three ticks of the editor's timer
        EXPECT_TRUE (editor->createComponentSnapshot (editor->getLocalBounds()).isValid());
        editor.reset();
        messages->runDispatchLoopUntil (5);
        editor.reset (processor.createEditorIfNeeded());
    }

    audio.join();
    editor.reset();
    DirectPlayer alone (session.sampleRate);

    for (const auto& output : got)
        expectSameSamples (output, alone.play (session));
}

TEST (Acceptance, ManyInstancesOnManyThreadsEachSoundAsOneAlone)
{
    constexpr std::size_t kInstances = 8, kThreads = 4;
    const auto session = makeSession (48000.0, 70);
    const auto want = DirectPlayer (session.sampleRate).play (session);
    std::vector<std::unique_ptr<DirectPlayer>> players (kInstances);

    for (auto& player : players)
        player = std::make_unique<DirectPlayer>();

    for (const auto& player : players)  // the last rate is everybody's
        player->processor.prepareToPlay (session.sampleRate, Session::kMaxBlock);

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

    players.erase (players.begin() + 1, players.end());  // the first stays in use
    expectWorthComparing (players.front()->play (session), session);
}
