// SPDX-License-Identifier: AGPL-3.0-or-later
#include "audio_guard.h"
#include "state/state_carriers.h"
#include "state/state_fixture.h"
#include "support/duel.h"

#include <atomic>
#include <string>
#include <thread>

class LoadGuard : public StateTest
{
};

TEST_F (LoadGuard, LoadingTheWholeBankMakesNoAudioBlockAllocateOrWait)
{
    VelkorAudioProcessor processor;
    processor.prepareToPlay (48000.0, 128);
    const auto documents = factoryDocuments();
    ASSERT_EQ (documents.size(), 64);
    std::atomic<bool> stop { false };
    std::atomic<int> blocks { 0 };
    int forbidden = 0;
    std::string firstForbidden;

    std::thread audio (
        [&]
        {
            juce::AudioBuffer<float> buffer (2, 128);
            juce::MidiBuffer midi;
            Noise noise (12);

            while (! stop)
            {
                for (int channel = 0; channel < 2; ++channel)
                    for (int n = 0; n < 128; ++n)
                        buffer.setSample (channel, n, 0.3f * noise());

                midi.clear();
                midi.addEvent (juce::MidiMessage::noteOn (1, 30 + noise.below (70), 1.0f), 0);

                {
                    const AudioGuard guard;
                    processor.processBlock (buffer, midi);
                }

                if (AudioGuard::calls() > 0 && forbidden++ == 0)
                    firstForbidden = AudioGuard::firstCall();

                ++blocks;
            }
        });

    int loadsBesideABlock = 0;

    for (int i = 0; i < 5 * 64 || loadsBesideABlock < 64; ++i)
    {
        const int before = blocks;
        setStateFromText (processor, documents[i % 64]);
        loadsBesideABlock += blocks > before ? 1 : 0;
    }

    stop = true;
    audio.join();
    EXPECT_EQ (forbidden, 0) << firstForbidden << " on the audio thread";
}
