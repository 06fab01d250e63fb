// SPDX-License-Identifier: AGPL-3.0-or-later
#include "ui/SharedInterface.h"

#include <BinaryData.h>

static juce::Colour opaque (const char* digits)
{
    return juce::Colour::fromString (juce::String ("ff") + digits);
}

const juce::Colour colorDark1 = opaque ("0f0f0f");
const juce::Colour colorDark2 = opaque ("242424");
const juce::Colour colorLight1 = opaque ("c5c7c7");
const juce::Colour colorLight2 = opaque ("7f8384");
const juce::Colour colorHighlight1 = opaque ("3fadae");
const juce::Colour colorHighlight2 = opaque ("c24444");
const juce::Colour colorHighlight3 = opaque ("ffae00");

static juce::Typeface::Ptr embedded (const char* data, int size)
{
    return juce::Typeface::createSystemTypefaceFor (data, static_cast<std::size_t> (size));
}

SharedInterface::SharedInterface (VelkorAudioProcessor& processorToUse,
                                  juce::AudioProcessorValueTreeState& stateToUse)
    : processor (processorToUse), state (stateToUse),
      sharedFontUltralight (embedded (BinaryData::DosisLight_otf, BinaryData::DosisLight_otfSize)),
      sharedFontLight (embedded (BinaryData::DosisBook_otf, BinaryData::DosisBook_otfSize)),
      sharedFontRegular (embedded (BinaryData::DosisMedium_otf, BinaryData::DosisMedium_otfSize)),
      sharedFontSemibold (
          embedded (BinaryData::DosisSemiBold_otf, BinaryData::DosisSemiBold_otfSize))
{
    // The framework's default font, which the panel's values and tool tips take: the same on every system, narrow, and
    // with a plain zero, which a value of seven pixels needs.
    juce::LookAndFeel::getDefaultLookAndFeel().setDefaultSansSerifTypeface (embedded (
        BinaryData::RobotoCondensedMedium_ttf, BinaryData::RobotoCondensedMedium_ttfSize));
}

SharedInterface::~SharedInterface()
{
    tooltipWindow.reset();
    clearAttachments();
}

juce::FontOptions SharedInterface::getMyFont (int type, float height) const
{
    const auto& typeface = type == 2 ? sharedFontRegular : sharedFontLight;
    return typeface != nullptr ? juce::FontOptions (typeface).withHeight (height)
                               : juce::FontOptions (height);
}

void SharedInterface::clearAttachments()
{
    for (auto* attachments : { &buttonAttachments, &toggleAttachments })
        while (! attachments->isEmpty())
            attachments->removeLast();
}
