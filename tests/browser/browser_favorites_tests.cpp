// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/browser_fixture.h"

class BrowserFavorites : public BrowserTest
{
protected:
    BrowserFavorites()
    {
        putPreset ("a/one.zbpreset", "One", 11.0f);
        putPreset ("two.zbpreset", "Two", 22.0f);
    }

    juce::File file() const { return lib ("favorites.xml"); }
};

TEST_F (BrowserFavorites, AreKeptInTheOrderOfToggling)
{
    open();
    EXPECT_EQ (rows (0), "a|Two");
    browser().toggleFavorite (lib ("two.zbpreset").getFullPathName());
    browser().toggleFavorite (lib ("a/one.zbpreset").getFullPathName());
    EXPECT_EQ (file().loadFileAsString(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n\r\n"
                                          "<Favorites version=\"1.0\">\r\n"
                                          "  <Favorite path=\"two.zbpreset\"/>\r\n"
                                          "  <Favorite path=\"a/one.zbpreset\"/>\r\n"
                                          "</Favorites>\r\n");
    EXPECT_EQ (rows (0), "a|Two");  // the tree is the caller's affair

    open();
    EXPECT_EQ (rows (0), "Favorites|a|Two");
    EXPECT_FALSE (browser().isFavorite (lib ("TWO.zbpreset").getFullPathName()));
    select (0, "Favorites");
    EXPECT_EQ (view(), "*Favorites|a|Two / Two|One");

    browser().toggleFavorite (lib ("two.zbpreset").getFullPathName());
    EXPECT_EQ (browser().favorites, juce::StringArray ({ "a/one.zbpreset" }));
}

TEST_F (BrowserFavorites, LoadByPathAndNumberTheProgramByFileName)
{
    putPreset ("b/one.zbpreset", "Other One", 33.0f);
    open();
    browser().toggleFavorite (lib ("b/one.zbpreset").getFullPathName());
    open();
    select (0, "Favorites");
    select (1, "Other One");
    EXPECT_EQ (processor.presetName, "Other One");
    EXPECT_EQ (delay(), 33.0f);
    EXPECT_EQ (processor.currentProgram, 0);  // the first of that file name is another preset
    EXPECT_EQ (browser().selectedPath, lib ("b/one.zbpreset").getFullPathName());
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
    EXPECT_FALSE (file().loadFileAsString().contains ("gone"));

    // Whole lists stay as they are written, byte by byte.
    const std::string whole = "<Favorites><Favorite path=\"two.zbpreset\"/></Favorites>";
    putFile (file(), whole);
    open();
    EXPECT_EQ (bytesOf (file()), whole);

    for (const auto* junk :
         { "<Favorites", "<Other><Favorite path=\"two.zbpreset\"/></Other>", "" })
    {
        putFile (file(), junk);
        open();
        EXPECT_TRUE (browser().favorites.isEmpty()) << junk;
        EXPECT_EQ (bytesOf (file()), junk);
    }
}

TEST_F (BrowserFavorites, ShowOnlyNamedPresetsAndMayLieOutside)
{
    putFile (homeFile ("outside.zbpreset"), documentWithParams ({}).toStdString());
    putFile (lib ("nameless.zbpreset"), "<VelkorSettings/>");
    putFile (lib ("notes.txt"), "<VelkorSettings PresetName=\"Notes\"/>");
    open();

    for (const auto& path : { homeFile ("outside.zbpreset"), lib ("nameless.zbpreset"),
                              lib ("notes.txt"), lib ("a/one.zbpreset") })
        browser().toggleFavorite (path.getFullPathName());

    EXPECT_EQ (browser().favorites[0], "../outside.zbpreset");
    open();
    select (0, "Favorites");
    EXPECT_EQ (rows (1), "Test|One");

    // A doubled entry goes as one.
    browser().favorites = { "two.zbpreset", "a/one.zbpreset", "two.zbpreset" };
    browser().toggleFavorite (lib ("two.zbpreset").getFullPathName());
    EXPECT_EQ (browser().favorites, juce::StringArray ({ "a/one.zbpreset" }));
}
