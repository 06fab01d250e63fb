// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/archive_export.h"
#include "browser/browser_fixture.h"
#include "browser/preset_listing.h"
#include "state/folder_listing.h"
#include "state/name_cache.h"

#include <algorithm>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

class BrowserTree : public BrowserTest
{
protected:
    juce::String cacheText() const { return lib ("preset_info.xml").loadFileAsString(); }
};

TEST_F (BrowserTree, MixesFoldersAndPresetsByFileNameWhateverTheCase)
{
    putPreset ("b.zbpreset", "Bee");
    putPreset ("A.ZBPRESET", "Ay");
    putPreset ("C/one.zbpreset", "One");
    putPreset ("__MACOSX/fork.zbpreset", "Fork");
    putPreset ("C/__MACOSX/fork.zbpreset", "Fork");
    putPreset (".hidden.zbpreset", "Hidden");
    putFile (lib ("broken.zbpreset"), "no document");
    putFile (lib ("readme.txt"), "text");
    lib ("aa").createDirectory();
    putStrangeNames ("C");
    open();
    EXPECT_EQ (rows (0), "Ay|aa|Bee||C");  // the broken one is listed without a name
    select (0, "C");
    EXPECT_EQ (rows (1), "One");
    EXPECT_EQ (browser().presetFiles.size(), 4);
    EXPECT_EQ (browser().presetFiles[3], lib ("C/one.zbpreset"));
    EXPECT_EQ (static_cast<int> (browser().rootTree.getChild (4).getChild (0)["index"]), 3);
}

TEST_F (BrowserTree, ShowsFourLevelsAndNoMore)
{
    putPreset ("1/2/3/leaf.zbpreset", "Leaf", 44.0f);
    putPreset ("1/2/3/4/deep.zbpreset", "Deep");
    open();
    select (0, "1");
    select (1, "2");
    select (2, "3");
    EXPECT_EQ (view(), "*1 / *2 / *3 / 4|Leaf");
    EXPECT_EQ (browser().presetFiles.size(), 1);

    // A folder in the last column is treated like a preset, and fails like one.
    select (3, "4");
    EXPECT_EQ (view(), "*1 / *2 / *3 / *4|Leaf");
    EXPECT_EQ (processor.presetName, "Error Loading Preset");
    select (3, "Leaf");
    EXPECT_EQ (delay(), 44.0f);
}

TEST_F (BrowserTree, ReadsNamesAndTypesInTheDialectOfTheProduct)
{
    const auto* const both =
        "<R presetName=\"small\" PresetName=\"big\"><pluginstate PresetName=\"inner\"/></R>";
    const auto* const audio = "<R PresetName=\"a\"><AUDIODATA><x/></AUDIODATA></R>";

    struct Case
    {
        const char *product, *document, *wanted;
    };

    for (const auto& [product, document, wanted] :
         { Case { "Gantry 2", both, "inner 2" },
           Case { "Mulberry2", "<R PresetName=\"big\"/>", " 2" },
           Case { "Velkor", both, "small 2" },
           Case { "Velkor", "<R presetName=\"\" PresetName=\"big\"/>", " 2" },
           Case { "Velkor", "<Any PresetName=\"big\" Sample=\"\"/>", "big 3" },
           Case { "Tansy", audio, "a 3" }, Case { "Velkor", audio, "a 2" } })
    {
        putFile (lib ("x.zbpreset"), document);
        const auto known = readPresetFile (lib ("x.zbpreset"), product);
        EXPECT_EQ (known.name + " " + juce::String (known.type), wanted) << product << document;
    }
}

TEST_F (BrowserTree, WritesTheFileOfNamesInTheOrderOfCodePoints)
{
    putPreset ("b/x.zbpreset", "X &amp; &quot;Y&quot;");
    putPreset ("B/y.zbpreset", juce::String::fromUTF8 ("\xe6\xb3\xa2"));
    putFile (lib ("a.zbpreset"), "<S PresetName=\"Loop\" Sample=\"1\"/>");
    open();
    EXPECT_EQ (cacheText(),
               "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n\r\n"
               "<PresetCache version=\"2\" pluginName=\"Velkor\" fileCount=\"3\">\r\n"
               "  <Preset path=\"B/y.zbpreset\" name=\"&#27874;\" type=\"2\"/>\r\n"
               "  <Preset path=\"a.zbpreset\" name=\"Loop\" type=\"3\"/>\r\n"
               "  <Preset path=\"b/x.zbpreset\" name=\"X &amp; &quot;Y&quot;\" type=\"2\"/>\r\n"
               "</PresetCache>\r\n");
    open();
    select (0, "B");
    EXPECT_EQ (rows (1), juce::String::fromUTF8 ("\xe6\xb3\xa2"));
}

TEST_F (BrowserTree, TrustsAFileOfNamesThatHasTheRightCountAndVersion)
{
    putPreset ("one.zbpreset", "One");
    putPreset ("two.zbpreset", "Two");
    const auto rowsWith = [&] (const juce::String& attributes)
    {
        const auto text = "<presetcache " + attributes +
                          "><preset path=\"one.zbpreset\" name=\"Uno\" type=\"3\"/>"
                          "<Preset path=\"TWO.zbpreset\" name=\"Dos\"/>"
                          "<Preset path=\"gone.zbpreset\" name=\"Tres\"/></presetcache>";
        putFile (lib ("preset_info.xml"), text.toStdString());
        open();
        return rows (0) + (cacheText() == text ? "" : ", rewritten");
    };

    // The count is that on disk, not of the entries; a path in another case is another path, and is read.
    EXPECT_EQ (rowsWith ("version=\"2\" fileCount=\"2\""), "Uno|Two");
    EXPECT_EQ (browser().rootTree.getChild (0).getType().toString(), "Sample");

    for (const auto* stale :
         { "version=\"2\" fileCount=\"3\"", "version=\"1\" fileCount=\"2\"", "fileCount=\"2\"",
           "version=\"2\"", "version=\"2\" fileCount=\"2\" broken" })
        EXPECT_EQ (rowsWith (stale), "One|Two, rewritten") << stale;

    // Hidden presets and those that no column shows count as well.
    putPreset (".hidden.zbpreset", "Hidden");
    putPreset ("a/b/c/d/e.zbpreset", "Deep");
    EXPECT_EQ (rowsWith ("version=\"2\" fileCount=\"4\""), "a|Uno|Two");
}

TEST_F (BrowserTree, KeepsNamesOfFilesThatHaveGoneUntilTheNextStart)
{
    putPreset ("one.zbpreset", "One");
    putPreset ("two.zbpreset", "Two");
    open();
    ASSERT_TRUE (lib ("one.zbpreset").deleteFile());
    browser().makeNewTree();
    EXPECT_EQ (rows (0), "Two");
    EXPECT_TRUE (cacheText().contains ("fileCount=\"2\""));  // too many

    putPreset ("one.zbpreset", "Another");  // the count fits again, so the old name counts
    browser().makeNewTree();
    EXPECT_EQ (rows (0), "One|Two");

    ASSERT_TRUE (lib ("one.zbpreset").deleteFile());
    open();
    EXPECT_TRUE (cacheText().contains ("fileCount=\"1\""));
}

TEST_F (BrowserTree, StartsWarmBesidePresetsThatAreNeverShown)
{
    putPreset ("one.zbpreset", "One");
    putPreset (".zbpreset", "Nameless");
    putPreset ("a/.hidden/x.zbpreset", "Hidden");
    putPreset ("a/__MACOSX/._x.zbpreset", "Fork");
    open();
    EXPECT_TRUE (cacheText().contains ("fileCount=\"4\""));
    putPreset ("one.zbpreset", "Another");
    open();
    EXPECT_EQ (rows (0), "a|One");  // as the file of names has it

    // One below the last column is never in that file, so each start reads all.
    putPreset ("1/2/3/4/.deep.zbpreset", "Deep");
    open();
    EXPECT_EQ (rows (0), "1|a|Another");
    EXPECT_TRUE (cacheText().contains ("fileCount=\"4\""));
}

// What a star builds, it builds from what has changed.
TEST_F (BrowserTree, ShowsAfterAStarWhatANewBrowserDoes)
{
    putPreset ("star.zbpreset", "Star");
    putFile (homeFile ("elsewhere/linked.zbpreset"), documentWithParams ({}).toStdString());

    for (const auto* set : { "A/Sub", "B", "C", "D", "E/Sub", "F" })
        putPreset (juce::String (set) + "/one.zbpreset", "One");

    open();
    juce::Thread::sleep (2200);  // folders of that age need no second look
    juce::ValueTree folderNode;

    const std::function<void()> changes[] = {
        [] {},
        [&] { folderNode = browser().rootTree.getChildWithProperty ("name", "A"); },
        [&] { EXPECT_TRUE (folderNode == browser().rootTree.getChildWithProperty ("name", "A")); },
        [&] { putPreset ("A/Sub/new.zbpreset", "New"); },
        [&] { EXPECT_TRUE (lib ("B/one.zbpreset").moveFileTo (lib ("B/uno.zbpreset"))); },
        [&] { putPreset ("C/.hidden.zbpreset", "Hidden"); },
        [&]
        {
            EXPECT_TRUE (lib ("D/one.zbpreset").deleteFile());
            EXPECT_TRUE (lib ("D/one.zbpreset").createDirectory());
        },
        [&] { EXPECT_TRUE (lib ("E").moveFileTo (lib ("a moved one"))); },
        [&] { EXPECT_TRUE (lib ("F").deleteRecursively()); },
        [&] { EXPECT_TRUE (homeFile ("elsewhere").createSymbolicLink (lib ("link"), false)); },
        [&] { EXPECT_TRUE (homeFile ("elsewhere/linked.zbpreset").deleteFile()); },
        [&]
        { putFile (lib ("preset_info.xml"), cacheText().replace ("Star", "Stern").toStdString()); },
    };

    for (int i = 0; const auto& change : changes)
    {
        ++i;
        change();
        browser().toggleAndReopen (lib ("star.zbpreset").getFullPathName(), {});
        auto shown = browser().rootTree.createCopy();
        shown.removeChild (shown.getChildWithName ("Favorites"), nullptr);

        // Walks the disk anew, whatever is known of it.
        zb_PresetManager fresh (processor, folder, nullptr, nullptr);
        auto wanted = fresh.addToTree ("Presets", {}, kRootNode, -1);
        fresh.presetCounter = 0;
        fresh.presetFiles.clear();
        fresh.createFolderTree (folder, wanted, 3);
        EXPECT_EQ (shown.toXmlString(), wanted.toXmlString()) << i;
        EXPECT_EQ (browser().presetFiles, fresh.presetFiles) << i;
    }
}

// There is a fast way for the form that is written, and the parser for all others.
TEST_F (BrowserTree, ReadsAFileOfNamesTheFastWayAsTheParserDoes)
{
    putPreset (juce::String::repeatedString ("long", 20) + ".zbpreset", "&lt;&quot;&amp;'&gt;");
    putPreset ("b.zbpreset", juce::String::fromUTF8 ("\xe6\xb3\xa2 \xf0\x9f\x8c\x8a"));
    open();
    const auto written = cacheText().toStdString();
    const auto read = [] (const std::string& text)
    {
        const auto found = readNameCacheContents ({ text.data(), text.size() });
        juce::String all (found ? "" : "none");

        if (found)
            all << found->version << " " << found->fileCount << " " << found->pluginName;

        for (const auto& [path, known] : found ? found->presets : KnownPresets())
            all << "|" << path << "|" << known.name << "|" << known.type;

        return all;
    };
    juce::Random random (7);

    for (int i = 0; i < 20000; ++i)
    {
        auto text = written;

        for (int change = random.nextInt (3); change >= 0; --change)
            text.replace (
                static_cast<std::size_t> (random.nextInt (static_cast<int> (text.size()))),
                static_cast<std::size_t> (random.nextInt (3)), 1,
                " <>\"&;#/=x12\t\n\x80!"[random.nextInt (16)]);

        auto slow = text;
        slow.insert (std::min (slow.size(), slow.find ('>') + 1), "<!-- no fast way -->");
        EXPECT_EQ (read (text), read (slow)) << text;
    }
}

TEST_F (BrowserTree, ShowsAllTenBarsOfASample)
{
    putFile (lib ("s.zbpreset"), "<S Sample=\"\"/>");
    open();

    for (const float width : { 750.0f, 900.0f, 1500.0f })
    {
        auto& column = *browser().getColumn (0);
        column.unit = width * 0.01f;
        const int height = juce::roundToInt (2.5f * column.unit);
        juce::Image image (juce::Image::ARGB, 200, height, true);
        juce::Graphics g (image);
        column.paintListBoxItem (0, g, 200, height, false);
        const auto alphaAt = [&] (int x) { return image.getPixelAt (x, height / 2).getAlpha(); };
        int bars = 0;
        bool rising = true;

        for (int x = 0; x < juce::roundToInt (3.25f * column.unit); ++x)
        {
            const int step = alphaAt (x + 1) - alphaAt (x);
            bars += rising && step < 0 ? 1 : 0;
            rising = step != 0 ? step > 0 : rising;
        }

        EXPECT_EQ (bars, 10) << width;
    }
}

TEST_F (BrowserTree, StepsThroughAllPresetsRoundTheEnds)
{
    open();
    browser().presetsDecInc (true);
    EXPECT_EQ (processor.currentProgram, 0);

    putPreset ("a/1.zbpreset", "A1", 11.0f);
    putPreset ("b.zbpreset", "B", 22.0f);
    putPreset ("c/2.zbpreset", "C2", 33.0f);
    open();
    juce::StringArray heard;

    for (const bool forward : { true, true, true, false, false })
    {
        browser().presetsDecInc (forward);
        heard.add (processor.presetName + juce::String (processor.currentProgram.load()) + "=" +
                   juce::String (delay(), 0));
    }

    EXPECT_EQ (heard.joinIntoString (" "), "B1=22 C22=33 A10=11 C22=33 B1=22");

    // The sound that Cancel goes back to may have had a place that the list has lost since.
    processor.currentProgram = 5;
    browser().presetsDecInc (true);
    EXPECT_EQ (processor.currentProgram, 0);
}

TEST_F (BrowserTree, SurvivesLinksThatLeadInCircles)
{
    putPreset ("a/one.zbpreset", "One");

    ASSERT_EQ (symlink (lib().getFullPathName().toRawUTF8(),
                        lib ("a/again").getFullPathName().toRawUTF8()),
               0);
    ASSERT_EQ (mkfifo (lib ("a/pipe.zbpreset").getFullPathName().toRawUTF8(), 0600), 0);
    open();  // returns at all
    select (0, "a");
    EXPECT_TRUE (rows (1).startsWith ("again|One|")) << rows (1);
}

// Where the framework joins paths, such a name is a user's home or leads to the folder that the program runs in.
TEST_F (BrowserTree, TakesANameThatBeginsWithATildeForAName)
{
    putFile (homeFile ("dear.zbpreset"), "the user's");
    putPreset ("./~/Inside.zbpreset", "Inside", 33.0f);
    putPreset ("./~ warm.zbpreset", "Warm", 44.0f);
    open();
    EXPECT_EQ (rows (0), "~|Warm");
    select (0, "Warm");
    EXPECT_EQ (delay(), 44.0f);
    browser().toggleFavorite (browser().selectedPath);
    browser().loadFavorites();
    EXPECT_EQ (browser().favorites.size(), 1);

    select (0, "~");
    EXPECT_EQ (rows (1), "Inside");
    const auto archive = browser().makeExport();
    EXPECT_EQ (archive.getFileName(), "~.zip");
    const auto target = homeFile ("target");
    target.createDirectory();
    EXPECT_TRUE (copyInto (archive, target));
    EXPECT_TRUE (copyInto (lib ("./~ warm.zbpreset"), target));
    EXPECT_EQ (target.getNumberOfChildFiles (juce::File::findFiles), 2);
    archive.deleteFile();

    browser().importFile (
        target.getChildFile ("./~.zip"));  // beside the file of the selected folder
    EXPECT_TRUE (lib ("./~/~/Inside.zbpreset").existsAsFile());
    browser().importFile (target.getChildFile ("./~ warm.zbpreset"));
    EXPECT_TRUE (lib ("./~/~ warm.zbpreset").existsAsFile());

    EXPECT_TRUE (deleteFolder (lib ("./~")));
    EXPECT_EQ (bytesOf (homeFile ("dear.zbpreset")), "the user's");
}
