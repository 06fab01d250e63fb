// SPDX-License-Identifier: AGPL-3.0-or-later
#include "support/duel.h"

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

    Noise noise (6);

    for (int i = 0; i < 20000 || blocks < 50; ++i)
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
    EXPECT_TRUE (allFinite);
}
