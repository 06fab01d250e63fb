// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/archive_bench.h"
#include "browser/archive_export.h"
#include "browser/archive_import.h"
#include "browser/browser_fixture.h"
#include "browser/browser_window_fixture.h"
#include "browser/disk_limits.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

class BrowserArchives : public BrowserTest
{
protected:
    /** Puts an archive beside the folder. */
    juce::File put (const juce::String& name, const juce::MemoryBlock& archive) const
    {
        const auto file = homeFile (name);
        putFile (file, { archive.begin(), archive.getSize() });
        return file;
    }

    juce::File put (const std::vector<ArchiveEntry>& entries) const
    {
        return put ("Pack.zip", makeArchive (entries));
    }

    /** Unpacks such an archive into "out"; how many files it gave. */
    int unpack (const std::vector<ArchiveEntry>& entries) const
    {
        return unpackArchive (put (entries), homeFile ("out"));
    }

    void link (const juce::String& path, const juce::File& target) const
    {
        ASSERT_EQ (symlink (target.getFullPathName().toRawUTF8(),
                            homeFile (path).getFullPathName().toRawUTF8()),
                   0);
    }
};

TEST_F (BrowserArchives, NeverWriteOutsideTheirFolder)
{
    const auto planted = homeFile ("planted").getFullPathName().toStdString();
    const auto archive = put ({ { "../evil", "evil" },
                                { "a/../../evil", "evil" },
                                { "..\\evil", "evil" },
                                { homeFile ("evil").getFullPathName(), "evil" },
                                { "..", "evil" },
                                { "", "evil" },
                                { "l", "..", true },
                                { "l/evil", "evil" },
                                { "f", planted, true },
                                { "f", "a file" },
                                { "../out-of/", "" },
                                { "back\\y.zbpreset", "y" },
                                { "empty/", "" } });
    EXPECT_EQ (unpackArchive (archive, homeFile ("out")), 3);
    EXPECT_EQ (contents (homeFile ("out")), "back\\y.zbpreset=y empty/ f=a file l/ l/evil=evil");
    EXPECT_EQ (unpack ({ { "a\\..\\..\\evil", "evil" }, { "a\\..\\..\\planted", "" } }), 0);

    for (const auto* name : { "evil", "planted", "out-of" })
        EXPECT_FALSE (homeFile (name).exists()) << name;

    // Links that were there before lead nowhere either; one in the place of a file gives way to it.
    putFile (homeFile ("precious/p"), "p");
    link ("out/linked", homeFile ("precious"));
    link ("out/file", homeFile ("precious/p"));
    EXPECT_EQ (unpack ({ { "linked/new", "n" }, { "linked/sub/", "" }, { "file", "f" } }), 1);
    EXPECT_EQ (contents (homeFile ("precious")), "p=p");
    EXPECT_EQ (bytesOf (homeFile ("out/file")), "f");
}

TEST_F (BrowserArchives, KeepWhatIsThereWhereTheyAreDamaged)
{
    putFile (homeFile ("out/kept"), "kept");
    putFile (homeFile ("out/old"), "old and longer");
    homeFile ("out/folder").createDirectory();
    auto torn = makeArchive ({ { "kept", "0123456789 0123456789" },
                               { "old", "new" },
                               { "folder", "a file" },                // never a folder for a file,
                               { "kept/d", "d" } });                  // nor the other way round
    std::memset (static_cast<char*> (torn.getData()) + 36, 0xff, 8);  // into the packed data
    EXPECT_EQ (unpackArchive (put ("Pack.zip", torn), homeFile ("out")), 1);

    for (const juce::uint32 claimed : { 9u, 11u, 0u })
    {
        auto liar = makeArchive ({ { "kept", "0123456789" } });
        claimLength (liar, 0, claimed);
        EXPECT_EQ (unpackArchive (put ("Pack.zip", liar), homeFile ("out")), 0) << claimed;
    }

    // An archive cut anywhere has lost its list of entries.
    const auto whole = makeArchive ({ { "new", "n" } });

    for (std::size_t size = 0; size + 22 <= whole.getSize(); size += 7)
        EXPECT_EQ (unpackArchive (put ("Pack.zip", { whole.getData(), size }), homeFile ("out")), 0)
            << size;

    EXPECT_EQ (contents (homeFile ("out")), "folder/ kept=kept old=new");
}

// The framework copies more than it has made room for, of a text that is no UTF-8.
TEST_F (BrowserArchives, MayHaveNamesInAnEightBitEncoding)
{
    auto archive = makeArchive ({ { "Pi~ce.zbpreset", "x" } });
    std::replace (archive.begin(), archive.end(), '~', '\xe8');  // begins a longer character
    EXPECT_EQ (unpackArchive (put ("Pack.zip", archive), lib()), 1);
    EXPECT_TRUE (lib (juce::String::fromUTF8 ("Pi\xc3\xa8"
                                              "ce.zbpreset"))
                     .existsAsFile());
}

TEST_F (BrowserArchives, OfPathsBeyondReasonLeaveThoseOut)
{
    const auto levels = [] (int n) { return juce::String::repeatedString ("a/", n); };
    EXPECT_EQ (unpack ({ { levels (32000), "" },
                         { levels (64) + "x", "x" },
                         { levels (63) + "x", "x" },
                         { "b/" + juce::String::repeatedString ("n", 256), "x" },
                         { "end", "e" } }),
               2);
    EXPECT_EQ (bytesOf (homeFile ("out").getChildFile (levels (63) + "x")), "x");
    EXPECT_FALSE (homeFile ("out").getChildFile (levels (64)).exists());
}

TEST_F (BrowserArchives, DoNotFillTheDisk)
{
    const std::string zeros (static_cast<std::size_t> (kSmallContents) / 2, '\0');
    EXPECT_EQ (unpack ({ { "a", zeros }, { "b", zeros } }), 2);
    ASSERT_TRUE (homeFile ("out").deleteRecursively());

    // A byte more, and nothing at all is unpacked; nor where the claim is beyond all disks.
    EXPECT_EQ (unpack ({ { "a", zeros }, { "b", zeros }, { "c", "c" } }), 0);
    auto huge = makeArchive ({ { "a", "a" }, { "b", "b" } });
    claimLength (huge, 0, 0xffffffff);
    claimLength (huge, 1, 0xffffffff);
    EXPECT_EQ (unpackArchive (put ("Pack.zip", huge), homeFile ("out")), 0);
    EXPECT_FALSE (homeFile ("out").exists());
}

TEST_F (BrowserArchives, ImportUnpacksIntoTheSelectedFolderAndShowsIt)
{
    putPreset ("A/one.zbpreset", "One");
    open();
    select (0, "A");
    put ({ { "new.zbpreset", documentWithParams ({}).toStdString() }, { "__MACOSX/fork", "x" } });
    browser().importFile (homeFile ("Pack.zip"));
    EXPECT_EQ (view(), "*A / One|Pack");

    // With nothing selected it is the preset folder.
    open();
    browser().importFile (homeFile ("Pack.zip"));
    EXPECT_EQ (rows (0), "A|Pack");

    // Any other extension is none, and a name of dots would be the folder itself, or the one above.
    ASSERT_TRUE (homeFile ("x").createDirectory());

    for (const auto* name : { "Third.Zip", "..zip", "...zip" })
    {
        const auto archive = homeFile ("x").getChildFile (juce::String ("./") + name);
        ASSERT_TRUE (homeFile ("Pack.zip").copyFileTo (archive));
        browser().importFile (archive);
        EXPECT_EQ (rows (0), "A|Pack") << name;
    }

    EXPECT_FALSE (homeFile ("new.zbpreset").exists());
}

TEST_F (BrowserArchives, ImportOfManyFilesLetsTheWindowLiveAndGo)
{
    constexpr int kFiles = 4000;
    std::vector<ArchiveEntry> entries;

    for (int i = 0; i < kFiles; ++i)
        entries.push_back ({ "p" + juce::String (i) + ".zbpreset", "x" });

    const auto archive = put (entries);
    const auto other = put ("Other.zip", makeArchive ({ { "o", "o" } }));
    const auto last = lib ("Pack/p" + juce::String (kFiles - 1) + ".zbpreset");
    const auto halfWay = [&] { return lib ("Pack/p0.zbpreset").exists() && ! last.exists(); };
    open();
    bool refused = false;

    // What runs meanwhile may ask for another import, which is refused, and close the browser.
    const Onlooker onlooker (
        [&]
        {
            if (manager == nullptr || ! halfWay())
                return;

            browser().importFile (other);
            refused = ! lib ("Other").exists();
            manager.reset();
        });
    browser().importFile (archive);
    EXPECT_EQ (manager, nullptr);
    EXPECT_TRUE (refused);
    EXPECT_FALSE (last.exists());
}

TEST_F (BrowserArchives, ImportOfAPresetLoadsItAndSavesIt)
{
    putPreset ("A/one.zbpreset", "One");
    putPreset ("../Found.zbpreset", "Inner", 77.0f);
    open();
    select (0, "A");
    browser().importFile (homeFile ("Found.zbpreset"));
    EXPECT_EQ (view(), "*A / Found|One");
    EXPECT_EQ (processor.presetName, "Found");  // after its file
    EXPECT_EQ (delay(), 77.0f);
    EXPECT_TRUE (lib ("A/Found.zbpreset").loadFileAsString().contains ("PresetName=\"Found\""));

    // What is none of ours is ignored, and so is one of ours that could not be heard.
    const auto before = contents (lib ("A"));

    for (const auto* foreign :
         { "<Other PresetName=\"x\"><Parameters/></Other>", "junk", "<VelkorSettings/>" })
    {
        putFile (homeFile ("Foreign.zbpreset"), foreign);
        browser().importFile (homeFile ("Foreign.zbpreset"));
        EXPECT_EQ (contents (lib ("A")), before) << foreign;
    }

    EXPECT_EQ (processor.presetName, "Found");
}

TEST_F (BrowserArchives, ExportPacksAFolderWithAllThatIsInIt)
{
    putPreset (juce::String::fromUTF8 ("Set/\xe6\xb3\xa2 'quoted' \"twice\" ../ leading.zbpreset"),
               "Leading");
    putPreset ("Set/" + juce::String::repeatedString ("n", 246) + ".zbpreset", "Long");
    putFile (lib ("Set/.hidden"), "h");
    lib ("Set/empty").createDirectory();
    putFile (homeFile ("target"), "t");
    link ("Lib/Set/link", homeFile ("target"));
    ASSERT_EQ (mkfifo (lib ("Set/pipe").getFullPathName().toRawUTF8(), 0600), 0);

    const auto archive = exportFolder (lib ("Set"));
    EXPECT_EQ (archive,
               juce::File::getSpecialLocation (juce::File::tempDirectory).getChildFile ("Set.zip"));
    EXPECT_GE (juce::ZipFile (archive).getIndexOfFileName (".hidden"), 0);
    EXPECT_EQ (unpackArchive (archive, homeFile ("out")), 3);  // all but that one

    for (const auto* name : { "Set/pipe", "Set/link", "Set/.hidden" })
        ASSERT_TRUE (lib (name).deleteFile());

    putFile (lib ("Set/link"), "t");
    EXPECT_EQ (contents (homeFile ("out")), contents (lib ("Set")));

    // A link that leads back up is gone round no more than once.
    link ("Lib/Set/up", lib());
    EXPECT_EQ (exportFolder (lib ("Set")), archive);
    EXPECT_LT (juce::ZipFile (archive).getNumEntries(), 10);
    EXPECT_TRUE (archive.deleteFile());
}

TEST_F (BrowserArchives, ExportCopiesAPresetAndLosesNothing)
{
    putPreset ("one.zbpreset", "One");
    open();
    EXPECT_FALSE (copyInto (browser().makeExport(), lib()));  // nothing is selected
    select (0, "One");
    const auto file = browser().makeExport();
    const auto whole = bytesOf (file);
    EXPECT_EQ (file, lib ("one.zbpreset"));
    EXPECT_TRUE (copyInto (file, lib()));
    EXPECT_EQ (bytesOf (file), whole);

    const auto desk = homeFile ("desk");
    putFile (desk.getChildFile ("one.zbpreset"), "old");
    EXPECT_TRUE (copyInto (file, desk));

    // A copy that can't be made leaves what is there.
    ASSERT_TRUE (file.deleteFile());
    EXPECT_FALSE (copyInto (file, desk));
    EXPECT_EQ (bytesOf (desk.getChildFile ("one.zbpreset")), whole);
    EXPECT_EQ (desk.getNumberOfChildFiles (juce::File::findFiles), 1);
}

class BrowserWindowExport : public BrowserWindow
{
protected:
    /** Presses the export button and, in JUCE's own chooser, the button that ends it; types a
        name before, if one is given. */
    void exportWith (const juce::String& name = {})
    {
        auto& modals = *juce::ModalComponentManager::getInstance();
        int looks = 0;
        const Onlooker onlooker (
            [&]
            {
                coverSeen = coverSeen ||
                            (browser().busyCover != nullptr && browser().busyCover->isShowing());
                auto* const box =
                    dynamic_cast<juce::FileChooserDialogBox*> (modals.getModalComponent (0));

                if (box == nullptr || ++looks < 20)
                    return;

                if (name.isNotEmpty())
                    find<juce::FileBrowserComponent> (*box)->setFileName (name);

                for (const auto* verb : { "Open", "Choose", "Save" })
                    if (auto* button = find<juce::TextButton> (*box, verb);
                        button != nullptr && button->isEnabled())
                        button->triggerClick();

                if (looks > 60)
                    box->exitModalState (0);
            });
        browser().buttonClicked (browser().buttons[kExportCommand].get());
    }

    /** The first component of a class below another, with this name if one is given. */
    template <typename Wanted>
    static Wanted* find (juce::Component& below, const juce::String& name = {})
    {
        for (auto* child : below.getChildren())
        {
            if (auto* found = dynamic_cast<Wanted*> (child);
                found != nullptr && (name.isEmpty() || child->getName() == name))
                return found;

            if (auto* found = find<Wanted> (*child, name))
                return found;
        }

        return nullptr;
    }

    bool coverSeen = false;
};

TEST_F (BrowserWindowExport, GoesToTheChosenFolderOrToThatOfTheChosenFile)
{
    setenv ("PATH", "", 1);  // no program to ask with: JUCE's own chooser

    if (juce::FileChooser::isPlatformDialogAvailable())
        GTEST_SKIP() << "another chooser has been found already";

    const auto desk = juce::File::getSpecialLocation (juce::File::userDesktopDirectory);
    ASSERT_TRUE (desk.createDirectory() && desk.getChildFile ("sub").createDirectory());
    putPreset ("Current/zero.zbpreset", "Zero");
    putPreset ("Set/one.zbpreset", "One");
    show();
    select (0, "Set");
    exportWith();
    EXPECT_TRUE (coverSeen);
    EXPECT_EQ (browser().busyCover, nullptr);
    EXPECT_EQ (juce::ZipFile (desk.getChildFile ("Set.zip")).getNumEntries(), 1);

    // The old pack is what the chooser opens with.
    putPreset ("Set/two.zbpreset", "Two");
    exportWith();
    EXPECT_EQ (juce::ZipFile (desk.getChildFile ("Set.zip")).getNumEntries(), 2);

    exportWith ("sub");
    EXPECT_TRUE (desk.getChildFile ("sub/Set.zip").existsAsFile());
    putFile (desk.getChildFile ("sub/other"), "as it was");
    ASSERT_TRUE (desk.getChildFile ("sub/Set.zip").deleteFile());
    exportWith ("sub/other");
    EXPECT_TRUE (desk.getChildFile ("sub/Set.zip").existsAsFile());
    EXPECT_EQ (bytesOf (desk.getChildFile ("sub/other")), "as it was");
    EXPECT_EQ (desk.getNumberOfChildFiles (juce::File::findFilesAndDirectories), 2);
}

TEST_F (BrowserArchives, AskForNoMoreRoomThanTheyTake)
{
    const SmallDisk disk (homeFile ("out"), 200);

    if (! disk.isThere())
        GTEST_SKIP() << "no right to mount a disk of its own";

    std::vector<ArchiveEntry> entries;

    for (int i = 0; i < 20; ++i)
        entries.push_back ({ "p" + juce::String (i), std::string (1700, 'p') });

    EXPECT_EQ (unpack (entries), 20);

    // What can't have room isn't begun, be it large or many.
    entries.resize (100, { "large", std::string (300000, 'l') });
    EXPECT_EQ (unpack ({ entries.back() }), 0);

    for (int i = 20; i < 100; ++i)
        entries[static_cast<std::size_t> (i)] = { "q" + juce::String (i), "q" };

    EXPECT_EQ (unpack (entries), 0);
    EXPECT_EQ (homeFile ("out").getNumberOfChildFiles (juce::File::findFiles), 20);
}

TEST_F (BrowserArchives, LeaveOutWhatIsHidden)
{
    EXPECT_EQ (unpack ({ { ".zbpreset", "x" },
                         { "__MACOSX/._one.zbpreset", "x" },
                         { "Sub/__MACOSX/y", "x" },
                         { "Sub/.git/z", "x" },
                         { ".DS_Store", "x" },
                         { "./one.zbpreset", "o" },
                         { "Sub/__MACOSX", "m" } }),
               1);
    EXPECT_EQ (contents (homeFile ("out")), "one.zbpreset=o");
}

TEST_F (BrowserArchives, TellABackslashInANameFromOneBetweenNames)
{
    EXPECT_EQ (unpack ({ { "AC\\DC.zbpreset", "a" }, { "one", "o" } }), 2);
    EXPECT_EQ (unpack ({ { "Sub/AC\\DC 1", "a" }, { "Sub/AC\\DC 2", "b" } }), 2);
    EXPECT_EQ (contents (homeFile ("out")), "AC\\DC.zbpreset=a Sub/ Sub/AC\\DC 1=a "
                                            "Sub/AC\\DC 2=b one=o");
    ASSERT_TRUE (homeFile ("out").deleteRecursively());

    // Old archives from another system, whose folders show.
    EXPECT_EQ (unpack ({ { "Sub\\x", "x" }, { "Sub\\y", "y" }, { "z", "z" } }), 3);
    EXPECT_EQ (unpack ({ { "Dir\\", "" }, { "Dir\\x", "x" } }), 1);
    EXPECT_EQ (contents (homeFile ("out")), "Dir/ Dir/x=x Sub/ Sub/x=x Sub/y=y z=z");
    ASSERT_TRUE (homeFile ("out").deleteRecursively());

    // An export of ours is never taken for one of those.
    putFile (lib ("Set/AC\\DC 1.zbpreset"), "a");
    putFile (lib ("Set/AC\\DC 2.zbpreset"), "b");
    const auto archive = exportFolder (lib ("Set"));
    EXPECT_EQ (unpackArchive (archive, homeFile ("out")), 2);
    EXPECT_EQ (contents (homeFile ("out")), contents (lib ("Set")));
    EXPECT_TRUE (archive.deleteFile());
}

TEST_F (BrowserArchives, AreMadeOfFoldersWithTheLongestNames)
{
    const auto accented = juce::String::fromUTF8 ("\xc3\xa9");

    for (const auto& name :
         { juce::String::repeatedString ("n", 251), juce::String::repeatedString ("n", 252),
           "x" + juce::String::repeatedString (accented, 127) })
    {
        putFile (lib (name + "/one"), "o");
        const auto archive = exportFolder (lib (name));
        ASSERT_TRUE (archive.existsAsFile()) << name;
        EXPECT_EQ (archive.getFileExtension(), ".zip");
        EXPECT_TRUE (name.startsWith (archive.getFileNameWithoutExtension()));
        EXPECT_GE (archive.getFileName().getNumBytesAsUTF8(), 254u);
        ASSERT_TRUE (homeFile ("out").createDirectory());
        EXPECT_TRUE (copyInto (archive, homeFile ("out")));
        EXPECT_TRUE (archive.deleteFile());
    }
}

TEST_F (BrowserArchives, ThatComeUpShortAreNone)
{
    std::mt19937 noise (1);
    std::string bytes;

    for (int i = 0; i < 40000; ++i)
        bytes += static_cast<char> (noise());

    putFile (lib ("Set/a"), bytes);
    const auto desk = homeFile ("desk");
    ASSERT_TRUE (desk.createDirectory());

    for (const rlim_t limit : { 100u, 20000u, 40100u })
    {
        const FileSizeLimit full (limit);
        EXPECT_EQ (exportFolder (lib ("Set")), juce::File()) << limit;
        EXPECT_EQ (copyInto (lib ("Set/a"), desk), limit > bytes.size()) << limit;
    }

    EXPECT_EQ (desk.getNumberOfChildFiles (juce::File::findFiles), 1);
    EXPECT_EQ (bytesOf (desk.getChildFile ("a")), bytes);
}
