// SPDX-License-Identifier: AGPL-3.0-or-later
#include "first_run_fixture.h"

#include <BinaryData.h>
#include <sys/stat.h>

TEST_F (FirstRun, OfTheShippedArchiveEndsWithItsDefaultPresetLoaded)
{
    const VelkorAudioProcessor processor;
    EXPECT_EQ (processor.presetFolder, presets());
    EXPECT_EQ (processor.presetName, "Default");
    EXPECT_EQ (valueOf (processor, "Delay 1 Time"), 501.0f);
    EXPECT_EQ (valueOf (processor, "Pan 2"), 1.0f);
    EXPECT_EQ (connectionList (processor),
               (std::vector<std::string> { "0>0", "1>1", "2>8", "3>9" }));
    EXPECT_TRUE (routeList (processor).empty());
    expectNothingBeside();

    // The archive holds files of the two folders, sorted, and nothing else.
    juce::MemoryInputStream stream (BinaryData::Presets_zip, BinaryData::Presets_zipSize, false);
    juce::ZipFile zip (stream);
    ASSERT_GE (zip.getNumEntries(), 1);

    for (int i = 0; i < zip.getNumEntries(); ++i)
    {
        const auto& name = zip.getEntry (i)->filename;
        EXPECT_TRUE (name == "User/Default.zbpreset" ||
                     (name.startsWith ("Factory/") && name.endsWith (".zbpreset")))
            << name;
        EXPECT_TRUE (presets (name).existsAsFile()) << name;
        EXPECT_FALSE (bytesOf (presets (name)).find ('\r') != std::string::npos) << name;

        if (i > 0)
        {
            EXPECT_LT (zip.getEntry (i - 1)->filename.compare (name), 0) << name;
        }
    }
}

TEST_F (FirstRun, HappensAgainOnlyOnceUserIsGone)
{
    install (makeArchive());
    expectComplete();

    ASSERT_TRUE (presets (factoryName (3)).deleteFile());
    putFile (presets (factoryName (4)), "changed");
    putFile (presets ("Factory/mine.zbpreset"), "mine");
    install (makeArchive());
    EXPECT_FALSE (presets (factoryName (3)).exists());
    EXPECT_EQ (bytesOf (presets (factoryName (4))), "changed");

    ASSERT_TRUE (presets ("User").deleteRecursively());
    install (makeArchive());
    expectComplete();
    EXPECT_EQ (bytesOf (presets ("Factory/mine.zbpreset")), "mine");

    ASSERT_TRUE (presets ("Factory").deleteRecursively());
    install (makeArchive());
    EXPECT_FALSE (presets ("Factory").exists());
}

TEST_F (FirstRun, TakesAFileNamedUserForContent)
{
    putFile (presets ("User"), "a file");
    const VelkorAudioProcessor processor;
    EXPECT_EQ (processor.presetName, "- Init -");
    EXPECT_EQ (bytesOf (presets ("User")), "a file");
    EXPECT_FALSE (presets ("Factory").exists());
    EXPECT_EQ (valueOf (processor, "Delay 1 Time"), 500.0f);
    EXPECT_EQ (connectionList (processor).size(), 6u);
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

    ASSERT_TRUE (file.deleteFile() && file.createDirectory());
    EXPECT_EQ (nameOfNew(), "- Init -");
    ASSERT_TRUE (file.deleteRecursively());
    EXPECT_EQ (nameOfNew(), "- Init -");
    ASSERT_EQ (mkfifo (file.getFullPathName().toRawUTF8(), 0600), 0);
    EXPECT_EQ (nameOfNew(), "- Init -");

    ASSERT_TRUE (file.deleteFile());
    putFile (file, "<velkorsettings PresetName=\"Mine\"><Parameters/></velkorsettings>");
    EXPECT_EQ (nameOfNew(), "Mine");
}

TEST_F (FirstRun, ComesUpOnItsOwnDefaultsWhereNothingCanBeWritten)
{
    putFile (homeFile ("Music"), "a file where the folder should be");
    const VelkorAudioProcessor processor;
    EXPECT_EQ (processor.presetName, "- Init -");
    EXPECT_EQ (valueOf (processor, "Delay 1 Multiplier"), 1.0f);
    EXPECT_EQ (connectionList (processor).size(), 6u);
}

TEST_F (FirstRun, RemovesResourceForksAndIsNotLedAstrayByNames)
{
    putFile (presets ("__MACOSX/._old"), "old");
    install (makeArchive ({ { "__MACOSX/._Factory", "fork" }, { "Empty/", "" } }));
    expectComplete();
    expectNothingBeside();

    ASSERT_TRUE (presets().deleteRecursively());
    install (makeArchive ({ { "../../escaped.txt", "x" } }));
    EXPECT_FALSE (homeFile ("Music/Zubrow Labs/escaped.txt").exists());
    EXPECT_FALSE (homeFile ("Music/Zubrow Labs/Velkor/escaped.txt").exists());
    EXPECT_FALSE (presets ("User").exists());
    expectNothingBeside();
}

TEST_F (FirstRun, LeavesNoUserBehindAnArchiveThatIsDamaged)
{
    auto archive = makeArchive();
    juce::zeromem (archive.begin(), archive.getSize());
    install (archive);
    EXPECT_FALSE (presets ("User").exists());

    // The directory at the end still stands; of some file in the middle the data are gone.
    archive = makeArchive();
    juce::zeromem (archive.begin() + 400, 200);
    install (archive);
    EXPECT_FALSE (presets ("User").exists());
    expectNothingBeside();

    putFile (presets ("Factory"), "a file where the folder should be");
    install (makeArchive());
    EXPECT_FALSE (presets ("User").exists());
    EXPECT_EQ (bytesOf (presets ("Factory")), "a file where the folder should be");
}
