// SPDX-License-Identifier: AGPL-3.0-or-later
#include "audio_guard.h"
#include "support/duel.h"

#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <mutex>
#include <semaphore.h>
#include <shared_mutex>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
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

TEST (AudioGuard, NamesEachCallThatItIsThereToSee)
{
    static void* volatile kept = nullptr;  // without it the compiler may leave an allocation out
    static std::shared_mutex lock;
    static struct stat status;
    static sem_t semaphore;
    sem_init (&semaphore, 0, 1);

    struct Forbidden
    {
        const char* name;
        void (*call)();
    };

    const Forbidden calls[] = {
        { "malloc", [] { kept = std::malloc (16); } },
        { "free", [] { std::free (kept); } },
        { "aligned_alloc", [] { kept = std::aligned_alloc (64, 64); } },
        { "free", [] { std::free (kept); } },
        { "posix_memalign",
          []
          {
              void* block = nullptr;
              EXPECT_EQ (posix_memalign (&block, 64, 64), 0);
              std::free (block);
          } },
        { "pthread_rwlock_rdlock", [] { const std::shared_lock reader (lock); } },
        { "pthread_rwlock_wrlock", [] { const std::unique_lock writer (lock); } },
        { "sem_wait", [] { sem_wait (&semaphore); } },
        { "openat", [] { close (openat (AT_FDCWD, "/dev/null", O_RDONLY)); } },
        { "stat", [] { stat ("/", &status); } },
        { "fstatat", [] { fstatat (AT_FDCWD, "/", &status, 0); } },
        { "access", [] { EXPECT_EQ (access ("/", F_OK), 0); } },
        { "unlink", [] { EXPECT_NE (unlink ("/dev/null/none"), 0); } },
    };

    for (const auto& [name, call] : calls)
    {
        {
            const AudioGuard guard;
            call();
        }

        EXPECT_STREQ (AudioGuard::firstCall(), name);
    }

    sem_destroy (&semaphore);
}

TEST (AudioGuard, LeavesAFileTheModeThatItWasOpenedWith)
{
    const std::string path = std::string (std::getenv ("HOME")) + "/mode";
    const mode_t maskBefore = umask (0);
    close (open (path.c_str(), O_CREAT | O_WRONLY, 0640));
    umask (maskBefore);
    struct stat status = {};
    ASSERT_EQ (stat (path.c_str(), &status), 0);
    EXPECT_EQ (status.st_mode & 0777u, 0640u);
}

TEST (AudioGuard, CountsEveryCall)
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
    int recovered = 0;

    for (int i = 0; i < 10; ++i)
    {
        buffer.clear();
        buffer.setSample (0, 3, 1.0f);
        guardedBlock (processor, buffer, midi);

        // The input is never quite silent, so only the clearing leaves these at 0.
        if (processor.engine->signal.signalDests[destSaturation1] == 0.0f &&
            processor.engine->envelope.envState == 0.0f)
            ++recovered;
    }

    EXPECT_EQ (recovered, 10) << "what doubles 500 times has run away";
}
