// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/legal_state.h"
#include "state/state_carriers.h"
#include "state/state_fixture.h"
#include "support/duel.h"

#include <atomic>
#include <cmath>
#include <thread>

class LoadStress : public StateTest
{
};

TEST_F (LoadStress, LoadingAndSavingInALoopBesideAudioLeavesTheLastDocument)
{
    VelkorAudioProcessor processor;
    processor.prepareToPlay (48000.0, 128);
    std::atomic<bool> stop { false };
    std::atomic<int> blocks { 0 };
    std::atomic<bool> allFinite { true };

    std::thread audio (
        [&]
        {
            juce::AudioBuffer<float> buffer (2, 128);
            juce::MidiBuffer midi;
            Noise noise (8);

            while (! stop)
            {
                for (int channel = 0; channel < 2; ++channel)
                    for (int n = 0; n < 128; ++n)
                        buffer.setSample (channel, n, noise());

                processor.processBlock (buffer, midi);

                if (! std::isfinite (buffer.getSample (1, 100)))
                    allFinite = false;

                ++blocks;
            }
        });

    // Hosts ask for the name on any thread.
    std::atomic<int> namesHeard { 0 };
    std::thread host (
        [&]
        {
            while (! stop)
                namesHeard += processor.getProgramName (0).isNotEmpty() ? 1 : 0;
        });

    const auto documents = factoryDocuments();
    ASSERT_EQ (documents.size(), 64);
    juce::MemoryBlock chunk;

    for (int i = 0; i < 20 * 64 || blocks < 200; ++i)
    {
        setStateFromText (processor, documents[i % 64]);

        if (i % 7 == 0)
        {
            processor.getStateInformation (chunk);
            processor.setStateInformation (chunk.getData(), static_cast<int> (chunk.getSize()));
        }
    }

    setStateFromText (processor, juce::String (keptDocument ("default_saved.zbpreset")));
    stop = true;
    audio.join();
    host.join();
    EXPECT_TRUE (allFinite);
    EXPECT_GT (namesHeard, 0);
    EXPECT_EQ (processor.presetName, "Default");
    EXPECT_EQ (connectionList (processor).size(), 4u);
    EXPECT_TRUE (routeList (processor).empty());
    EXPECT_EQ (faultOf (processor), "");
}
