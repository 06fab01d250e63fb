// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/zb_PresetManagerDownloadPanel.h"

#include "browser/zb_PresetManager.h"

#include <cmath>
#include <utility>

zb_PresetManagerDownloadPanel::zb_PresetManagerDownloadPanel (zb_PresetManager& manager)
    : owner (manager), message (juce::translate ("CONTACTING SERVER"))
{
    setTitle (juce::translate ("Downloading Factory Presets"));
}

void zb_PresetManagerDownloadPanel::layOut (float newUnit)
{
    unit = newUnit;
    const int u = juce::roundToInt (unit);
    setBounds (30 * u, 15 * u, 40 * u, 15 * u);
}

void zb_PresetManagerDownloadPanel::updatePanel (juce::String text, float newProgress,
                                                 bool finished)
{
    message = std::move (text);
    progress = std::isfinite (newProgress) ? juce::jlimit (0.0f, 1.0f, newProgress)
                                           : 0.0f;  // a server need not tell the length

    if (message == juce::translate ("Downloading"))
        message = finished
                      ? juce::translate ("Unarchiving")
                      : message + "  " + juce::String (juce::roundToInt (progress * 100.0f)) + "%";

    repaint();
}

void zb_PresetManagerDownloadPanel::paint (juce::Graphics& g)
{
    const auto& colours = owner.colours;
    const auto bounds = getLocalBounds().toFloat();
    g.setColour (colours.colourPanel);
    g.fillRoundedRectangle (bounds.withTrimmedTop (0.2f * unit), 1.25f * unit);

    g.setColour (colours.colourText);
    g.setFont (owner.look.semiboldFont (1.5f * unit));
    g.drawText (juce::translate ("Downloading Factory Presets"),
                bounds.withTop (2.0f * unit).withHeight (2.5f * unit), juce::Justification::centred,
                true);

    g.setColour (colours.colourDim);
    g.setFont (owner.look.regularFont (1.25f * unit));
    g.drawText (message, bounds.withTop (6.0f * unit).withHeight (2.0f * unit),
                juce::Justification::centred, true);

    const auto line = [&] (float fraction)
    {
        g.drawLine (5.0f * unit, 10.0f * unit, (5.0f + 30.0f * fraction) * unit, 10.0f * unit,
                    0.2f * unit);
    };

    g.setColour (colours.colourAccent.withAlpha (static_cast<juce::uint8> (0x40)));
    line (1.0f);
    g.setColour (colours.colourAccent);
    line (progress);
}
