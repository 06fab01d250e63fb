// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "browser/zb_PresetManager.h"
#include "processor/VelkorAudioProcessor.h"
#include "ui/AboutView.h"
#include "ui/SharedInterface.h"
#include "ui/VelkorPanel.h"

#include <memory>

/** The window: a strip of logos, buttons and the preset's name on top, the panel below, the browser and the about
    view over both. The strip is drawn here; its buttons are transparent and only take the mouse. The host makes and
    destroys it at will, so whatever must outlive it is the processor's. Message thread. */
class VelkorAudioProcessorEditor : public juce::AudioProcessorEditor,
                                   public juce::AudioProcessorValueTreeState::Listener,
                                   public juce::Button::Listener,
                                   public juce::Timer
{
public:
    /** Opens at the processor's uiWidth, legal or not, unless no window can be that wide. Both
        outlive the editor. */
    VelkorAudioProcessorEditor (VelkorAudioProcessor& processorToUse,
                                juce::AudioProcessorValueTreeState& stateToUse);
    ~VelkorAudioProcessorEditor() override;

    void paint (juce::Graphics& g) override;
    void paintOverChildren (juce::Graphics& g) override;

    /** Lays everything out and writes the new size into the machine's settings; the next legal
        one for a size that is not. */
    void resized() override;

    /** Takes a legal size once a host shows the editor, if the stored one is not. */
    void parentHierarchyChanged() override;

    /** Steps to the next preset at the ends of the preset field, opens the browser between them. */
    void mouseDown (const juce::MouseEvent& event) override;

    /** Never called: the editor listens to no parameter. */
    void parameterChanged (const juce::String&, float) override {}

    void buttonClicked (juce::Button* button) override;

    /** Follows what no listener tells: the undo history, incoming MIDI, the grids of the engine. */
    void timerCallback() override;

private:
    static constexpr float kLogoAspect = 7.633588f;  ///< of the maker's logo, width to height

    bool hasLegalWidth() const;
    void buildButtons();
    std::unique_ptr<juce::TextButton> makeButton (const char* name, const char* toolTip);
    void openBrowser();
    void openAbout();
    juce::String currentPresetPath() const;

    void paintLogos (juce::Graphics& g) const;
    void paintHistoryButton (juce::Graphics& g, const juce::TextButton& button) const;
    void paintPresetField (juce::Graphics& g) const;
    void paintStar (juce::Graphics& g) const;
    void paintBypass (juce::Graphics& g) const;

    VelkorAudioProcessor& velkor;
    juce::AudioProcessorValueTreeState& state;
    std::unique_ptr<SharedInterface> shared;
    float unit =
        9.0f;  ///< a hundredth of the window's width, pixels; set when the window is resized
    std::unique_ptr<juce::ResizableCornerComponent> cornerResizer;
    juce::ComponentBoundsConstrainer constrainer;
    std::unique_ptr<zb_PresetManager> presetManager;
    std::unique_ptr<AboutView> aboutView;  ///< null until ABOUT is clicked; then the last one shown
    std::unique_ptr<juce::TextButton> aboutButton, favoriteButton, bypassButton, undoButton,
        redoButton;
    std::unique_ptr<juce::AudioProcessorValueTreeState::ButtonAttachment> bypassAttachment;
    std::unique_ptr<VelkorPanel> panel;
    int midiHoldTicks = 0;  ///< timer ticks for which the lamp stays lit
    juce::Path starPath, logoPath, logoKanaPath;
    std::unique_ptr<juce::Drawable> zubrowLogo;
    juce::Rectangle<float> presetRect, prevRect, nextRect;
    bool lastCanUndo = false;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (VelkorAudioProcessorEditor)
};
