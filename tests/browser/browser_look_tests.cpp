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

    /** The picture, twice as large as it is where it gets written. */
    juce::Image picture (const juce::String& name) const
    {
        if (const char* const target = std::getenv ("VELKOR_SNAPSHOTS"))
        {
            const auto image = browser().createComponentSnapshot (browser().getLocalBounds());
            juce::FileOutputStream out (juce::File (target).getChildFile (name + ".png"));
            out.setPosition (0);
            out.truncate();
            juce::PNGImageFormat().writeImageToStream (image, out);
        }

        return browser().createComponentSnapshot (browser().getLocalBounds());
    }

    juce::Colour pixel (const juce::Image& image, float xUnits, float yUnits) const
    {
        return image.getPixelAt (juce::roundToInt (xUnits * browser().unit),
                                 juce::roundToInt (yUnits * browser().unit));
    }
};

TEST_F (BrowserLooks, AtAllWidths)
{
    for (const int width : { 600, 900, 1500 })
    {
        open (width);
        browser().favorites = { "Bells/3.zbpreset", "Bells/Bright/Small/Slow Comet.zbpreset" };
        browser().saveFavorites();
        browser().makeNewTree();
        browser().resized();
        select (0, "Bells");
        select (1, "Bright");
        select (2, "Small");
        select (3, "Slow Comet");
        const auto image = picture ("browser-" + juce::String (width));
        EXPECT_EQ (pixel (image, 0.5f, 70.0f), juce::Colour (0xff171717));
    }
}

TEST_F (BrowserLooks, WithOverlays)
{
    open();
    select (0, "Bells");
    select (1, "Bells 3");
    picture ("browser-two-columns");
    browser().buttonClicked (browser().buttons[kDeleteCommand].get());
    picture ("browser-delete");
    browser().removeDeleteWindow();
    browser().buttonClicked (browser().buttons[kSaveCommand].get());
    picture ("browser-save");
    browser().removeSaveWindow();
    processor.factoryContentOffered = true;
    browser().downloadPanel = std::make_unique<zb_PresetManagerDownloadPanel> (browser());
    browser().addAndMakeVisible (*browser().downloadPanel);
    browser().resized();
    browser().downloadPanel->updatePanel ("Downloading", 0.42f, false);
    picture ("browser-download");
}

TEST_F (BrowserLooks, DuringADrag)
{
    open();
    select (0, "Bells");
    auto* const column = browser().getColumn (0);
    column->itemDragEnter ({ "x", column, { 20, 10 + column->listBox->getRowHeight() } });
    picture ("browser-drag");
    folder.deleteRecursively();
    open();
    picture ("browser-empty");
}
