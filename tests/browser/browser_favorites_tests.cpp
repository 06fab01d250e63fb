// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/browser_fixture.h"

#include <algorithm>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

class BrowserFavorites : public BrowserTest
{
protected:
    BrowserFavorites()
    {
        putPreset ("a/one.zbpreset", "One", 11.0f);
        putPreset ("two.zbpreset", "Two", 22.0f);
        open();
    }

    void toggle (const juce::String& path) const
    {
        browser().toggleFavorite (lib (path).getFullPathName());
    }

    juce::File file() const { return lib ("favorites.xml"); }

    /** Number of favourites on disk. */
    int stored() const
    {
        return juce::StringArray::fromTokens (file().loadFileAsString(), "<", {}).size() - 4;
    }
};

TEST_F (BrowserFavorites, AreKeptInTheOrderOfToggling)
{
    toggle ("two.zbpreset");
    toggle ("a/one.zbpreset");
    EXPECT_EQ (bytesOf (file()), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n\r\n"
                                 "<Favorites version=\"1.0\">\r\n"
                                 "  <Favorite path=\"two.zbpreset\"/>\r\n"
                                 "  <Favorite path=\"a/one.zbpreset\"/>\r\n"
                                 "</Favorites>\r\n");
    EXPECT_EQ (rows (0), "a|Two");  // the tree is the caller's affair
    open();
    EXPECT_FALSE (browser().isFavorite (lib ("TWO.zbpreset").getFullPathName()));
    select (0, "Favorites");
    EXPECT_EQ (view(), "*Favorites|a|Two / Two|One");

    // A doubled entry goes as one.
    browser().favorites.add ("two.zbpreset");
    browser().saveFavorites();
    toggle ("two.zbpreset");
    EXPECT_EQ (browser().favorites, juce::StringArray ({ "a/one.zbpreset" }));
}

TEST_F (BrowserFavorites, LoadByPathAndNumberTheProgramByFileName)
{
    putPreset ("b/one.zbpreset", "Other One", 33.0f);
    putFile (homeFile ("outside.zbpreset"), documentWithParams ({}).toStdString());
    putFile (lib ("nameless.zbpreset"), "<VelkorSettings/>");
    putFile (lib ("notes.txt"), "<VelkorSettings PresetName=\"Notes\"/>");

    for (const auto* path :
         { "b/one.zbpreset", "../outside.zbpreset", "nameless.zbpreset", "notes.txt" })
        toggle (path);

    open();
    select (0, "Favorites");
    EXPECT_EQ (rows (1), "Other One|Test");  // named presets only, wherever they lie
    select (1, "Other One");
    EXPECT_EQ (processor.presetName, "Other One");
    EXPECT_EQ (delay(), 33.0f);
    EXPECT_EQ (processor.currentProgram, 0);  // the first of that file name is another preset
}

TEST_F (BrowserFavorites, ForgetWhatIsGoneOnDiskToo)
{
    lib ("folder.zbpreset").createDirectory();
    putFile (file(),
             "<favorites><FAVORITE path=\"gone.zbpreset\"/><Favorite path=\"two.zbpreset\"/>"
             "<Favorite path=\"\"/><Favorite/><Else path=\"a/one.zbpreset\"/>"
             "<Favorite path=\"folder.zbpreset\"/></favorites>");
    open();
    EXPECT_EQ (browser().favorites, juce::StringArray ({ "two.zbpreset" }));
    EXPECT_EQ (bytesOf (file()).find ("gone"), std::string::npos);

    // What loses nothing, or is none of ours, stays as it is written, byte by byte.
    for (const auto* kept : { "<Favorites><Favorite path=\"two.zbpreset\"/></Favorites>",
                              "<Favorites", "<Other><Favorite path=\"gone\"/></Other>", "" })
    {
        putFile (file(), kept);
        open();
        EXPECT_EQ (bytesOf (file()), kept);
    }

    EXPECT_TRUE (browser().favorites.isEmpty());
}

TEST_F (BrowserFavorites, OfSeveralInstancesAndProcessesAreAllKept)
{
    zb_PresetManager other (processor, folder, nullptr, nullptr);
    toggle ("two.zbpreset");
    other.toggleFavorite (lib ("a/one.zbpreset").getFullPathName());
    EXPECT_EQ (stored(), 2);
    toggle ("a/one.zbpreset");  // which the other has starred
    EXPECT_EQ (browser().favorites, juce::StringArray ({ "two.zbpreset" }));

    constexpr int kStars = 200;
    const auto child = fork();
    ASSERT_GE (child, 0);

    for (int i = 0; i < kStars; ++i)
    {
        toggle ((child == 0 ? "child" : "parent") + juce::String (i));
        juce::Thread::sleep (3);  // the other one gets its turn: a wait for the lock is bounded
    }

    if (child == 0)
        _exit (0);

    waitpid (child, nullptr, 0);
    EXPECT_EQ (stored(), 1 + 2 * kStars);
}

TEST_F (BrowserFavorites, MayBeAnyNumber)
{
    constexpr int kMany = 40000;
    std::string text = "<Favorites version=\"1.0\">";

    for (int i = 0; i < kMany; ++i)
        text += "<Favorite path=\"" + std::to_string (i) + "\"/>";

    putFile (file(), text + "</Favorites>");
    toggle ("two.zbpreset");
    EXPECT_EQ (stored(), kMany + 1);
    toggle ("two.zbpreset");
    EXPECT_EQ (stored(), kMany);
}

TEST_F (BrowserFavorites, OfAFileThatCannotBeReadAreNotLostToAStar)
{
    // What is damaged goes aside, again and again; an empty file holds nothing.
    const std::string torn = "<Favorites><Favorite path=\"a/one.zbpreset\"/> torn";

    for (const auto& bytes : { torn, torn + " again", std::string ("<Other/>"), std::string() })
    {
        putFile (file(), bytes);
        toggle ("two.zbpreset");
        EXPECT_EQ (stored(), 1) << bytes;
    }

    std::vector<std::string> aside;

    for (const auto& other : lib().findChildFiles (juce::File::findFiles, false, "favorites*"))
        if (other != file())
            aside.push_back (bytesOf (other));

    std::sort (aside.begin(), aside.end());
    EXPECT_EQ (aside, (std::vector<std::string> { torn, torn + " again", "<Other/>" }));

    // A file beyond all measure, and one that is no regular file, stay as they are.
    ASSERT_EQ (truncate (file().getFullPathName().toRawUTF8(), 100 << 20), 0);
    toggle ("two.zbpreset");
    EXPECT_EQ (file().getSize(), 100 << 20);
    ASSERT_TRUE (file().deleteFile() && file().createDirectory());
    toggle ("two.zbpreset");
    EXPECT_EQ (browser().favorites.size(), 1);  // as after the last star that could be written
    EXPECT_TRUE (file().isDirectory());
}
