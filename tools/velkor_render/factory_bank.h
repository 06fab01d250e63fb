// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

// The presets that the plug-in carries, read where it carries them: nobody's preset folder is looked at.

/** A preset of the bank. */
struct FactoryPreset
{
    int number = 0;     ///< its place in the bank
    std::string name;   ///< "Tape Delay"
    std::string title;  ///< both, as its file is named: "11 - Tape Delay"
};

/** The whole bank, by number. */
std::vector<FactoryPreset> factoryBank();

/** The preset that somebody means by its name, its title or its number. Neither case nor blanks around it
    count. Nothing if there is none. */
std::optional<FactoryPreset> findFactoryPreset (const std::string& wanted);

/** The document of a preset of the bank; empty if there is none. */
std::unique_ptr<juce::XmlElement> readFactoryPreset (const FactoryPreset& preset);

/** The document that a new instance starts with on a new machine. */
std::unique_ptr<juce::XmlElement> readShippedDefault();
