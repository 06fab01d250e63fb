// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/busy_cover.h"

#include "browser/zb_PresetManager.h"

/** How long the message loop runs at a time, ms. */
static constexpr int kSliceMs = 10;

bool letMessageLoopRun()
{
    return juce::MessageManager::getInstance()->runDispatchLoopUntil (kSliceMs);
}

BusyCover::BusyCover (zb_PresetManager& manager, const juce::String& textToShow)
    : owner (manager), text (textToShow)
{
    setTitle (text);
    setMouseCursor (juce::MouseCursor::WaitCursor);
    owner.addAndMakeVisible (*this);
    setBounds (owner.getLocalBounds());
    setWantsKeyboardFocus (true);

    if (isShowing())
        grabKeyboardFocus();
}

bool BusyCover::keyPressed (const juce::KeyPress&)
{
    return true;  // the tab key too, which leads to the buttons below
}

void BusyCover::paint (juce::Graphics& g)
{
    const float unit = owner.unit;
    auto box = juce::Rectangle<float> (30.0f, 6.0f) * unit;
    box.setCentre (getLocalBounds().toFloat().getCentre());
    owner.look.drawBox (g, box, unit);
    g.setColour (owner.colours.colourText);
    g.setFont (owner.look.regularFont (1.4f * unit));
    g.drawText (text, box, juce::Justification::centred, true);
}
