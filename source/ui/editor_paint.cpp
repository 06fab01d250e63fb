// SPDX-License-Identifier: AGPL-3.0-or-later
#include "ui/VelkorAudioProcessorEditor.h"

/** Fills an outline as large as fits into a box, centred; nothing for an empty outline. */
static void fillFitted (juce::Graphics& g, const juce::Path& outline, juce::Rectangle<float> box)
{
    if (! outline.isEmpty())
        g.fillPath (outline, outline.getTransformToScaleToFit (box, true));
}

static juce::Colour faded (juce::Colour colour, int alpha)
{
    return colour.withAlpha (static_cast<juce::uint8> (alpha));
}

void VelkorAudioProcessorEditor::paint (juce::Graphics& g)
{
    g.fillAll (colorDark1);
    paintLogos (g);
    paintHistoryButton (g, *undoButton);
    paintHistoryButton (g, *redoButton);
    paintPresetField (g);
    paintStar (g);
    paintBypass (g);

    if (zubrowLogo != nullptr)
    {
        const auto height = 1.5f * unit, width = height * kLogoAspect;
        zubrowLogo->drawWithin (g,
                                { static_cast<float> (getWidth()) - width - 2.0f * unit,
                                  presetRect.getCentreY() - 0.5f * height, width, height },
                                juce::RectanglePlacement::centred, 1.0f);
    }
}

void VelkorAudioProcessorEditor::paintOverChildren (juce::Graphics& g)
{
    const auto a = static_cast<float> (getWidth()) - unit - 0.25f * unit;
    const auto b = static_cast<float> (getHeight()) - unit - 0.25f * unit;
    g.setColour (faded (colorLight2, 0x80));

    for (const auto& dot : { juce::Point<float> (a, b), { a, b - unit }, { a - unit, b } })
        g.fillEllipse (dot.x, dot.y, 0.5f * unit, 0.5f * unit);
}

void VelkorAudioProcessorEditor::paintLogos (juce::Graphics& g) const
{
    const auto about = aboutButton->getBounds().toFloat();
    g.setColour (faded (colorLight1, 0x40));
    fillFitted (g, logoKanaPath,
                about.withSizeKeepingCentre (about.getWidth() * 1.1f, about.getHeight() * 1.1f)
                    .translated (12.0f * unit, 0.0f));
    g.setColour (colorLight1);
    fillFitted (g, logoPath, about);
}

void VelkorAudioProcessorEditor::paintHistoryButton (juce::Graphics& g,
                                                     const juce::TextButton& button) const
{
    const auto bounds = button.getBounds().toFloat();
    g.setColour (faded (colorLight2, button.isDown() ? 0x99 : 0x33));
    g.fillRoundedRectangle (bounds, 0.3f * unit);
    g.setColour (button.isDown() ? colorLight1 : colorLight2);
    g.setFont (shared->getMyFont (2, unit));
    g.drawText (button.getName(), bounds, juce::Justification::centred, true);
}

void VelkorAudioProcessorEditor::paintPresetField (juce::Graphics& g) const
{
    const auto u = unit;
    g.setColour (colorDark1);
    g.fillRoundedRectangle (presetRect, 0.5f * u);
    g.setColour (colorLight2);
    g.drawRoundedRectangle (presetRect.reduced (0.2f * u), 0.5f * u, 0.1f * u);

    const auto top = presetRect.getY() + presetRect.getHeight() * 0.5f - 0.25f * u;
    g.fillEllipse (presetRect.getX() + u, top, 0.5f * u, 0.5f * u);
    g.fillEllipse (presetRect.getRight() - u - 0.5f * u, top, 0.5f * u, 0.5f * u);

    auto text = velkor.getPresetName();

    if (velkor.undoManager.canUndo())
        text << " *";

    g.setFont (shared->getMyFont (2, 1.5f * u));
    g.setColour (colorLight1);
    g.drawText (text, presetRect, juce::Justification::centred, true);
}

void VelkorAudioProcessorEditor::paintStar (juce::Graphics& g) const
{
    auto star = starPath;
    star.applyTransform (star.getTransformToScaleToFit (
        favoriteButton->getBounds().toFloat().reduced (0.3f * unit), true));

    const auto path = currentPresetPath();
    const auto over = favoriteButton->isOver();

    if (path.isNotEmpty() && presetManager->isFavorite (path))
    {
        g.setColour (colorLight1.withAlpha (over ? 1.0f : 0.85f));
        g.fillPath (star);
    }
    else
    {
        g.setColour (faded (colorLight2, over ? 0xb2 : 0x66));
        g.strokePath (star, juce::PathStrokeType (0.12f * unit));
    }
}

void VelkorAudioProcessorEditor::paintBypass (juce::Graphics& g) const
{
    const auto bounds = bypassButton->getBounds().toFloat();
    const auto on = bypassButton->getToggleState();
    g.setColour (on ? colorHighlight2 : faded (colorLight2, 0x66));
    g.fillRoundedRectangle (bounds, 0.3f * unit);
    g.setColour (on ? colorDark1 : colorLight1);
    g.setFont (shared->getMyFont (2, unit));
    g.drawText ("BYPASS", bounds, juce::Justification::centred, true);
}
