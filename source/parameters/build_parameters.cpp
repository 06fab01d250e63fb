// SPDX-License-Identifier: AGPL-3.0-or-later
#include "parameters/build_parameters.h"

#include "parameters/gain_parameter.h"
#include "parameters/parameter_ranges.h"
#include "parameters/parameter_table.h"
#include "parameters/parameter_text.h"
#include "parameters/sync_display_parameter.h"

#include <cstddef>
#include <memory>
#include <utility>

const juce::StringArray delayMultiplierNames { "x1", "x2", "x4", "x8" };
const juce::StringArray lfoWaveNames { "Triangle", "Sine", "Square", "Random" };

namespace
{
using Layout = juce::AudioProcessorValueTreeState::ParameterLayout;
using Range = juce::NormalisableRange<float>;
using FloatText = juce::String (*) (float, int);
using BoolText = juce::String (*) (bool, int);

/** The factories. Each takes a number and looks the rest of the identity up, so that no caller can
    pair a number with a wrong id. */
class LayoutBuilder
{
public:
    void addFloat (NumericalParamID, const Range&, FloatText, const char* label,
                   float defaultValue);
    void addTime (NumericalParamID, const Range&, bool invertSync, FloatText, const char* label,
                  float defaultValue);
    void addBool (NumericalParamID, BoolText);
    void addChoice (NumericalParamID, const juce::StringArray& names, int defaultIndex);
    void addGain (NumericalParamID, float topDb, float defaultDb);

    Layout layout;  ///< what was added so far, in order

private:
    /** Adds a parameter of the given class. The id doubles as the display name. */
    template <typename Parameter, typename... Arguments>
    void add (NumericalParamID number, const Arguments&... arguments)
    {
        const auto& row = parameterInfo[static_cast<std::size_t> (number)];
        const juce::ParameterID id { row.name, row.versionHint };
        layout.add (std::make_unique<Parameter> (id, row.name, arguments...));
    }
};

juce::AudioParameterFloatAttributes floatAttributes (FloatText text, const char* label)
{
    const juce::AudioParameterFloatAttributes plain;
    return plain.withStringFromValueFunction (text)
        .withValueFromStringFunction (numberOf)
        .withLabel (label);
}

void LayoutBuilder::addFloat (NumericalParamID number, const Range& range, FloatText text,
                              const char* label, float defaultValue)
{
    add<juce::AudioParameterFloat> (number, range, defaultValue, floatAttributes (text, label));
}

void LayoutBuilder::addTime (NumericalParamID number, const Range& range, bool invertSync,
                             FloatText text, const char* label, float defaultValue)
{
    add<SyncDisplayParameter> (number, range, defaultValue, invertSync,
                               floatAttributes (text, label));
}

void LayoutBuilder::addBool (NumericalParamID number, BoolText text)
{
    add<juce::AudioParameterBool> (
        number, false, juce::AudioParameterBoolAttributes().withStringFromValueFunction (text));
}

void LayoutBuilder::addChoice (NumericalParamID number, const juce::StringArray& names,
                               int defaultIndex)
{
    add<juce::AudioParameterChoice> (number, names, defaultIndex);
}

void LayoutBuilder::addGain (NumericalParamID number, float topDb, float defaultDb)
{
    // 10 to the power of dB / 20, and 0 from -100 dB down
    add<AudioParameterGain> (number, CubicGainRange (juce::Decibels::decibelsToGain (topDb)),
                             juce::Decibels::decibelsToGain (defaultDb));
}

void addDelays (LayoutBuilder& to)
{
    for (auto number : { Delay1Time, Delay2Time })
        to.addTime (number, { 2.0f, 1000.0f }, false, delayTimeText, "ms", 500.0f);

    for (auto number : { Delay1Fine, Delay2Fine })
        to.addFloat (number, { 0.5f, 1.5f }, timesText, "x", 1.0f);

    for (auto number : { Delay1Mod, Delay2Mod })
        to.addFloat (number, { -1.5f, 1.5f }, signedRatioText, "x", 0.0f);

    for (auto number : { Delay1Sync, Delay2Sync, Delay1Loop, Delay2Loop })
        to.addBool (number, onOffText);

    for (auto number : { Delay1Reverse, Delay2Reverse })
        to.addBool (number, directionText);

    for (auto number : { Delay1Bypass, Delay2Bypass })
        to.addBool (number, onOffText);

    for (auto number : { Delay1Feedback, Delay2Feedback })
        to.addGain (number, 0.0f, -80.0f);

    for (auto number : { Delay1Multiplier, Delay2Multiplier })
        to.addChoice (number, delayMultiplierNames, 1);
}

void addLfos (LayoutBuilder& to)
{
    for (auto number : { LFO1Rate, LFO2Rate })
        to.addTime (number, LogFreqRange (0.01f, 10.0f), true, lfoRateText, "Hz", 1.0f);

    for (auto number : { LFO1Mod, LFO2Mod })
        to.addFloat (number, { -5.0f, 5.0f }, signedHertzText, "Hz", 0.0f);

    for (auto number : { LFO1Sync, LFO2Sync })
        to.addBool (number, onOffText);

    for (auto number : { LFO1Wave, LFO2Wave })
        to.addChoice (number, lfoWaveNames, 0);

    for (auto number : { LFO1Skew, LFO2Skew })
        to.addFloat (number, { 0.0f, 1.0f }, percentText, "%", 0.5f);
}

void addFilters (LayoutBuilder& to)
{
    for (auto number : { Filter1Freq, Filter2Freq })
        to.addFloat (number, LogFreqRange (40.0f, 18000.0f), frequencyText, "Hz", 5312.0f);

    for (auto number : { Filter1Mod, Filter2Mod })
        to.addFloat (number, { -1.0f, 1.0f }, signedPercentText, "%", 0.0f);

    for (auto number : { Filter1Reso, Filter2Reso })
        to.addFloat (number, { 0.0f, 10.0f }, twoDecimalsText, "", 0.0f);

    for (auto number : { Filter1Mode, Filter2Mode })
        to.addFloat (number, { 0.0f, 1.0f }, filterModeText, "", 0.34f);
}

void addChannels (LayoutBuilder& to)
{
    for (auto number : { Saturation1, Saturation2 })
        to.addFloat (number, { 0.0f, 1.0f }, saturationText, "", 0.0f);

    for (auto number : { Level1Mod, Level2Mod })
        to.addFloat (number, { -1.0f, 1.0f }, signedPercentText, "%", 0.0f);

    to.addFloat (Pan1, { 0.0f, 1.0f }, panText, "", 0.25f);
    to.addFloat (Pan2, { 0.0f, 1.0f }, panText, "", 0.75f);

    for (auto number : { Pan1Mod, Pan2Mod })
        to.addFloat (number, { -1.0f, 1.0f }, signedPercentText, "%", 0.0f);
}

void addGlobals (LayoutBuilder& to)
{
    constexpr float kTopDb = 3.0f;

    to.addBool (LFO2Reset, onOffText);
    to.addFloat (EnvSensitivity, { 0.0f, 1.0f }, twoDecimalsText, "", 0.0f);

    // Stored in seconds; "ms" is the display's unit and the text's, and the pair is to stay so.
    to.addFloat (EnvAttack, { 0.0f, 0.5f }, envTimeText, "ms", 0.01f);
    to.addFloat (EnvDecay, { 0.0f, 0.5f }, envTimeText, "ms", 0.25f);

    to.addGain (InputLevel, kTopDb, 0.0f);
    to.addBool (MonoInput, onOffText);
    to.addBool (Kill, onOffText);

    for (auto number : { WetLevel, DryLevel, Output1Level, Output2Level })
        to.addGain (number, kTopDb, 0.0f);

    for (auto number : { PhaseInvert1, PhaseInvert2 })
        to.addBool (number, polarityText);
}

/** A time or rate parameter and the switch that it follows. */
struct SyncPair
{
    NumericalParamID time, toggle;
};

constexpr SyncPair kSyncPairs[] = {
    { Delay1Time, Delay1Sync },
    { Delay2Time, Delay2Sync },
    { LFO1Rate, LFO1Sync },
    { LFO2Rate, LFO2Sync },
};
}  // namespace

juce::AudioProcessorValueTreeState::ParameterLayout buildParameters()
{
    LayoutBuilder builder;

    addDelays (builder);
    addLfos (builder);
    addFilters (builder);
    addChannels (builder);
    addGlobals (builder);

    return std::move (builder.layout);
}

void linkSyncParameters (juce::AudioProcessorValueTreeState& store)
{
    const auto find = [&store] (NumericalParamID number)
    { return store.getParameter (parameterInfo[static_cast<std::size_t> (number)].name); };

    for (const auto& pair : kSyncPairs)
    {
        auto* time = dynamic_cast<SyncDisplayParameter*> (find (pair.time));
        auto* toggle = dynamic_cast<juce::AudioParameterBool*> (find (pair.toggle));

        if (time != nullptr && toggle != nullptr)
            time->syncParameter = toggle;
    }
}
