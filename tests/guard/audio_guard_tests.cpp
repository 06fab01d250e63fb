// SPDX-License-Identifier: AGPL-3.0-or-later
#include "audio_guard.h"
#include "state/state_carriers.h"
#include "state/state_fixture.h"
#include "support/duel.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <mutex>
#include <semaphore.h>
#include <unistd.h>

/** One guarded block; adds a failure that names the first forbidden call. */
static void guardedBlock (VelkorAudioProcessor& processor, juce::AudioBuffer<float>& buffer,
                          juce::MidiBuffer& midi)
{
    {
        const AudioGuard guard;
        processor.processBlock (buffer, midi);
    }

    EXPECT_EQ (AudioGuard::calls(), 0) << AudioGuard::firstCall() << " on the audio thread";
}

TEST (AudioGuard, CountsAndNamesTheCallsThatItIsThereToSee)
{
    static void* volatile kept = nullptr;  // without it the compiler may leave an allocation out
    static std::mutex mutex;
    static sem_t semaphore;
    static char byte;
    sem_init (&semaphore, 0, 1);

    const std::pair<const char*, void (*)()> calls[] = {
        { "malloc", [] { kept = std::malloc (16); } },
        { "realloc", [] { kept = std::realloc (kept, 100000); } },
        { "free", [] { std::free (kept); } },
        { "aligned_alloc", [] { kept = std::aligned_alloc (64, 64); } },
        { "free", [] { std::free (kept); } },
        { "pthread_mutex_lock", [] { const std::lock_guard lock (mutex); } },
        { "sem_wait", [] { EXPECT_EQ (sem_wait (&semaphore), 0); } },
        { "open", [] { EXPECT_EQ (open ("", O_RDONLY), -1); } },
        { "openat", [] { EXPECT_EQ (openat (AT_FDCWD, "", O_RDONLY), -1); } },
        { "fopen", [] { kept = std::fopen ("", "r"); } },
        { "read", [] { EXPECT_EQ (read (-1, &byte, 1), -1); } },
        { "access", [] { EXPECT_EQ (access ("/", F_OK), 0); } },
    };

    for (const auto& [name, call] : calls)
    {
        {
            const AudioGuard guard;
            call();
        }

        EXPECT_STREQ (AudioGuard::firstCall(), name);
        EXPECT_GE (AudioGuard::calls(), 1);
    }
}

TEST (AudioThread, NeitherAllocatesNorLocksNorTouchesFilesWhateverIsPlayedAndRunsAway)
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
    int mended = 0;

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

        midi.addEvent (juce::MidiMessage::noteOn (1, 30 + noise.below (70), 1.0f), 0);
        midi.addEvent (juce::MidiMessage::noteOff (1, 30 + noise.below (70)), 0);
        playHead.position = i * 0.37;
        guardedBlock (processor, buffer, midi);
        midi.clear();

        // The input is never quite silent, so only the clearing after a runaway leaves these at 0.
        if (n > 0 && processor.engine->signal.signalDests[destSaturation1] == 0.0f &&
            processor.engine->envelope.envState == 0.0f)
            ++mended;
    }

    EXPECT_GT (mended, 0) << "saturators that feed themselves have to run away";
}

using LoadGuard = StateTest;

TEST_F (LoadGuard, LoadingTheWholeBankMakesNoAudioBlockAllocateOrWait)
{
    VelkorAudioProcessor processor;
    processor.prepareToPlay (48000.0, 128);
    const auto documents = factoryDocuments();
    ASSERT_EQ (documents.size(), 64);
    std::atomic<bool> stop { false };
    std::atomic<int> blocks { 0 };
    auto audio = playNoise (128, stop,
                            [&] (auto& buffer, auto& midi)
                            {
                                guardedBlock (processor, buffer, midi);
                                ++blocks;
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
}
