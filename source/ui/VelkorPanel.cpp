// SPDX-License-Identifier: AGPL-3.0-or-later
#include "ui/VelkorPanel.h"

#include "processor/VelkorAudioProcessor.h"
#include "ui/image_strip.h"

#include <BinaryData.h>

static juce::Image embeddedImage (const char* data, int size)
{
    return juce::ImageCache::getFromMemory (data, size);
}

VelkorPanel::VelkorPanel (VelkorAudioProcessor& processorToUse,
                          juce::AudioProcessorValueTreeState& stateToUse)
    : processor (processorToUse), state (stateToUse), undoManager (&processorToUse.undoManager),
      background (embeddedImage (BinaryData::velkor_bg_png, BinaryData::velkor_bg_pngSize)),
      sliderLarge (embeddedImage (BinaryData::slider_lg_png, BinaryData::slider_lg_pngSize)),
      sliderSmall (embeddedImage (BinaryData::slider_sm_png, BinaryData::slider_sm_pngSize)),
      matrixSwitch (embeddedImage (BinaryData::matrix_sw_png, BinaryData::matrix_sw_pngSize)),
      buttonImages { embeddedImage (BinaryData::btn_sync_png, BinaryData::btn_sync_pngSize),
                     embeddedImage (BinaryData::btn_thru_png, BinaryData::btn_thru_pngSize),
                     embeddedImage (BinaryData::btn_loop_png, BinaryData::btn_loop_pngSize),
                     embeddedImage (BinaryData::btn_reverse_png, BinaryData::btn_reverse_pngSize),
                     embeddedImage (BinaryData::btn_reset_png, BinaryData::btn_reset_pngSize),
                     embeddedImage (BinaryData::btn_mono_png, BinaryData::btn_mono_pngSize),
                     embeddedImage (BinaryData::btn_kill_png, BinaryData::btn_kill_pngSize),
                     embeddedImage (BinaryData::btn_phasel_png, BinaryData::btn_phasel_pngSize),
                     embeddedImage (BinaryData::btn_phaser_png, BinaryData::btn_phaser_pngSize) },
      multiplierStrip (embeddedImage (BinaryData::sw_mult_png, BinaryData::sw_mult_pngSize)),
      waveStrip (embeddedImage (BinaryData::sw_wave_png, BinaryData::sw_wave_pngSize)),
      midiLedStrip (embeddedImage (BinaryData::midi_led_png, BinaryData::midi_led_pngSize))
{
    setTitle ("Velkor panel");
    setOpaque (background.isValid() && ! background.hasAlphaChannel());
    buildControls();
}

void VelkorPanel::paint (juce::Graphics& g)
{
    if (background.isValid())
        stretchedBackground.draw (
            g, getWidth(), getHeight(), isOpaque(),
            [this] (juce::Graphics& inside)
            { drawStretched (inside, background, getLocalBounds().toFloat()); });
}

void VelkorPanel::resized()
{
    const auto sx = static_cast<float> (getWidth()) / panel_layout::kWidth;
    const auto sy = static_cast<float> (getHeight()) / panel_layout::kHeight;

    for (const auto& place : placed)
        place.component->setBounds (
            juce::roundToInt (place.x * sx), juce::roundToInt (place.y * sy),
            juce::roundToInt (place.width * sx), juce::roundToInt (place.height * sy));
}

// --- building ------------------------------------------------------------------------------------------

void VelkorPanel::buildControls()
{
    using namespace panel_layout;

    for (const auto& place : kBigSliders)
        bigSlider (place.parameter, place.x, place.y, place.width, kBigSliderHeight);

    for (const auto& place : kSmallSliders)
        smallSlider (place.parameter, place.x, place.y, kSmallSliderWidth, kSmallSliderHeight);

    for (const auto& place : kMultipliers)
        addCtl (std::make_unique<BitmapChoiceH> (prm (place.parameter), multiplierStrip, 4,
                                                 undoManager),
                place.x, place.y, kMultiplierWidth, kMultiplierHeight);

    for (const auto& place : kToggles)
        toggle (place.parameter, buttonImages[static_cast<std::size_t> (place.image)], place.x,
                place.y, kToggleWidth, kToggleHeight);

    for (const auto& place : kWaves)
        addCtl (std::make_unique<BitmapSelector2x2> (prm (place.parameter), waveStrip, undoManager),
                place.x, place.y, kWaveWidth, kWaveHeight);

    for (const auto& place : kLabels)
    {
        if (place.watched == place.parameter)
            valueLabel (place.parameter, place.x, place.y, place.width, kLabelHeight);
        else
            syncValueLabel (place.parameter, place.watched, place.x, place.y, place.width,
                            kLabelHeight);
    }

    buildMatrices();
    midiLed = addCtl (std::make_unique<MidiLed> (midiLedStrip), kMidiLed.x, kMidiLed.y,
                      kMidiLed.width, kMidiLed.height);
}

void VelkorPanel::buildMatrices()
{
    using namespace panel_layout;

    modMatrix = addCtl (std::make_unique<BitmapMatrix> (
                            10, 6, matrixSwitch,
                            [this] (int column, int row)
                            { return processor.getModConnection (column, row); },
                            [this] (int column, int row, bool on)
                            { processor.setModConnection (column, row, on); }),
                        kModMatrix.x, kModMatrix.y, kModMatrix.width, kModMatrix.height);
    modMatrix->setTitle ("Modulation matrix");
    modMatrix->setDescription (
        "Columns: envelope, LFO 1, LFO 2, MIDI note, MIDI gate, mod wheel. Rows: what they move. "
        "Press or drag to switch");

    signalMatrix = addCtl (
        std::make_unique<BitmapMatrix> (
            10, 8, matrixSwitch,
            [this] (int column, int row) { return processor.getSignalConnection (column, row); },
            [this] (int column, int row, bool on)
            { processor.setSignalConnection (column, row, on); }),
        kSignalMatrix.x, kSignalMatrix.y, kSignalMatrix.width, kSignalMatrix.height);
    signalMatrix->setTitle ("Signal matrix");
    signalMatrix->setDescription (
        "Columns: inputs, delays, filters and saturators as sources. Rows: where they go. "
        "Press or drag to switch");
}

/** Every id that the layout names has a parameter. */
juce::RangedAudioParameter& VelkorPanel::prm (NumericalParamID id) const
{
    auto* parameter = state.getParameter (paramMapper[id].name);
    jassert (parameter != nullptr);
    return *parameter;
}

template <typename T>
T* VelkorPanel::addCtl (std::unique_ptr<T> control, float x, float y, float width, float height)
{
    auto* added = control.get();
    added->setVisible (true);
    addChildComponent (added);
    placed.push_back ({ added, x, y, width, height });
    controls.push_back (std::move (control));
    return added;
}

void VelkorPanel::bigSlider (NumericalParamID id, float x, float y, float width, float height)
{
    slider (id, sliderLarge, { x, y, width, height });
}

void VelkorPanel::smallSlider (NumericalParamID id, float x, float y, float width, float height)
{
    slider (id, sliderSmall, { x, y, width, height });
}

void VelkorPanel::slider (NumericalParamID id, const juce::Image& thumb,
                          juce::Rectangle<float> place)
{
    auto control = std::make_unique<BitmapSlider> (prm (id), undoManager);
    control->thumbImage = thumb;
    addCtl (std::move (control), place.getX(), place.getY(), place.getWidth(), place.getHeight());
}

void VelkorPanel::toggle (NumericalParamID id, const juce::Image& strip, float x, float y,
                          float width, float height)
{
    auto control = std::make_unique<BitmapToggle> (prm (id), undoManager);
    control->offImage = stripFrame (strip, 0, 2);
    control->onImage = stripFrame (strip, 1, 2);
    addCtl (std::move (control), x, y, width, height);
}

void VelkorPanel::valueLabel (NumericalParamID id, float x, float y, float width, float height)
{
    addCtl (std::make_unique<ValueLabel> (prm (id), nullptr), x, y, width, height);
}

void VelkorPanel::syncValueLabel (NumericalParamID id, NumericalParamID watched, float x, float y,
                                  float width, float height)
{
    addCtl (std::make_unique<ValueLabel> (prm (id), &prm (watched)), x, y, width, height);
}
