// SPDX-License-Identifier: AGPL-3.0-or-later
#include "support/duel.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <gtest/gtest.h>
#include <thread>

// Run under the thread sanitizer: what may happen at once, happens at once.

TEST (Stress, RewiringAndAutomationBesideAudioRacesWithNothing)
{
    VelkorAudioProcessor processor;
    VelkorAudioProcessor neighbour;  // shares the process-wide rate
    processor.prepareToPlay (48000.0, 256);
    std::atomic<bool> stop { false };
    std::atomic<int> blocks { 0 };
    std::atomic<bool> allFinite { true };

    std::thread audio (
        [&]
        {
            juce::AudioBuffer<float> buffer (2, 256);
            juce::MidiBuffer midi;
            Noise noise (5);

            while (! stop)
            {
                for (int channel = 0; channel < 2; ++channel)
                    for (int n = 0; n < 256; ++n)
                        buffer.setSample (channel, n, noise());

                processor.processBlock (buffer, midi);

                if (! std::isfinite (buffer.getSample (0, 100)))
                    allFinite = false;

                ++blocks;
            }
        });

    std::thread other (
        [&]
        {
            juce::AudioBuffer<float> buffer (2, 64);
            juce::MidiBuffer midi;

            for (int i = 0; ! stop; ++i)
            {
                neighbour.prepareToPlay (i % 2 == 0 ? 44100.0 : 96000.0, 64);
                buffer.clear();
                neighbour.processBlock (buffer, midi);
            }
        });

    std::atomic<int> readings { 0 };
    std::atomic<bool> allInRange { true };

    // As an open editor's timer and a host that saves do.
    std::thread reader (
        [&]
        {
            const auto& engine = *processor.engine;

            while (! stop)
            {
                for (int number = 0; number <= 10; ++number)
                    for (int source = 0; source <= 8; ++source)
                    {
                        const bool isConnected = signal_matrix_get (engine.signal, source, number);
                        const bool isRouted = processor.getModConnection (source, number);

                        if ((isConnected &&
                             (source >= kNumSignalSources || number >= kNumSignalDests)) ||
                            (isRouted && (source >= kNumModSources || number >= kNumModDests)))
                            allInRange = false;
                    }

                ++readings;
            }
        });

    Noise noise (6);

    for (int i = 0; i < 20000 || blocks < 50 || readings < 50; ++i)
    {
        processor.setSignalConnection (noise.below (9), noise.below (11), noise.chance (0.5f));
        processor.setModConnection (noise.below (7), noise.below (11), noise.chance (0.5f));
        auto* const parameter =
            processor.parameterTree.getParameter (paramMapper[noise.below (kNumParameters)].name);
        parameter->setValueNotifyingHost (noise.unit());
        EXPECT_FALSE (parameter->getCurrentValueAsText().isEmpty());
    }

    stop = true;
    audio.join();
    other.join();
    reader.join();
    EXPECT_TRUE (allFinite);
    EXPECT_TRUE (allInRange);

    // What the reader saw last is what the audio thread plays.
    const auto countOf = [] (const auto& flags)
    { return std::count (flags.begin(), flags.end(), true); };
    const auto& signal = processor.engine->signal;
    EXPECT_EQ (countOf (signal.connected), signal.connectionCount);
    const auto& modulation = processor.engine->modulation;
    EXPECT_EQ (countOf (modulation.modGrid), modulation.router.routes.size());
}
