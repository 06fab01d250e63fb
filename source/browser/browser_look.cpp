// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/browser_look.h"

#include <utility>

BrowserLook::BrowserLook (juce::Typeface::Ptr regularFont, juce::Typeface::Ptr semiboldFont)
    : regular (std::move (regularFont)), semibold (std::move (semiboldFont)),
      english (juce::SystemStats::getUserLanguage() == "en")
{
}

juce::FontOptions BrowserLook::fontOf (const juce::Typeface::Ptr& typeface, float height) const
{
    return (typeface != nullptr ? juce::FontOptions (typeface) : juce::FontOptions())
        .withHeight (height);
}

juce::FontOptions BrowserLook::regularFont (float height) const
{
    return fontOf (regular, height);
}

juce::FontOptions BrowserLook::semiboldFont (float height) const
{
    return fontOf (semibold, height);
}

float BrowserLook::textSize (float unit, float englishUnits, float otherUnits) const
{
    return unit * (english ? englishUnits : otherUnits);
}

void BrowserLook::drawButton (juce::Graphics& g, const juce::Button& button,
                              const juce::String& label, float corner, float size) const
{
    const auto bounds = button.getBounds().toFloat();
    const bool isDown = button.isDown();
    g.setColour (isDown ? colours.colourHighlight
                        : colours.colourAccent.withAlpha (static_cast<juce::uint8> (0x40)));
    g.fillRoundedRectangle (bounds, corner);

    if (button.hasKeyboardFocus (false))
    {
        g.setColour (colours.colourDim);
        g.drawRoundedRectangle (bounds.reduced (0.5f), corner, 1.0f);
    }

    g.setColour (isDown ? colours.colourBackground : colours.colourText);
    g.setFont (regularFont (size));
    g.drawFittedText (label, bounds.reduced (0.3f * size, 0.0f).toNearestInt(),
                      juce::Justification::centred, 2, 1.0f);
}

void BrowserLook::drawBox (juce::Graphics& g, juce::Rectangle<float> box, float unit) const
{
    g.fillAll (colours.colourBackground.withAlpha (0.5f));
    g.setColour (colours.colourBackground);
    g.fillRoundedRectangle (box, unit);
    g.setColour (colours.colourDim);
    g.drawRoundedRectangle (box, unit, 0.1f * unit);
}
