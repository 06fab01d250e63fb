// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/legal_state.h"
#include "state/state_carriers.h"
#include "state/state_fixture.h"
#include "support/duel.h"

#include <algorithm>
#include <cmath>

// Run under the thread sanitizer: what may happen at once, happens at once.

class Stress : public StateTest
{
protected:
    /** Plays the processor on an audio thread. */
    std::thread play()
    {
        processor.prepareToPlay (48000.0, 128);
        return playNoise (128, stop,
                          [this] (auto& buffer, auto& midi)
                          {
                              processor.processBlock (buffer, midi);
                              ++blocks;

                              if (! std::isfinite (buffer.getSample (1, 100)))
                                  allFinite = false;
                          });
    }

    VelkorAudioProcessor processor;
    std::atomic<bool> stop { false }, allFinite { true };
    std::atomic<int> blocks { 0 }, readings { 0 };
};

TEST_F (Stress, RewiringAndAutomationBesideAudioRacesWithNothing)
{
    VelkorAudioProcessor neighbour;  // shares the process-wide rate
    std::atomic<bool> allInRange { true };
    auto audio = play();
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

    // As an open editor's timer and a host that saves do.
    std::thread reader (
        [&]
        {
            for (; ! stop; ++readings)
                for (int number = 0; number <= 10; ++number)
                    for (int source = 0; source <= 8; ++source)
                        if ((processor.getSignalConnection (source, number) &&
                             (source >= kNumSignalSources || number >= kNumSignalDests)) ||
                            (processor.getModConnection (source, number) &&
                             (source >= kNumModSources || number >= kNumModDests)))
                            allInRange = false;
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
    EXPECT_EQ (faultOf (processor), "");  // what the reader saw last is what the audio thread plays
}

TEST_F (Stress, LoadingAndSavingInALoopBesideAudioLeavesTheLastDocument)
{
    auto audio = play();
    std::thread host (  // hosts ask for the name on any thread
        [this]
        {
            while (! stop)
                readings += processor.getProgramName (0).isNotEmpty() ? 1 : 0;
        });

    const auto documents = factoryDocuments();
    ASSERT_EQ (documents.size(), 64);
    juce::MemoryBlock chunk;

    for (int i = 0; i < 20 * 64 || blocks < 200 || readings < 1; ++i)
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
    EXPECT_EQ (textOf (processor).toStdString(), keptDocument ("default_saved.zbpreset"));
    EXPECT_EQ (faultOf (processor), "");
}

TEST_F (Stress, LoadingOnAHostsThreadBesideAnOpenEditorRacesWithNothing)
{
    juce::MemoryBlock chunk;
    processor.getStateInformation (chunk);
    std::unique_ptr<juce::AudioProcessorEditor> editor (processor.createEditorIfNeeded());
    std::thread host (
        [&]
        {
            for (juce::MemoryBlock saved; ! stop; ++readings)
            {
                processor.setStateInformation (chunk.getData(), static_cast<int> (chunk.getSize()));
                processor.getStateInformation (saved);
            }
        });
    auto* const parameter = processor.parameterTree.getParameter ("Pan 1");

    for (int i = 0; i < 100 || readings < 100; ++i)
    {
        juce::MessageManager::getInstance()->runDispatchLoopUntil (5);  // its timer, the store's
        parameter->setValueNotifyingHost (0.001f * static_cast<float> (i % 1000));
        (void) processor.parameterTree.copyState();  // flushes, which makes the undo action
        processor.undoManager.undo();                // as a click does
    }

    stop = true;
    host.join();
    processor.editorBeingDeleted (editor.get());
    editor.reset();
    EXPECT_EQ (faultOf (processor), "");
}
