// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/browser_icons.h"

#include <string_view>

static constexpr std::string_view kFolder =
    R"svg(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 20 20">
<path d="M2 5.5C2 4.4 2.9 3.5 4 3.5H7.6L9.4 5.5H16C17.1 5.5 18 6.4 18 7.5V14.5C18 15.6 17.1 16.5 16 16.5H4C2.9 16.5 2 15.6 2 14.5Z" fill="#aaaaaa"/>
<path d="M3.2 8.2H16.8" stroke="#171717" stroke-width="0.9" fill="none"/></svg>)svg";

static constexpr std::string_view kFavorites =
    R"svg(<svg xmlns="http://www.w3.org/2000/svg" width="20" height="20" viewBox="0 0 20 20">
<path d="M10 1.5L12.6 6.9L18.5 7.7L14.2 11.8L15.3 17.7L10 14.8L4.7 17.7L5.8 11.8L1.5 7.7L7.4 6.9Z" fill="#FFD700"/></svg>)svg";

static constexpr std::string_view kStarOn =
    R"svg(<svg xmlns="http://www.w3.org/2000/svg" width="16" height="16" viewBox="0 0 16 16">
<path d="M8 1.6L9.9 5.8L14.5 6.3L11.1 9.4L12.1 14L8 11.6L3.9 14L4.9 9.4L1.5 6.3L6.1 5.8Z" fill="#FFD700"/></svg>)svg";

static constexpr std::string_view kStarOff =
    R"svg(<svg xmlns="http://www.w3.org/2000/svg" width="16" height="16" viewBox="0 0 16 16">
<path d="M8 1.6L9.9 5.8L14.5 6.3L11.1 9.4L12.1 14L8 11.6L3.9 14L4.9 9.4L1.5 6.3L6.1 5.8Z" fill="none" stroke="#dddddd" stroke-width="1.1" stroke-linejoin="round"/></svg>)svg";

static std::unique_ptr<juce::Drawable> drawableOf (std::string_view svg)
{
    return juce::Drawable::createFromImageData (svg.data(), svg.size());
}

std::unique_ptr<juce::Drawable> makeFolderIcon()
{
    return drawableOf (kFolder);
}

std::unique_ptr<juce::Drawable> makeFavoritesIcon()
{
    return drawableOf (kFavorites);
}

std::unique_ptr<juce::Drawable> makeStarOn()
{
    return drawableOf (kStarOn);
}

std::unique_ptr<juce::Drawable> makeStarOff()
{
    return drawableOf (kStarOff);
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
