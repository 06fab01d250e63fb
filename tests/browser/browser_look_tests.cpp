// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/browser_fixture.h"

#include <cstdlib>

/** What the browser draws. With VELKOR_SNAPSHOTS set to a folder, its pictures go there to be looked at. */
class BrowserLooks : public BrowserTest
{
protected:
    BrowserLooks()
    {
        for (const auto* name : { "Bells", "Drones", "Percussion" })
            for (int i = 0; i < 40; ++i)
                putPreset (juce::String (name) + "/" + juce::String (i) + ".zbpreset",
                           juce::String (name) + " " + juce::String (i));

        for (const auto* name : { "Glass Orchard", "Slow Comet",
                                  "A name that is a good deal longer than any column is wide" })
            putPreset ("Bells/Bright/Small/" + juce::String (name) + ".zbpreset", name);

        putFile (lib ("Bells/Bright/loop.zbpreset"), "<VelkorSettings PresetName=\"Loop of Rain\" "
                                                     "Sample=\"1\"><Parameters/></VelkorSettings>");
        putPreset ("Init.zbpreset", "Init");
        putPreset (juce::String::fromUTF8 ("\xe6\xb3\xa2\xe3\x81\xae\xe9\x9f\xb3.zbpreset"),
                   juce::String::fromUTF8 ("\xc3\x89"
                                           "clat d'\xc3\xa9t\xc3\xa9"));
    }

    /** The picture of the browser as it is now. */
    juce::Image picture (const juce::String& name) const
    {
        const auto image = browser().createComponentSnapshot (browser().getLocalBounds());

        if (const char* const target = std::getenv ("VELKOR_SNAPSHOTS"))
        {
            const auto file = juce::File (target).getChildFile (name + ".png");
            file.deleteFile();
            juce::FileOutputStream out (file);
            juce::PNGImageFormat().writeImageToStream (image, out);
        }

        return image;
    }

    /** Part of a row, in units from its left end or, if negative, its right end. */
    juce::Rectangle<int> partOfRow (int column, const juce::String& name, float from,
                                    float to) const
    {
        const auto& found = *browser().getColumn (column);
        const int row = found.tree.indexOf (found.tree.getChildWithProperty ("name", name));
        const auto place =
            browser()
                .getLocalArea (found.listBox.get(), found.listBox->getRowPosition (row, true))
                .toFloat();
        const auto x = [&] (float units)
        { return (units < 0.0f ? place.getRight() : place.getX()) + units * browser().unit; };
        return place.withLeft (x (from)).withRight (x (to)).toNearestInt();
    }

    static bool isLike (juce::Colour a, juce::Colour b, int tolerance = 6)
    {
        return std::abs (a.getRed() - b.getRed()) + std::abs (a.getGreen() - b.getGreen()) +
                   std::abs (a.getBlue() - b.getBlue()) <=
               tolerance;
    }

    /** How much of an area has about this colour, 0 to 1. */
    static double share (const juce::Image& image, juce::Rectangle<int> area, juce::Colour colour)
    {
        int count = 0;

        for (int y = area.getY(); y < area.getBottom(); ++y)
            for (int x = area.getX(); x < area.getRight(); ++x)
                count += isLike (image.getPixelAt (x, y), colour) ? 1 : 0;

        return count / static_cast<double> (area.getWidth() * area.getHeight());
    }

    static inline const juce::Colour kGround { 0xff171717 };  ///< black, brightened by a tenth
    static inline const juce::Colour kFolderRow = kGround.overlaidWith (juce::Colour (0x800094d8));
    static inline const juce::Colour kPresetRow = kGround.overlaidWith (juce::Colour (0x8050d2d7));
};

TEST_F (BrowserLooks, RowsShowWhatTheyAreAtAllWidths)
{
    for (const int width : { 600, 900, 1500 })
    {
        SCOPED_TRACE (width);
        open (width);
        browser().favorites = { "Init.zbpreset", "Bells/Bright/Small/Slow Comet.zbpreset" };
        browser().saveFavorites();
        browser().makeNewTree();
        browser().resized();
        select (0, "Bells");
        select (1, "Bright");
        select (2, "Small");
        select (3, "Slow Comet");
        const auto image = picture ("browser-" + juce::String (width));
        const auto seen =
            [&] (int column, const char* name, float from, float to, juce::Colour colour)
        { return share (image, partOfRow (column, name, from, to), colour); };

        // A selected row is filled but for a margin above and below.
        EXPECT_NEAR (seen (0, "Bells", -2.0f, -1.0f, kFolderRow), 0.8, 0.1);
        EXPECT_NEAR (seen (3, "Slow Comet", -4.0f, -3.0f, kPresetRow), 0.8, 0.1);
        EXPECT_EQ (seen (0, "Drones", -2.0f, -1.0f, kGround), 1.0);
        EXPECT_EQ (seen (3, "Glass Orchard", -3.9f, -3.0f, kGround), 1.0);

        // Folders have an icon and no star, presets a star and no icon; a favourite's is gold.
        EXPECT_LT (seen (0, "Drones", 0.0f, 3.0f, kGround), 0.75);
        EXPECT_LT (seen (2, "Loop of Rain", 0.0f, 3.0f, kGround), 0.99);
        EXPECT_EQ (seen (0, "Init", 0.0f, 3.0f, kGround), 1.0);
        EXPECT_GT (seen (0, "Init", -3.0f, -0.1f,
                         kGround.interpolatedWith (juce::Colour (0xffffd700), 0.75f)),
                   0.04);
        EXPECT_GT (seen (3, "Slow Comet", -3.0f, -0.1f, juce::Colour (0xffffd700)), 0.04);
        EXPECT_GT (seen (3, "Glass Orchard", -3.0f, -0.1f, kGround), 0.6);
        EXPECT_LT (seen (3, "Glass Orchard", -3.0f, -0.1f, kGround), 0.97);

        // A long name ends where the star begins.
        EXPECT_LT (
            share (image,
                   partOfRow (3, browser().getColumn (3)->tree.getChild (0)["name"].toString(),
                              -5.0f, -3.0f),
                   kGround),
            1.0);
        EXPECT_EQ (
            share (image,
                   partOfRow (3, browser().getColumn (3)->tree.getChild (0)["name"].toString(),
                              -3.0f, -2.7f),
                   kGround),
            1.0);
    }
}

TEST_F (BrowserLooks, OverlaysCoverTheMiddle)
{
    open();
    select (0, "Bells");
    select (1, "Bells 3");
    const auto middle = browser().getLocalBounds().withSizeKeepingCentre (260, 20);
    EXPECT_EQ (share (picture ("browser-two-columns"), middle, juce::Colours::black), 0.0);

    browser().buttonClicked (browser().buttons[kDeleteCommand].get());
    auto image = picture ("browser-delete");
    EXPECT_GT (share (image, middle, juce::Colours::black), 0.7);
    EXPECT_TRUE (
        isLike (image.getPixelAt (450, 265), juce::Colour (0xffaaaaaa), 60));  // the outline
    browser().removeDeleteWindow();

    browser().buttonClicked (browser().buttons[kSaveCommand].get());
    image = picture ("browser-save");
    EXPECT_GT (share (image,
                      browser().getLocalBounds().withSizeKeepingCentre (340, 30).translated (0, 25),
                      juce::Colours::black),
               0.7);
    browser().removeSaveWindow();

    const juce::Rectangle<int> downloadButton (18, 234, 126, 24);
    EXPECT_EQ (share (image, downloadButton, kGround.interpolatedWith (juce::Colours::black, 0.5f)),
               1.0);
    processor.factoryContentOffered = true;
    browser().downloadPanel = std::make_unique<zb_PresetManagerDownloadPanel> (browser());
    browser().addAndMakeVisible (*browser().downloadPanel);
    browser().resized();
    browser().downloadPanel->updatePanel ("Downloading", 0.5f, false);
    image = picture ("browser-download");
    EXPECT_GT (share (image, downloadButton, kGround.overlaidWith (juce::Colour (0x400094d8))),
               0.5);

    // The line of the progress: full to the half, faint behind it; its edges are soft.
    EXPECT_TRUE (isLike (image.getPixelAt (270 + 100, 135 + 90), juce::Colour (0xff0094d8), 60));
    EXPECT_TRUE (isLike (image.getPixelAt (270 + 300, 135 + 90),
                         juce::Colour (0xff111111).overlaidWith (juce::Colour (0x400094d8)), 20));
}

TEST_F (BrowserLooks, ADragOutlinesTheColumnAndTheFolder)
{
    open();
    auto* const column = browser().getColumn (0);
    const auto hover = [&] (const char* name)
    {
        const auto point = partOfRow (0, name, 4.0f, 5.0f).getCentre() - column->getPosition();
        column->itemDragEnter ({ "x", column, point });
        const auto image = picture (juce::String ("browser-drag-") + name);
        column->itemDragExit ({ "x", column, point });
        return share (image, partOfRow (0, name, 4.0f, -4.0f).removeFromTop (4),
                      juce::Colour (0xff50d2d7));
    };
    EXPECT_NEAR (hover ("Drones"), 0.5, 0.1);
    EXPECT_EQ (hover ("Init"), 0.0);  // presets take nothing

    folder.deleteRecursively();
    open();
    EXPECT_EQ (share (picture ("browser-empty"), { 165, 10, 180, 600 }, kGround), 1.0);
}
