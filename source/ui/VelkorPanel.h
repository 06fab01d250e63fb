// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "parameters/parameter_table.h"
#include "ui/BitmapMatrix.h"
#include "ui/BitmapSlider.h"
#include "ui/MidiLed.h"
#include "ui/ValueLabel.h"
#include "ui/bitmap_switches.h"
#include "ui/kept_picture.h"
#include "ui/panel_layout.h"

#include <array>
#include <memory>
#include <vector>

class VelkorAudioProcessor;

/** Every control of the effect on one background, placed by panel_layout.h. Built with the editor; no control comes
    or goes later. Message thread. */
class VelkorPanel : public juce::Component
{
public:
    /** Builds every control. Both outlive the panel. */
    VelkorPanel (VelkorAudioProcessor& processorToUse,
                 juce::AudioProcessorValueTreeState& stateToUse);

    void paint (juce::Graphics& g) override;
    void resized() override;

    BitmapMatrix* modMatrix = nullptr;  ///< whoever sees the engine's routes change repaints it
    BitmapMatrix* signalMatrix =
        nullptr;                 ///< whoever sees the engine's connections change repaints it
    MidiLed* midiLed = nullptr;  ///< whoever takes the processor's MIDI flag lights it

private:
    /** A control and its place in the coordinates of the background. */
    struct Placed
    {
        juce::Component* component;
        float x, y, width, height;
    };

    void buildControls();
    void buildMatrices();
    juce::RangedAudioParameter& prm (NumericalParamID id) const;

    template <typename T>
    T* addCtl (std::unique_ptr<T> control, float x, float y, float width, float height);

    void bigSlider (NumericalParamID id, float x, float y, float width, float height);
    void smallSlider (NumericalParamID id, float x, float y, float width, float height);
    void slider (NumericalParamID id, const juce::Image& thumb, juce::Rectangle<float> place);
    void toggle (NumericalParamID id, const juce::Image& strip, float x, float y, float width,
                 float height);
    void valueLabel (NumericalParamID id, float x, float y, float width, float height);
    void syncValueLabel (NumericalParamID id, NumericalParamID watched, float x, float y,
                         float width, float height);

    VelkorAudioProcessor& processor;
    juce::AudioProcessorValueTreeState& state;
    juce::UndoManager* undoManager;
    juce::Image background;
    KeptPicture stretchedBackground;
    juce::Image sliderLarge, sliderSmall, matrixSwitch;
    std::array<juce::Image, 9> buttonImages;  ///< by panel_layout::ToggleImage
    juce::Image multiplierStrip, waveStrip, midiLedStrip;
    std::vector<std::unique_ptr<juce::Component>> controls;
    std::vector<Placed> placed;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (VelkorPanel)
};
