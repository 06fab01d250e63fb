// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/browser_icons.h"

#include <BinaryData.h>

static std::unique_ptr<juce::Drawable> drawableOf (const char* svg, int size)
{
    return juce::Drawable::createFromImageData (svg, static_cast<std::size_t> (size));
}

std::unique_ptr<juce::Drawable> makeFolderIcon()
{
    return drawableOf (BinaryData::icon_folder_svg, BinaryData::icon_folder_svgSize);
}

std::unique_ptr<juce::Drawable> makeFavoritesIcon()
{
    return drawableOf (BinaryData::icon_favorites_svg, BinaryData::icon_favorites_svgSize);
}

std::unique_ptr<juce::Drawable> makeStarOn()
{
    return drawableOf (BinaryData::star_on_svg, BinaryData::star_on_svgSize);
}

std::unique_ptr<juce::Drawable> makeStarOff()
{
    return drawableOf (BinaryData::star_off_svg, BinaryData::star_off_svgSize);
}

juce::Image makeSampleImage (juce::Colour colour)
{
    constexpr int kBars = 10;
    juce::Image image (juce::Image::ARGB, 200, 100, true);
    juce::Graphics g (image);
    juce::Random random;
    random.setSeedRandomly();
    g.setColour (colour);

    for (int bar = 1; bar <= kBars; ++bar)
    {
        const float height = random.nextFloat() * 50.0f + 10.0f;
        g.fillRect (juce::Rectangle<float> (static_cast<float> (10 * bar - 2),
                                            50.0f - height * 0.5f, 4.0f, height));
    }

    return image;
}

juce::Image halved (const juce::Image& image)
{
    return image.rescaled (image.getWidth() / 2, image.getHeight() / 2,
                           juce::Graphics::mediumResamplingQuality);
}
