// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <memory>

/** The browser's artwork. Message thread. */
std::unique_ptr<juce::Drawable> makeFolderIcon();

/** A gold star, 20 by 20. */
std::unique_ptr<juce::Drawable> makeFavoritesIcon();

/** The star of a row that is a favourite, and of one that isn't. */
std::unique_ptr<juce::Drawable> makeStarOn();
std::unique_ptr<juce::Drawable> makeStarOff();

/** A small waveform in a colour, 200 by 100, whose bars have random heights: another one each time. */
juce::Image makeSampleImage (juce::Colour colour);

/** An image at half its size, each pixel the mean of four. */
juce::Image halved (const juce::Image& image);
