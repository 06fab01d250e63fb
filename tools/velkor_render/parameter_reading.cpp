// SPDX-License-Identifier: AGPL-3.0-or-later
#include "velkor_render/parameter_reading.h"

#include "parameters/gain_parameter.h"
#include "parameters/sync_display_parameter.h"
#include "velkor_render/failure.h"
#include "velkor_render/text.h"

#include <cmath>
#include <optional>

namespace
{
/** How many raw units a written unit is. Decibels are apart: they are no factor. */
struct UnitRow
{
    RawUnit raw;
    std::string_view written;
    double factor;
};

constexpr UnitRow kUnits[] = {
    // clang-format off
    { RawUnit::milliseconds, "ms",  1.0 },
    { RawUnit::milliseconds, "s",   1000.0 },
    { RawUnit::seconds,      "ms",  0.001 },
    { RawUnit::seconds,      "s",   1.0 },
    { RawUnit::hertz,        "hz",  1.0 },
    { RawUnit::hertz,        "khz", 1000.0 },
    { RawUnit::gain,         "%",   0.01 },
    { RawUnit::factor,       "x",   1.0 },
    { RawUnit::factor,       "%",   0.01 },
    { RawUnit::proportion,   "%",   0.01 },
    // clang-format on
};

std::string nameOf (const juce::RangedAudioParameter& parameter)
{
    return parameter.getName (100).toStdString();
}

std::string rangeText (const juce::RangedAudioParameter& parameter)
{
    const auto words = wordsOf (parameter);

    if (! words.isEmpty())
        return words.joinIntoString (", ").toStdString();

    const auto& range = parameter.getNormalisableRange();
    const std::string unit = unitName (rawUnitOf (parameter));

    if (rawUnitOf (parameter) == RawUnit::gain)
        return "-INF dB to " + parameter.getText (1.0f, 100).toStdString() +
               ", or a gain of 0 to " + numberText (range.end);

    return numberText (range.start) + " to " + numberText (range.end) +
           (unit.empty() ? unit : " " + unit);
}

/** "-6 dB", "1.5 s", "50%", "x1.25", "750". */
std::optional<double> readAsQuantity (RawUnit unit, const std::string& text)
{
    const bool hasTimesSign = unit == RawUnit::factor && lowerCase (text).starts_with ('x');
    const auto quantity = readQuantity (hasTimesSign ? text.substr (1) : text);

    if (! quantity)
    {
        const auto word = lowerCase (text);
        return unit == RawUnit::gain && (word == "-inf" || word == "-inf db") ? std::optional (0.0)
                                                                              : std::nullopt;
    }

    if (quantity->unit.empty())
        return quantity->number;

    if (unit == RawUnit::gain && quantity->unit == "db")
        return juce::Decibels::decibelsToGain (static_cast<float> (quantity->number));

    for (const auto& row : kUnits)
        if (row.raw == unit && row.written == quantity->unit)
            return quantity->number * row.factor;

    return std::nullopt;
}

/** A text that the parameter shows somewhere on its travel. */
std::optional<double> readAsShown (const juce::RangedAudioParameter& parameter,
                                   const std::string& text)
{
    constexpr int kSteps = 6000;  // a multiple of 12: the ends of most stretches are among them
    const juce::String wanted (text);
    int first = -1;
    int last = -1;

    for (int i = 0; i <= kSteps; ++i)
    {
        const float place = static_cast<float> (i) / static_cast<float> (kSteps);

        if (parameter.getText (place, 100).equalsIgnoreCase (wanted))
        {
            first = first < 0 ? i : first;
            last = i;
        }
    }

    if (first < 0)
        return std::nullopt;

    const float middle = 0.5f * static_cast<float> (first + last) / static_cast<float> (kSteps);
    return parameter.convertFrom0to1 (first == 0 ? 0.0f : (last == kSteps ? 1.0f : middle));
}

std::optional<double> readAsWord (const juce::RangedAudioParameter& parameter,
                                  const std::string& text)
{
    const auto index = wordsOf (parameter).indexOf (juce::String (text), true);

    if (index >= 0)
        return index;

    if (rawUnitOf (parameter) == RawUnit::toggle)
    {
        const auto word = lowerCase (text);

        if (word == "on" || word == "yes" || word == "true")
            return 1.0;

        if (word == "off" || word == "no" || word == "false")
            return 0.0;
    }

    return std::nullopt;
}

[[noreturn]] void refuse (const juce::RangedAudioParameter& parameter, const std::string& text)
{
    const auto* const time = dynamic_cast<const SyncDisplayParameter*> (&parameter);

    if (time != nullptr && SyncDisplayParameter::kBeatLabels.contains (juce::String (text), true))
        failUsage (nameOf (parameter) + ": " + inQuotes (text) + " is a beat length, and " +
                   time->syncParameter->getName (100).toStdString() + " is off");

    failUsage (nameOf (parameter) + ": " + inQuotes (text) + " is not a value of it (" +
               rangeText (parameter) + ")");
}
}  // namespace

RawUnit rawUnitOf (const juce::RangedAudioParameter& parameter)
{
    if (dynamic_cast<const juce::AudioParameterBool*> (&parameter) != nullptr)
        return RawUnit::toggle;

    if (dynamic_cast<const juce::AudioParameterChoice*> (&parameter) != nullptr)
        return RawUnit::choice;

    if (dynamic_cast<const AudioParameterGain*> (&parameter) != nullptr)
        return RawUnit::gain;

    const auto label = parameter.getLabel();

    if (label == "ms")  // the envelope's times are kept in seconds and only shown in milliseconds
        return parameter.getNormalisableRange().end > 1.0f ? RawUnit::milliseconds
                                                           : RawUnit::seconds;

    if (label == "Hz")
        return RawUnit::hertz;

    if (label == "x")
        return RawUnit::factor;

    return parameter.getNormalisableRange().end > 1.0f ? RawUnit::number : RawUnit::proportion;
}

const char* unitName (RawUnit unit)
{
    switch (unit)
    {
    case RawUnit::milliseconds:
        return "ms";
    case RawUnit::seconds:
        return "s";
    case RawUnit::hertz:
        return "Hz";
    case RawUnit::gain:
        return "gain";
    case RawUnit::factor:
        return "x";
    case RawUnit::toggle:
        return "switch";
    case RawUnit::choice:
        return "choice";
    case RawUnit::proportion:
    case RawUnit::number:
        break;
    }

    return "";
}

juce::StringArray wordsOf (const juce::RangedAudioParameter& parameter)
{
    if (const auto* choice = dynamic_cast<const juce::AudioParameterChoice*> (&parameter))
        return choice->choices;

    if (rawUnitOf (parameter) == RawUnit::toggle)
        return { parameter.getText (0.0f, 100), parameter.getText (1.0f, 100) };

    return {};
}

float readParameterText (const juce::RangedAudioParameter& parameter, const std::string& text)
{
    const auto unit = rawUnitOf (parameter);
    const bool hasWords = unit == RawUnit::toggle || unit == RawUnit::choice;
    auto value = readAsQuantity (unit, text);

    if (! value)
        value = hasWords ? readAsWord (parameter, text) : readAsShown (parameter, text);

    if (! value || (hasWords && *value != std::floor (*value)))
        refuse (parameter, text);

    const auto& range = parameter.getNormalisableRange();
    const auto raw = static_cast<float> (*value);

    if (raw < range.start || raw > range.end)
        failUsage (nameOf (parameter) + ": " + inQuotes (text) + " is out of range (" +
                   rangeText (parameter) + ")");

    return raw;
}
