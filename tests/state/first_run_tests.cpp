// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/first_run_install.h"
#include "state_fixture.h"

#include <chrono>
#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

/** Installs of a made-up archive, which is like the shipped one and has files that tell each other apart. */
class FirstRun : public StateTest
{
protected:
    static constexpr int kFactoryFiles = 64;

    /** What the n-th factory file of the made-up archive holds. */
    static std::string content (int n)
    {
        return std::string (static_cast<std::size_t> (3000 + 50 * n),
                            static_cast<char> ('a' + n % 26));
    }

    static juce::String factoryName (int n)
    {
        return "Factory/" + juce::String (n).paddedLeft ('0', 2) + " - Name.zbpreset";
    }

    static inline const auto kDefault = std::string (5000, 'd');

    /** An archive like the shipped one, with a resource fork as a Mac leaves it. */
    static juce::MemoryBlock makeArchive()
    {
        juce::ZipFile::Builder builder;
        const auto add = [&] (const juce::String& name, const std::string& bytes)
        {
            builder.addEntry (new juce::MemoryInputStream (bytes.data(), bytes.size(), true), 9,
                              name, juce::Time (2000, 0, 1, 0, 0));
        };

        for (int n = 0; n < kFactoryFiles; ++n)
            add (factoryName (n), content (n));

        add ("User/Default.zbpreset", kDefault);
        add ("__MACOSX/._Factory", "fork");
        juce::MemoryOutputStream out;
        builder.writeToStream (out, nullptr);
        return out.getMemoryBlock();
    }

    void install (const juce::MemoryBlock& archive) const
    {
        installFirstRunContent (presets(), archive.getData(), archive.getSize());
    }

    /** An install by another process, which may be killed. */
    pid_t startInstall (const juce::MemoryBlock& archive) const
    {
        const pid_t process = fork();

        if (process == 0)
        {
            install (archive);
            _exit (0);
        }

        return process;
    }

    /** Whatever else is there or not: no half file, and nothing that no install leaves. */
    void expectOnlyWholeFiles() const
    {
        for (const auto& file : presets ("Factory").findChildFiles (juce::File::findFiles, false))
            EXPECT_EQ (bytesOf (file), content (file.getFileName().getIntValue()))
                << file.getFileName();

        for (const auto& entry :
             presets().findChildFiles (juce::File::findFilesAndDirectories, false))
            EXPECT_TRUE (entry.getFileName() == "Factory" || entry.getFileName() == "User")
                << entry.getFileName();
    }

    void expectComplete() const
    {
        EXPECT_EQ (presets ("Factory").getNumberOfChildFiles (juce::File::findFiles),
                   kFactoryFiles);
        EXPECT_EQ (bytesOf (presets ("User/Default.zbpreset")), kDefault);
        expectOnlyWholeFiles();
    }
};

TEST_F (FirstRun, OfTheShippedArchiveEndsWithItsDefaultPresetLoaded)
{
    const VelkorAudioProcessor processor;
    EXPECT_EQ (processor.presetName, "Default");
    EXPECT_EQ (valueOf (processor, "Delay 1 Time"), 501.0f);
    EXPECT_EQ (connectionList (processor),
               (std::vector<std::string> { "0>0", "1>1", "2>8", "3>9" }));
    EXPECT_EQ (presets ("Factory").getNumberOfChildFiles (juce::File::findFiles), kFactoryFiles);
    EXPECT_EQ (presets().getNumberOfChildFiles (juce::File::findFilesAndDirectories), 2);
}

TEST_F (FirstRun, HappensAgainOnlyOnceUserIsGone)
{
    putFile (presets ("__MACOSX/._old"), "old");
    install (makeArchive());
    expectComplete();

    ASSERT_TRUE (presets (factoryName (3)).deleteFile());
    putFile (presets (factoryName (4)), "changed");
    install (makeArchive());
    EXPECT_FALSE (presets (factoryName (3)).exists());
    EXPECT_EQ (bytesOf (presets (factoryName (4))), "changed");

    putFile (presets ("mine.zbpreset"), "mine");
    ASSERT_TRUE (presets ("User").deleteRecursively());
    install (makeArchive());
    EXPECT_EQ (bytesOf (presets ("mine.zbpreset")), "mine");
    ASSERT_TRUE (presets ("mine.zbpreset").deleteFile());
    expectComplete();

    ASSERT_TRUE (presets ("Factory").deleteRecursively());
    install (makeArchive());
    EXPECT_FALSE (presets ("Factory").exists());
}

TEST_F (FirstRun, LoadsNoDefaultThatIsNoneOfOurs)
{
    const auto file = presets ("User/Default.zbpreset");
    const auto nameOfNew = [] { return VelkorAudioProcessor().presetName; };

    for (const char* const text : { "<Other PresetName=\"x\"><Parameters/></Other>", "damaged", "",
                                    "<VelkorSettings PresetName=\"x\"/>" })
    {
        putFile (file, text);
        EXPECT_EQ (nameOfNew(), "- Init -") << text;
        EXPECT_EQ (bytesOf (file), text);
    }

    putFile (file, "<velkorsettings PresetName=\"Mine\"><Parameters/></velkorsettings>");
    EXPECT_EQ (nameOfNew(), "Mine");
}

TEST_F (FirstRun, ComesUpOnItsOwnDefaultsWhereItMayNotUnpack)
{
    for (const auto& inTheWay : { presets ("User"), presets ("Factory"), homeFile ("Music") })
    {
        putFile (inTheWay, "a file where the folder should be");
        const VelkorAudioProcessor processor;
        EXPECT_EQ (processor.presetName, "- Init -");
        EXPECT_EQ (valueOf (processor, "Delay 1 Multiplier"), 1.0f);
        EXPECT_EQ (connectionList (processor).size(), 6u);
        EXPECT_EQ (bytesOf (inTheWay), "a file where the folder should be");
        EXPECT_FALSE (presets ("Factory").isDirectory() || presets ("User").isDirectory());
        ASSERT_TRUE (homeFile ("Music").deleteRecursively());
    }
}

/** Runs something while no file may become larger than this, as on a disk that is about to be full: the last write
    is short, those after it fail. */
template <typename Run>
static void runWithLargestFile (rlim_t bytes, Run&& run)
{
    rlimit before = {};
    getrlimit (RLIMIT_FSIZE, &before);
    const rlimit low { bytes, before.rlim_max };
    const auto handler = std::signal (SIGXFSZ, SIG_IGN);
    setrlimit (RLIMIT_FSIZE, &low);
    run();
    setrlimit (RLIMIT_FSIZE, &before);
    std::signal (SIGXFSZ, handler);
}

TEST_F (FirstRun, OnAFullDiskLeavesNoUserAndTheNextOneTriesAgain)
{
    const auto archive = makeArchive();

    for (const rlim_t bytes : { 0u, 1u, 3000u, 3500u, 4096u })
    {
        SCOPED_TRACE (bytes);
        runWithLargestFile (bytes, [&] { install (archive); });
        EXPECT_FALSE (presets ("User").exists());
        expectOnlyWholeFiles();
    }

    install (archive);
    expectComplete();

    // A whole instance, too: no settings, no presets, and no complaint.
    ASSERT_TRUE (homeFile ("Music").deleteRecursively());
    runWithLargestFile (0, [] { const VelkorAudioProcessor processor; });
    EXPECT_FALSE (globals().exists() || presets ("User").exists());
}

TEST_F (FirstRun, KilledAtAnyMomentIsCompletedByTheNextOne)
{
    const auto archive = makeArchive();
    const auto start = std::chrono::steady_clock::now();
    waitpid (startInstall (archive), nullptr, 0);
    const auto whole = std::chrono::steady_clock::now() - start;
    auto moment = std::chrono::steady_clock::duration::zero();
    bool isFinished = false;
    int unfinished = 0;

    // First all through it, then again and again about the moment at which "User" appears.
    for (int round = 0; round < 80; ++round)
    {
        SCOPED_TRACE (round);
        moment += (isFinished ? -whole : whole) / 30;
        homeFile ("Music").deleteRecursively();
        const pid_t process = startInstall (archive);
        std::this_thread::sleep_for (moment);
        kill (process, SIGKILL);
        waitpid (process, nullptr, 0);
        isFinished = presets ("User").exists();
        unfinished += isFinished ? 0 : 1;
        install (archive);  // does nothing where "User" says that all is there
        expectComplete();
    }

    EXPECT_GT (unfinished, 0);
}

TEST_F (FirstRun, OfSeveralProcessesAtOnceLeavesCompleteContent)
{
    const auto archive = makeArchive();

    for (int round = 0; round < 10; ++round)
    {
        homeFile ("Music").deleteRecursively();

        for (int i = 0; i < 4; ++i)
            startInstall (archive);

        for (int i = 0; i < 4; ++i)
            wait (nullptr);

        expectComplete();
    }
}
