// SPDX-License-Identifier: AGPL-3.0-or-later
#include "browser/zb_PresetManagerDeleteWindow.h"

#include "browser/zb_PresetManager.h"
#include "state/folder_listing.h"

zb_PresetManagerDeleteWindow::zb_PresetManagerDeleteWindow (zb_PresetManager& manager,
                                                            const juce::String& fullPath)
    : path (fullPath), owner (manager), doIt ("Do it!", juce::translate ("Do it!")),
      keep ("Cancel", juce::translate ("Cancel"))
{
    setTitle (juce::translate ("Are you absolutely sure?"));

    for (auto* const button : { &doIt, &keep })
    {
        button->addListener (this);
        addAndMakeVisible (button);
    }
}

void zb_PresetManagerDeleteWindow::resized()
{
    unit = owner.unit;
    box = juce::Rectangle<float> (30.0f, 16.0f) * unit;
    box.setCentre (getLocalBounds().toFloat().getCentre());

    const juce::Rectangle<float> left (box.getCentreX() - 10.5f * unit, box.getY() + 12.0f * unit,
                                       10.0f * unit, 3.0f * unit);
    doIt.setBounds (left.toNearestInt());
    keep.setBounds (left.translated (11.0f * unit, 0.0f).toNearestInt());
}

void zb_PresetManagerDeleteWindow::paint (juce::Graphics& g)
{
    const auto& look = owner.look;
    const juce::File file (path);
    const auto name = file.getFileNameWithoutExtension();
    const auto question = file.isDirectory() ? juce::translate ("Delete the folder") + " '" + name +
                                                   "' " + juce::translate ("and all its contents?")
                                             : juce::translate ("Delete the preset") + " '" + name +
                                                   "'" + juce::translate ("?");

    look.drawBox (g, box, unit);
    g.setFont (look.regularFont (1.15f * unit));
    g.setColour (owner.colours.colourText);

    auto line = box.withHeight (3.0f * unit).translated (0.0f, 2.5f * unit).reduced (unit, 0.0f);
    g.drawFittedText (question, line.toNearestInt(), juce::Justification::centred, 2, 1.0f);

    g.setColour (owner.colours.colourHighlight);
    g.drawText (juce::translate ("Are you absolutely sure?"), line.translated (0.0f, 3.5f * unit),
                juce::Justification::centred, true);

    for (const auto* const button : { &doIt, &keep })
        look.drawButton (g, *button, juce::translate (button->getName()), 0.5f * unit,
                         look.textSize (unit, 1.15f, 1.0f));
}

void zb_PresetManagerDeleteWindow::buttonClicked (juce::Button* button)
{
    if (button == &doIt)
        deleteForGood();
    else
        owner.removeDeleteWindow();
}

void zb_PresetManagerDeleteWindow::deleteForGood()
{
    const juce::File file (path);
    const auto openFolders = owner.getCurrentPath();

    if (! (file.isDirectory() ? deleteFolder (file) : file.deleteFile()))
        return;

    owner.folderChanged (openFolders);
    owner.removeDeleteWindow();
}
