// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <memory>

class VelkorAudioProcessor;

// The palette of every view but the preset browser. Constant after start-up.
extern const juce::Colour colorDark1;   ///< window, ground of the preset field, text on what is lit
extern const juce::Colour colorDark2;   ///< ink of the about view's icons
extern const juce::Colour colorLight1;  ///< bright text, logos, star
extern const juce::Colour colorLight2;  ///< dim text, frames, lines, fills at reduced alpha
extern const juce::Colour colorHighlight1;  ///< a pressed button of the about view
extern const juce::Colour colorHighlight2;  ///< the lit BYPASS
extern const juce::Colour colorHighlight3;  ///< spare

/** What the views of one editor share: fonts and scale. Made before the first of them and destroyed after the
    last. Message thread. */
class SharedInterface
{
public:
    /** Makes the typefaces. Both outlive the interface. */
    SharedInterface (VelkorAudioProcessor& processorToUse,
                     juce::AudioProcessorValueTreeState& stateToUse);
    ~SharedInterface();

    /** The font of a height in pixels: Regular for type 2, Light for every other; the framework's default font
        where the typeface could not be made. */
    juce::FontOptions getMyFont (int type, float height) const;

    /** Empties the lists of attachments, the last first. */
    void clearAttachments();

    VelkorAudioProcessor& processor;
    juce::AudioProcessorValueTreeState& state;

    juce::Typeface::Ptr sharedFontUltralight;
    juce::Typeface::Ptr sharedFontLight;
    juce::Typeface::Ptr sharedFontRegular;
    juce::Typeface::Ptr sharedFontSemibold;

    float scale = 9.0f;  ///< a hundredth of the window's width, pixels

    /** For views that bind buttons of their own; no view does. */
    juce::OwnedArray<juce::AudioProcessorValueTreeState::ButtonAttachment> buttonAttachments;
    juce::OwnedArray<juce::AudioProcessorValueTreeState::ButtonAttachment> toggleAttachments;

    std::unique_ptr<juce::TooltipWindow> tooltipWindow;  ///< null while tool tips are off

private:
    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (SharedInterface)
};
