// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/browser_strings.h"
#include "browser/zb_PresetManager.h"
#include "browser/zb_PresetManagerColumn.h"

// How a column and its rows look. Measures in units, but for the lines.

static constexpr float kNameStart = 3.25f;
static constexpr float kOutline = 2.0f;  ///< pixels

void zb_PresetManagerColumn::paintListBoxItem (int row, juce::Graphics& g, int width, int height,
                                               bool selected)
{
    const auto item = itemAt (row);

    if (! item.isValid())
        return;

    const auto& colours = look.colours;
    const auto bounds = juce::Rectangle<int> (width, height).toFloat();
    const float corner = bounds.getHeight() * 0.25f;
    const bool hasStar = isPreset (item);

    if (selected)
    {
        g.setColour ((hasStar ? colours.colourHighlight : colours.colourAccent)
                         .withAlpha (static_cast<juce::uint8> (0x80)));
        g.fillRoundedRectangle (bounds.reduced (0.0f, 0.25f * unit), corner);
    }

    if (dragHovering && row == dropRow && item.hasType (typeString[kFolderNode]))
    {
        g.setColour (colours.colourHighlight);
        g.drawRoundedRectangle (bounds.reduced (1.0f), corner, kOutline);
    }

    paintIcon (g, item, height, selected);

    if (hasStar)
        paintStar (g, item, width, height, selected);

    g.setColour (selected ? colours.colourText : colours.colourDim);
    g.setFont (look.regularFont (1.4f * unit));
    g.drawText (
        item["name"].toString(),
        bounds.withLeft (kNameStart * unit).withRight (bounds.getRight() - kStarZone * unit),
        juce::Justification::centredLeft, true);
}

void zb_PresetManagerColumn::paintIcon (juce::Graphics& g, const juce::ValueTree& item, int height,
                                        bool selected) const
{
    const juce::Rectangle<float> start (kNameStart * unit, static_cast<float> (height));
    const auto zone = start.reduced (0.5f * unit, 0.45f * unit);
    const float opacity = selected ? 1.0f : 0.75f;

    if (item.hasType (typeString[kSampleNode]))
        return paintSample (g, start, opacity);

    const auto* const icon = item.hasType (typeString[kFolderNode])      ? folderIcon.get()
                             : item.hasType (typeString[kFavoritesNode]) ? favoritesIcon.get()
                                                                         : nullptr;

    if (icon != nullptr)
        icon->drawWithin (g, zone, juce::RectanglePlacement::centred, opacity);
}

/** The image takes the row's height. Its bars, which end half-way, fill the zone: closer
    together, they would be fewer than pixels can show. */
void zb_PresetManagerColumn::paintSample (juce::Graphics& g, juce::Rectangle<float> zone,
                                          float opacity) const
{
    // Scaled down by more than half, whole bars would fall between the points where the image is
    // looked at.
    const float pixels = zone.getHeight() * g.getInternalContext().getPhysicalPixelScaleFactor();
    const auto& image = pixels <= static_cast<float> (smallSampleImage.getHeight())
                            ? smallSampleImage
                            : sampleImage;
    constexpr float kImageUnits = 6.0f;

    g.setOpacity (opacity);
    g.drawImage (image, zone.withWidth (kImageUnits * unit),
                 juce::RectanglePlacement::stretchToFit);
}

void zb_PresetManagerColumn::paintStar (juce::Graphics& g, const juce::ValueTree& item, int width,
                                        int height, bool selected) const
{
    const bool on = manager().isFavorite (item["path"].toString());
    const auto zone = juce::Rectangle<float> (static_cast<float> (width) - kStarZone * unit, 0.0f,
                                              kStarZone * unit, static_cast<float> (height))
                          .reduced (0.6f * unit);
    const float opacity = on ? (selected ? 1.0f : 0.75f) : (selected ? 0.5f : 0.3f);

    if (const auto& star = on ? starOn : starOff)
        star->drawWithin (g, zone, juce::RectanglePlacement::centred, opacity);
}

void zb_PresetManagerColumn::paintOverChildren (juce::Graphics& g)
{
    if (! dragHovering)
        return;

    g.setColour (look.colours.colourHighlight.withAlpha (static_cast<juce::uint8> (0x66)));
    g.drawRoundedRectangle (getLocalBounds().toFloat().reduced (1.0f), 0.5f * unit, kOutline);
}
