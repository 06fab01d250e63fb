// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/browser_fixture.h"

#include <cstdlib>

/** What the browser draws beside the rows that the picture of the whole window shows. */
class BrowserLooks : public BrowserTest
{
protected:
    BrowserLooks()
    {
        putPreset ("Bells/one.zbpreset", "One");
        putPreset ("Init.zbpreset", "Init");
        putPreset ("Long.zbpreset", "A name that is a good deal longer than any column is wide");
    }

    juce::Image picture() const
    {
        return browser().createComponentSnapshot (browser().getLocalBounds());
    }

    /** Part of a row of the first column, in units from its left end or, if negative, its right end. */
    juce::Rectangle<int> partOfRow (int row, float from, float to) const
    {
        const auto& list = *browser().getColumn (0)->listBox;
        const auto place =
            browser().getLocalArea (&list, list.getRowPosition (row, true)).toFloat();
        const auto x = [&] (float units)
        { return (units < 0.0f ? place.getRight() : place.getX()) + units * browser().unit; };
        return place.withLeft (x (from)).withRight (x (to)).toNearestInt();
    }

    /** How much of an area has about this colour, 0 to 1. */
    static double share (const juce::Image& image, juce::Rectangle<int> area, juce::Colour wanted)
    {
        int count = 0;

        for (int y = area.getY(); y < area.getBottom(); ++y)
            for (int x = area.getX(); x < area.getRight(); ++x)
            {
                const auto seen = image.getPixelAt (x, y);
                count += std::abs (seen.getRed() - wanted.getRed()) +
                                     std::abs (seen.getGreen() - wanted.getGreen()) +
                                     std::abs (seen.getBlue() - wanted.getBlue()) <=
                                 6
                             ? 1
                             : 0;
            }

        return count / static_cast<double> (area.getWidth() * area.getHeight());
    }

    static inline const juce::Colour kGround { 0xff171717 };  ///< black, brightened by a tenth
};

TEST_F (BrowserLooks, AFavouriteHasAGoldStarAndALongNameEndsBeforeIt)
{
    constexpr int kLong = 3, kInit = 2;
    open();
    browser().toggleFavorite (lib ("Init.zbpreset").getFullPathName());

    for (const int width : { 600, 1500 })
    {
        SCOPED_TRACE (width);
        open (width);
        ASSERT_EQ (rows (0).upToFirstOccurrenceOf ("|A name", false, false),
                   "Favorites|Bells|Init");
        const auto gold = kGround.interpolatedWith (juce::Colour (0xffffd700), 0.75f);
        EXPECT_GT (share (picture(), partOfRow (kInit, -3.0f, -0.1f), gold), 0.04);
        EXPECT_EQ (share (picture(), partOfRow (kLong, -3.0f, -0.1f), gold), 0.0);
        EXPECT_LT (share (picture(), partOfRow (kLong, -3.0f, -0.1f), kGround), 0.97);
        EXPECT_LT (share (picture(), partOfRow (kLong, -5.0f, -3.0f), kGround), 1.0);
        EXPECT_EQ (share (picture(), partOfRow (kLong, -3.0f, -2.7f), kGround), 1.0);
    }
}
