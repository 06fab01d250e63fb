// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/archive_bench.h"
#include "browser/archive_export.h"
#include "browser/archive_import.h"
#include "browser/browser_fixture.h"

#include <cstdlib>
#include <functional>
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

    /** All that is below a folder, with the contents of the files, links as "name>target". */
    static juce::String contents (const juce::File& top)
    {
        juce::StringArray texts;

        for (const auto& file : top.findChildFiles (juce::File::findFilesAndDirectories, true, "*",
                                                    juce::File::FollowSymlinks::no))
        {
            const auto path = file.getRelativePathFrom (top);

            if (file.isSymbolicLink())
                texts.add (path + ">" + file.getNativeLinkedTarget());
            else
                texts.add (path + (file.isDirectory() ? "/" : "=" + file.loadFileAsString()));
        }

        texts.sort (false);
        return texts.joinIntoString (" ");
    }

    void link (const juce::String& path, const juce::File& target) const
    {
        ASSERT_EQ (symlink (target.getFullPathName().toRawUTF8(),
                            homeFile (path).getFullPathName().toRawUTF8()),
                   0);
    }
};

// What the framework does of itself, and so what the browser must not leave to it. Each of these would have
// to be looked at again if it changed.

TEST_F (BrowserArchives, OfTheFrameworkAreOpenInFourPlaces)
{
    const auto unpack = [this] (const juce::MemoryBlock& archive)
    { return juce::ZipFile (put ("Pack.zip", archive)).uncompressTo (homeFile ("out")).wasOk(); };
    const auto out = [this] { return contents (homeFile ("out")); };

    // Closed: paths that lead outside, and files behind a link. But nothing after them is unpacked.
    for (const auto* path : { "../evil", "a/../../evil", "..\\evil", "/evil" })
    {
        EXPECT_FALSE (unpack (makeArchive ({ { path, "evil" }, { "good", "g" } }))) << path;
        EXPECT_EQ (out(), "");
    }

    EXPECT_FALSE (homeFile ("evil").exists());
    EXPECT_FALSE (unpack (
        makeArchive ({ { "d", homeFile ("elsewhere").getFullPathName().toStdString(), true },
                       { "d/evil", "evil" } })));
    EXPECT_FALSE (homeFile ("elsewhere").exists());

    // Open: links are made; a file of the same name is written through a link that leads to nothing yet;
    // contents are read beyond what the entry claims; a file that is there gets lost to one that can't be read.
    ASSERT_TRUE (homeFile ("out").deleteRecursively());
    EXPECT_TRUE (unpack (makeArchive ({ { "l", "/etc", true } })));
    EXPECT_EQ (out(), "l>/etc");

    ASSERT_TRUE (homeFile ("out").deleteRecursively());
    unpack (makeArchive (
        { { "f", homeFile ("planted").getFullPathName().toStdString(), true }, { "f", "evil" } }));
    EXPECT_EQ (homeFile ("planted").loadFileAsString(), "evil");

    auto liar = makeArchive ({ { "big", std::string (100000, 'x') } });
    claimLength (liar, 0, 10);
    EXPECT_TRUE (unpack (liar));
    EXPECT_EQ (homeFile ("out/big").getSize(), 100000);

    putFile (homeFile ("out/kept"), "kept");
    auto torn = makeArchive ({ { "kept", "0123456789 0123456789" } });
    std::memset (static_cast<char*> (torn.getData()) + 36, 0xff, 8);  // into the packed data
    EXPECT_TRUE (unpack (torn));
    EXPECT_NE (homeFile ("out/kept").loadFileAsString(), "kept");
}

TEST_F (BrowserArchives, NeverWriteOutsideTheirFolder)
{
    const auto planted = homeFile ("planted").getFullPathName().toStdString();
    const auto archive = put ({ { "../evil", "evil" },
                                { "a/../../evil", "evil" },
                                { "..\\evil", "evil" },
                                { (homeFile ("evil")).getFullPathName(), "evil" },
                                { "..", "evil" },
                                { "", "evil" },
                                { "l", "..", true },
                                { "l/evil", "evil" },
                                { "f", planted, true },
                                { "f", "a file" },
                                { "../out-of/", "" },
                                { "sub/x.zbpreset", "x" },
                                { "back\\y.zbpreset", "y" },
                                { "empty/", "" } });
    EXPECT_EQ (unpackArchive (archive, homeFile ("out")), 4);
    EXPECT_EQ (contents (homeFile ("out")),
               "back/ back/y.zbpreset=y empty/ f=a file l/ l/evil=evil sub/ sub/x.zbpreset=x");

    for (const auto* name : { "evil", "planted", "out-of" })
        EXPECT_FALSE (homeFile (name).exists()) << name;

    // Links that were there before lead nowhere either; one in the place of a file gives way to it.
    homeFile ("precious").createDirectory();
    putFile (homeFile ("precious/p"), "p");
    link ("out/linked", homeFile ("precious"));
    link ("out/file", homeFile ("precious/p"));
    EXPECT_EQ (
        unpackArchive (put ({ { "linked/new", "n" }, { "linked/sub/", "" }, { "file", "f" } }),
                       homeFile ("out")),
        1);
    EXPECT_EQ (contents (homeFile ("precious")), "p=p");
    EXPECT_EQ (homeFile ("out/file").loadFileAsString(), "f");
}

TEST_F (BrowserArchives, KeepWhatIsThereWhereTheyAreDamaged)
{
    putFile (homeFile ("out/kept"), "kept");
    auto torn = makeArchive ({ { "kept", "0123456789 0123456789" }, { "good", "g" } });
    std::memset (static_cast<char*> (torn.getData()) + 36, 0xff, 8);
    EXPECT_EQ (unpackArchive (put ("Pack.zip", torn), homeFile ("out")), 1);
    EXPECT_EQ (contents (homeFile ("out")), "good=g kept=kept");

    for (const juce::uint32 claimed : { 9u, 11u, 0u })
    {
        auto liar = makeArchive ({ { "kept", "0123456789" } });
        claimLength (liar, 0, claimed);
        EXPECT_EQ (unpackArchive (put ("Pack.zip", liar), homeFile ("out")), 0) << claimed;
    }

    EXPECT_EQ (contents (homeFile ("out")), "good=g kept=kept");

    // An archive cut anywhere has lost its list of entries; text and nothing are no archives.
    const auto whole = makeArchive ({ { "new", "n" } });

    for (std::size_t size = 0; size + 22 <= whole.getSize(); size += 7)
        EXPECT_EQ (unpackArchive (put ("Pack.zip", { whole.getData(), size }), homeFile ("out")), 0)
            << size;

    EXPECT_EQ (unpackArchive (homeFile ("missing.zip"), homeFile ("out")), 0);
    EXPECT_EQ (unpackArchive (homeFile (""), homeFile ("out")), 0);
    EXPECT_EQ (contents (homeFile ("out")), "good=g kept=kept");
}

TEST_F (BrowserArchives, MayHaveNamesInAnEightBitEncoding)
{
    // Three bytes that begin longer characters than they are, and a letter written longer than it needs.
    auto archive = makeArchive ({ { "Pi#ce & quatre.zbpreset", "x" }, { "d#/%%%%%%/y", "y" } });
    replaceBytes (archive, "#", "\xe8");
    replaceBytes (archive, "&", "\xe0");
    replaceBytes (archive, "%%%%%%", "\xc1\xa1\xc1\xa1\xc1\xa1");
    EXPECT_EQ (unpackArchive (put ("Pack.zip", archive), lib ("Pack")), 2);
    EXPECT_EQ (
        contents (lib ("Pack")),
        juce::String::fromUTF8 ("Pi\xc3\xa8"
                                "ce \xc3\xa0 quatre.zbpreset=x "
                                "d\xc3\xa8/ "
                                "d\xc3\xa8/\xc3\x81\xc2\xa1\xc3\x81\xc2\xa1\xc3\x81\xc2\xa1/ "
                                "d\xc3\xa8/\xc3\x81\xc2\xa1\xc3\x81\xc2\xa1\xc3\x81\xc2\xa1/y=y"));
    open();
    select (0, "Pack");
    EXPECT_TRUE (rows (1).startsWith (juce::String::fromUTF8 ("d\xc3\xa8|"))) << rows (1);
}

TEST_F (BrowserArchives, OfPathsBeyondReasonLeaveThoseOut)
{
    const auto levels = [] (int n) { return juce::String::repeatedString ("a/", n); };
    const auto wide = [] (int n) { return juce::String::repeatedString ("n", n); };
    const auto archive = put ({ { levels (32000), "" },
                                { levels (64) + "x", "x" },
                                { levels (63) + "x", "x" },
                                { "b/" + wide (256), "x" },
                                { wide (200), "w" },
                                { "c/" + juce::String::repeatedString (wide (200) + "/", 21), "" },
                                { "end", "e" } });
    EXPECT_EQ (unpackArchive (archive, homeFile ("out")), 3);
    EXPECT_EQ (homeFile ("out").getNumberOfChildFiles (juce::File::findFilesAndDirectories), 3);
    EXPECT_EQ (homeFile ("out").getChildFile (levels (63) + "x").loadFileAsString(), "x");
    EXPECT_FALSE (homeFile ("out").getChildFile (levels (64)).exists());
}

TEST_F (BrowserArchives, DoNotFillTheDisk)
{
    const std::string zeros (static_cast<std::size_t> (kSmallContents) / 2, '\0');
    const auto just = put ("Pack.zip", makeArchive ({ { "a", zeros }, { "b", zeros } }));
    EXPECT_LT (just.getSize(), kSmallContents / kMaxExpansion);
    EXPECT_EQ (unpackArchive (just, homeFile ("out")), 2);
    ASSERT_TRUE (homeFile ("out").deleteRecursively());

    // A byte more, and nothing at all is unpacked.
    EXPECT_EQ (unpackArchive (
                   put ("Pack.zip", makeArchive ({ { "a", zeros }, { "b", zeros }, { "c", "c" } })),
                   homeFile ("out")),
               0);
    EXPECT_FALSE (homeFile ("out").exists());

    // Nor where the claim is beyond all disks.
    auto huge = makeArchive ({ { "a", "a" }, { "b", "b" } });
    claimLength (huge, 0, 0xffffffff);
    claimLength (huge, 1, 0xffffffff);
    EXPECT_EQ (unpackArchive (put ("Pack.zip", huge), homeFile ("out")), 0);
    EXPECT_FALSE (homeFile ("out").exists());
}

TEST_F (BrowserArchives, OverwriteFilesOfTheirOwnNames)
{
    putFile (homeFile ("out/a"), "old and longer");
    homeFile ("out/b").createDirectory();
    putFile (homeFile ("out/c"), "c");
    EXPECT_EQ (
        unpackArchive (put ({ { "a", "new" }, { "b", "b" }, { "c/d", "d" } }), homeFile ("out")),
        1);
    EXPECT_EQ (contents (homeFile ("out")),
               "a=new b/ c=c");  // never a folder for a file nor the other way round
}

TEST_F (BrowserArchives, GoIntoAFolderOfTheirName)
{
    EXPECT_EQ (folderForArchive (homeFile ("My.Pack.zip"), lib()), lib ("My.Pack"));

    // Names that would be the folder itself, or the one above.
    for (const auto* name : { "..zip", "...zip" })
        EXPECT_EQ (
            folderForArchive (homeFile ("x").getChildFile (juce::String ("./") + name), lib()),
            juce::File())
            << name;
}

TEST_F (BrowserArchives, ImportUnpacksIntoTheSelectedFolderAndShowsIt)
{
    putPreset ("A/one.zbpreset", "One");
    open();
    select (0, "A");
    put ({ { "new.zbpreset", documentWithParams ({}).toStdString() }, { "__MACOSX/fork", "x" } });
    browser().importFile (homeFile ("Pack.zip"));
    EXPECT_EQ (view(), "*A / One|Pack");
    EXPECT_TRUE (lib ("A/Pack/__MACOSX/fork").existsAsFile());

    // With a preset selected it is that preset's folder; with nothing, the preset folder.
    select (1, "One");
    browser().importFile (put ("Other.ZIP", makeArchive ({ { "o.zbpreset", "x" } })));
    EXPECT_TRUE (lib ("A/Other/o.zbpreset").existsAsFile());
    open();
    browser().importFile (homeFile ("Pack.zip"));
    EXPECT_EQ (rows (0), "A|Pack");

    // Any other extension, in any case, is none.
    ASSERT_TRUE (homeFile ("Pack.zip").moveFileTo (homeFile ("Third.Zip")));
    browser().importFile (homeFile ("Third.Zip"));
    browser().importFile (homeFile ("missing.zip"));
    EXPECT_EQ (rows (0), "A|Pack");
}

TEST_F (BrowserArchives, EndBetweenTwoEntriesWhenTold)
{
    int asked = 0;
    EXPECT_EQ (unpackArchive (put ({ { "a", "a" }, { "b", "b" }, { "c", "c" }, { "d", "d" } }),
                              homeFile ("out"), [&] { return ++asked < 3; }),
               2);
    EXPECT_EQ (asked, 3);
    EXPECT_EQ (contents (homeFile ("out")), "a=a b=b");
}

/** Looks at an import from the message loop, again and again. */
class Onlooker : public juce::Timer
{
public:
    explicit Onlooker (std::function<void()> lookAtIt) : look (std::move (lookAtIt))
    {
        startTimer (5);
    }

    ~Onlooker() override { stopTimer(); }

    void timerCallback() override { look(); }

private:
    const std::function<void()> look;
};

TEST_F (BrowserArchives, ImportOfManyFilesKeepsTheWindowAlive)
{
    constexpr int kFiles = 4000;
    std::vector<ArchiveEntry> entries;

    for (int i = 0; i < kFiles; ++i)
        entries.push_back ({ "p" + juce::String (i) + ".zbpreset", "x" });

    const auto archive = put (entries);
    const auto other = put ("Other.zip", makeArchive ({ { "o", "o" } }));
    const auto last = lib ("Pack/p" + juce::String (kFiles - 1) + ".zbpreset");
    open();
    bool seenHalfWay = false;

    {
        const Onlooker onlooker (
            [&]
            {
                seenHalfWay |= lib ("Pack/p0.zbpreset").exists() && ! last.exists();

                if (browser().busyCover != nullptr)
                {
                    EXPECT_EQ (browser().busyCover->getBounds(), browser().getLocalBounds());
                    browser().importFile (other);  // one at a time
                }
            });
        browser().importFile (archive);
    }

    EXPECT_TRUE (seenHalfWay);
    EXPECT_TRUE (last.exists());
    EXPECT_EQ (browser().busyCover, nullptr);
    EXPECT_EQ (rows (0), "Pack");

    // And the browser may go half-way.
    ASSERT_TRUE (lib ("Pack").deleteRecursively());

    {
        const Onlooker onlooker (
            [&]
            {
                if (lib ("Pack/p0.zbpreset").exists())
                    manager.reset();
            });
        browser().importFile (archive);
    }

    EXPECT_EQ (manager, nullptr);
    EXPECT_FALSE (last.exists());
}

TEST_F (BrowserArchives, ImportOfAPresetLoadsItAndSavesIt)
{
    putPreset ("A/one.zbpreset", "One");
    open();
    select (0, "A");
    putFile (
        homeFile ("Found.zbpreset"),
        documentWith ("<Parameters><PARAM id=\"Delay 1 Time\" value=\"77\"/></Parameters>", "Inner")
            .toStdString());
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
    const auto name = juce::String::fromUTF8 ("\xe6\xb3\xa2 'quoted' \"twice\" ..");
    putPreset ("Set/" + name + "/ leading.zbpreset", "Leading");
    putPreset ("Set/" + juce::String::repeatedString ("n", 246) + ".zbpreset", "Long");
    putFile (lib ("Set/.hidden"), "h");
    lib ("Set/empty").createDirectory();
    putFile (homeFile ("target"), "t");
    link ("Lib/Set/link", homeFile ("target"));
    ASSERT_EQ (mkfifo (lib ("Set/pipe").getFullPathName().toRawUTF8(), 0600), 0);
    open();
    select (0, "Set");

    const auto archive = browser().makeExport();
    EXPECT_EQ (archive,
               juce::File::getSpecialLocation (juce::File::tempDirectory).getChildFile ("Set.zip"));
    ASSERT_TRUE (lib ("Set/pipe").deleteFile());
    ASSERT_TRUE (lib ("Set/link").deleteFile());
    putFile (lib ("Set/link"), "t");
    browser().selectedPath.clear();
    browser().importFile (archive);
    ASSERT_TRUE (lib ("Set").moveFileTo (homeFile ("was")));
    browser().importFile (archive);
    EXPECT_EQ (contents (lib ("Set")), contents (homeFile ("was")));
    EXPECT_GT (contents (lib ("Set")).length(), 500);
    EXPECT_TRUE (archive.deleteFile());
}

TEST_F (BrowserArchives, ExportGoesAsideWhereItsNameIsTakenByWhatWeCannotReplace)
{
    putPreset ("Set/one.zbpreset", "One");
    const auto desk = homeFile ("tmp");
    putFile (desk.getChildFile ("Set.zip/somebody's"), "kept");
    setenv ("TMPDIR", desk.getFullPathName().toRawUTF8(), 1);
    const auto archive = exportFolder (lib ("Set"));
    unsetenv ("TMPDIR");
    EXPECT_EQ (archive.getFileName(), "Set.zip");
    EXPECT_TRUE (archive.getParentDirectory().isAChildOf (desk));
    EXPECT_EQ (juce::ZipFile (archive).getNumEntries(), 1);
    EXPECT_EQ (contents (desk.getChildFile ("Set.zip")), "somebody's=kept");

    // Nobody else has business there, and no half-written file stays behind.
    struct stat status
    {
    };
    ASSERT_EQ (stat (archive.getParentDirectory().getFullPathName().toRawUTF8(), &status), 0);
    EXPECT_EQ (status.st_mode & 0777u, 0700u);
    EXPECT_EQ (desk.getNumberOfChildFiles (juce::File::findFilesAndDirectories), 2);
}

TEST_F (BrowserArchives, ExportGoesRoundNoCircle)
{
    putPreset ("Round/one.zbpreset", "One");
    link ("Lib/Round/again", lib ("Round"));
    link ("Lib/Round/up", lib());
    const auto archive = exportFolder (lib ("Round"));
    EXPECT_LT (juce::ZipFile (archive).getNumEntries(), 10);
    EXPECT_TRUE (archive.deleteFile());
}

TEST_F (BrowserArchives, ExportCopiesAPresetAndLosesNothing)
{
    putPreset ("A/one.zbpreset", "One");
    open();
    EXPECT_EQ (browser().makeExport(), juce::File());
    EXPECT_FALSE (copyInto (browser().makeExport(), lib()));
    select (0, "A");
    select (1, "One");
    const auto file = browser().makeExport();
    EXPECT_EQ (file, lib ("A/one.zbpreset"));

    const auto whole = bytesOf (file);
    homeFile ("desk").createDirectory();
    putFile (homeFile ("desk/one.zbpreset"), "old");
    EXPECT_TRUE (copyInto (file, homeFile ("desk")));
    EXPECT_EQ (bytesOf (homeFile ("desk/one.zbpreset")), whole);
    EXPECT_TRUE (copyInto (file, lib ("A")));
    EXPECT_EQ (bytesOf (file), whole);
    EXPECT_EQ (homeFile ("desk").getNumberOfChildFiles (juce::File::findFiles), 1);

    // A copy that can't be made leaves what is there.
    homeFile ("desk2/one.zbpreset").createDirectory();
    EXPECT_FALSE (copyInto (file, homeFile ("desk2")));
    EXPECT_TRUE (homeFile ("desk2/one.zbpreset").isDirectory());
    EXPECT_FALSE (copyInto (file, homeFile ("nowhere")));
    ASSERT_TRUE (file.deleteFile());
    EXPECT_FALSE (copyInto (file, homeFile ("desk")));
    EXPECT_EQ (bytesOf (homeFile ("desk/one.zbpreset")), whole);
}
