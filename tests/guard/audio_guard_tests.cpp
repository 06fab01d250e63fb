// SPDX-License-Identifier: AGPL-3.0-or-later
#include "audio_guard.h"
#include "support/duel.h"

#include <gtest/gtest.h>
#include <mutex>
#include <vector>

namespace
{

/** One guarded block; adds a failure that names the first forbidden call. */
void guardedBlock (VelkorAudioProcessor& processor, juce::AudioBuffer<float>& buffer,
                   juce::MidiBuffer& midi)
{
    {
        const AudioGuard guard;
        processor.processBlock (buffer, midi);
    }

    EXPECT_EQ (AudioGuard::calls(), 0) << AudioGuard::firstCall() << " on the audio thread";
}

}  // namespace

TEST (AudioGuard, SeesWhatItIsThereToSee)
{
    std::mutex mutex;

    {
        const AudioGuard guard;
        const std::vector<float> grown (100);
        const std::lock_guard lock (mutex);
        ASSERT_EQ (grown.size(), 100u);
    }

    EXPECT_GE (AudioGuard::calls(), 3) << "malloc, pthread_mutex_lock, free";
}

TEST (AudioThread, NeitherAllocatesNorLocksNorTouchesFilesWhateverIsPlayed)
{
    VelkorAudioProcessor processor;
    FakePlayHead playHead;
    playHead.tempo = 133.0;
    processor.setPlayHead (&playHead);
    processor.prepareToPlay (48000.0, 512);
    Noise noise (11);

    for (int source = 0; source < kNumSignalSources; ++source)
        for (int destination = 0; destination < kNumSignalDests; ++destination)
            processor.setSignalConnection (source, destination, true);

    for (int source = 0; source < kNumModSources; ++source)
        for (int dest = 0; dest < kNumModDests; ++dest)
            processor.setModConnection (source, dest, true);

    juce::AudioBuffer<float> storage (2, 4096);
    juce::MidiBuffer midi;

    for (int i = 0; i < 300; ++i)
    {
        for (int edits = 0; edits < 4; ++edits)
        {
            auto* const parameter = processor.parameterTree.getParameter (
                paramMapper[noise.below (kNumParameters)].name);
            parameter->setValueNotifyingHost (noise.unit());
        }

        const int lengths[] = { 0, 1, 3, 16, 61, 512, 4096 };
        const int n = lengths[noise.below (7)];
        juce::AudioBuffer<float> buffer (storage.getArrayOfWritePointers(), 2, n);

        for (int channel = 0; channel < 2; ++channel)
            for (int k = 0; k < n; ++k)
                buffer.setSample (channel, k, noise());

        midi.clear();
        midi.addEvent (juce::MidiMessage::noteOn (1, 30 + noise.below (70), 1.0f), 0);
        midi.addEvent (juce::MidiMessage::noteOff (1, 30 + noise.below (70)), 0);
        playHead.position = i * 0.37;
        guardedBlock (processor, buffer, midi);
    }
}

TEST (AudioThread, ABlockThatRunsAwayIsMendedWithoutAllocating)
{
    VelkorAudioProcessor processor;
    processor.prepareToPlay (48000.0, 512);

    for (int from : { sourceSaturation1, sourceSaturation2, sourceInputL })
        for (int to : { destSaturation1, destSaturation2, destFilter1 })
            processor.setSignalConnection (from, to, true);

    juce::AudioBuffer<float> buffer (2, 512);
    juce::MidiBuffer midi;

    for (int i = 0; i < 10; ++i)
    {
        buffer.clear();
        buffer.setSample (0, 3, 1.0f);
        guardedBlock (processor, buffer, midi);
    }
}
