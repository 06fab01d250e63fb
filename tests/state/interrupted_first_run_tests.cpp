// SPDX-License-Identifier: AGPL-3.0-or-later
#include "first_run_fixture.h"

#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

/** A process of the program beside this one, in this test's home. */
static pid_t startProcess (std::vector<std::string> arguments)
{
    arguments.insert (arguments.begin(), VELKOR_FIRST_START);
    std::vector<char*> argv;

    for (auto& argument : arguments)
        argv.push_back (argument.data());

    argv.push_back (nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init (&actions);
    posix_spawn_file_actions_addopen (&actions, 1, "/dev/null", O_WRONLY, 0);
    pid_t process = -1;
    EXPECT_EQ (posix_spawn (&process, argv[0], &actions, nullptr, argv.data(), environ), 0);
    posix_spawn_file_actions_destroy (&actions);
    return process;
}

/** Waits for the end of a process; its exit code, or -1 if a signal ended it. */
static int await (pid_t process)
{
    int status = 0;
    EXPECT_EQ (waitpid (process, &status, 0), process);
    return WIFEXITED (status) ? WEXITSTATUS (status) : -1;
}

using InterruptedFirstRun = FirstRun;

TEST_F (InterruptedFirstRun, OnAFullDiskLeavesNoUserAndTheNextOneTriesAgain)
{
    const auto archive = archiveFile();

    for (const char* const bytes : { "0", "1", "3000", "3500", "4096" })
    {
        SCOPED_TRACE (bytes);
        EXPECT_EQ (
            await (startProcess ({ "--max-file", bytes, archive.getFullPathName().toStdString() })),
            0);
        EXPECT_FALSE (presets ("User").exists());
        expectNothingBeside();

        for (const auto& file : presets().findChildFiles (juce::File::findFiles, true))
            EXPECT_GE (file.getSize(), 3000) << file.getFullPathName();
    }

    EXPECT_EQ (await (startProcess ({ archive.getFullPathName().toStdString() })), 0);
    expectComplete();

    // A whole instance, too: no settings, no presets, and no complaint.
    ASSERT_TRUE (homeFile ("Music").deleteRecursively());
    EXPECT_EQ (await (startProcess ({ "--max-file", "0" })), 0);
    EXPECT_FALSE (globals().exists());
    EXPECT_FALSE (presets ("User").exists());
}

TEST_F (InterruptedFirstRun, KilledAtAnyMomentLeavesWholeFilesAndTheNextOneCompletesIt)
{
    const auto archive = archiveFile().getFullPathName().toStdString();
    int killed = 0, unfinished = 0, finished = 0;

    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ (await (startProcess ({ archive })), 0);
    const auto whole = std::chrono::steady_clock::now() - start;

    // First all through it, then again and again about the moment at which "User" appears.
    constexpr int kSteps = 30;
    auto moment = std::chrono::steady_clock::duration::zero();

    for (int round = 0; round < 80; ++round)
    {
        const bool goesBack = round >= kSteps && presets ("User").exists();
        moment += goesBack ? -whole / kSteps : whole / kSteps;
        homeFile ("Music").deleteRecursively();
        const auto process = startProcess ({ archive });
        std::this_thread::sleep_for (moment);
        kill (process, SIGKILL);
        killed += await (process) == -1 ? 1 : 0;

        for (const auto& file : presets ("Factory").findChildFiles (juce::File::findFiles, false))
            ASSERT_EQ (bytesOf (file), content (file.getFileName().getIntValue()))
                << "round " << round << ": " << file.getFileName();

        if (presets ("User").exists())
        {
            ++finished;
            expectComplete();
            expectNothingBeside();
            continue;
        }

        ++unfinished;
        install (makeArchive());
        expectComplete();
        expectNothingBeside();
        ASSERT_TRUE (
            presets ("User").deleteRecursively());  // tells the next round that this one was early
    }

    EXPECT_GT (killed, 0);
    EXPECT_GT (unfinished, 0);
    EXPECT_GT (finished, 0);
}

TEST_F (InterruptedFirstRun, OfSeveralProcessesAtOnceLeavesCompleteContent)
{
    const auto archive = archiveFile().getFullPathName().toStdString();

    for (int round = 0; round < 10; ++round)
    {
        homeFile ("Music").deleteRecursively();
        std::vector<pid_t> processes;

        for (int i = 0; i < 4; ++i)
            processes.push_back (startProcess ({ archive }));

        for (const auto process : processes)
            EXPECT_EQ (await (process), 0);

        expectComplete();
        expectNothingBeside();
    }

    // The same with whole instances, which all find their default and their settings.
    homeFile ("Music").deleteRecursively();
    const pid_t processes[] = { startProcess ({}), startProcess ({}), startProcess ({}) };

    for (const auto process : processes)
        EXPECT_EQ (await (process), 0);

    EXPECT_EQ (VelkorAudioProcessor().presetName, "Default");
    EXPECT_TRUE (bytesOf (globals()).ends_with ("glowRenderer=\"1\"/>\r\n"));
    EXPECT_EQ (globals().getParentDirectory().getNumberOfChildFiles (juce::File::findFiles), 1);
}
