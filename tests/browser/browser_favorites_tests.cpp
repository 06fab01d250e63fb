// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/browser_fixture.h"

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
