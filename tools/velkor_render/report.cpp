// SPDX-License-Identifier: AGPL-3.0-or-later
#include "velkor_render/report.h"

#include "processor/VelkorAudioProcessor.h"
#include "velkor_render/factory_bank.h"
#include "velkor_render/options.h"
#include "velkor_render/parameter_reading.h"
#include "velkor_render/patch.h"
#include "velkor_render/text.h"

#include <cmath>
#include <cstdio>
#include <initializer_list>
#include <utility>

namespace
{
using Properties = std::initializer_list<std::pair<const char*, juce::var>>;

juce::var jsonObject (Properties properties)
{
    auto* const object = new juce::DynamicObject();  // the var owns it from the next line on
    juce::var result (object);

    for (const auto& [name, value] : properties)
        object->setProperty (name, value);

    return result;
}

std::string jsonText (const juce::var& value)
{
    const auto options = juce::JSON::FormatOptions {}.withMaxDecimalPlaces (7);
    return juce::JSON::toString (value, options).toStdString() + "\n";
}

juce::var jsonList (const juce::StringArray& texts)
{
    juce::var list { juce::Array<juce::var>() };

    for (const auto& text : texts)
        list.append (text);

    return list;
}

/** A path as text; null if there is none. */
juce::var nameOf (const std::filesystem::path& path)
{
    return path.empty() ? juce::var() : juce::var (juce::String::fromUTF8 (path.string().c_str()));
}

double decibels (double gain)
{
    return 20.0 * std::log10 (gain);
}

/** Silence has no level: null. */
juce::var jsonLevels (const std::array<double, 2>& gains)
{
    juce::var list { juce::Array<juce::var>() };

    for (const double gain : gains)
        list.append (gain > 0.0 ? juce::var (decibels (gain)) : juce::var());

    return list;
}

std::string levelText (const std::array<double, 2>& gains)
{
    std::string text;

    for (const double gain : gains)
    {
        char level[32];
        std::snprintf (level, sizeof level, gain > 0.0 ? "%.1f" : "-inf", decibels (gain));
        text += (text.empty() ? "" : " / ") + std::string (level);
    }

    return text + " dBFS";
}

const juce::RangedAudioParameter& parameterAt (const VelkorAudioProcessor& processor,
                                               std::size_t number)
{
    return *processor.parameterTree.getParameter (parameterInfo[number].name);
}

float defaultOf (const juce::RangedAudioParameter& parameter)
{
    return parameter.convertFrom0to1 (parameter.getDefaultValue());
}

/** "2 to 1000", or the words of a switch or a choice. */
std::string rangeColumn (const juce::RangedAudioParameter& parameter)
{
    const auto words = wordsOf (parameter);
    const auto& range = parameter.getNormalisableRange();
    return words.isEmpty() ? numberText (range.start) + " to " + numberText (range.end)
                           : words.joinIntoString (", ").toStdString();
}

std::string tableLine (const char* name, const std::string& range, const std::string& standard,
                       const char* unit, const std::string& now)
{
    char line[200];
    std::snprintf (line, sizeof line, "%-18s  %-30s  %-8s  %-6s  %s\n", name, range.c_str(),
                   standard.c_str(), unit, now.c_str());
    return line;
}
}  // namespace

std::string parameterTable (const VelkorAudioProcessor& processor)
{
    auto table = tableLine ("Parameter", "Range (raw)", "Default", "Unit", "Now");

    for (std::size_t i = 0; i < parameterInfo.size(); ++i)
    {
        const auto& parameter = parameterAt (processor, i);
        table += tableLine (parameterInfo[i].name, rangeColumn (parameter),
                            numberText (defaultOf (parameter)), unitName (rawUnitOf (parameter)),
                            parameter.getCurrentValueAsText().toStdString());
    }

    return table;
}

std::string parameterJson (const VelkorAudioProcessor& processor)
{
    juce::var list { juce::Array<juce::var>() };

    for (std::size_t i = 0; i < parameterInfo.size(); ++i)
    {
        const auto& parameter = parameterAt (processor, i);
        const auto& range = parameter.getNormalisableRange();
        auto row = jsonObject ({ { "id", parameterInfo[i].name },
                                 { "min", range.start },
                                 { "max", range.end },
                                 { "default", defaultOf (parameter) },
                                 { "unit", unitName (rawUnitOf (parameter)) },
                                 { "value", processor.paramValues[i]->load() },
                                 { "text", parameter.getCurrentValueAsText() } });

        if (const auto words = wordsOf (parameter); ! words.isEmpty())
            row.getDynamicObject()->setProperty ("words", jsonList (words));

        list.append (row);
    }

    return jsonText (list);
}

std::string presetList()
{
    std::string list;

    for (const auto& preset : factoryBank())
        list += preset.title + "\n";

    return list;
}

std::string presetJson()
{
    juce::var list { juce::Array<juce::var>() };

    for (const auto& preset : factoryBank())
        list.append (
            jsonObject ({ { "number", preset.number }, { "name", juce::String (preset.name) } }));

    return jsonText (list);
}

std::string renderLine (const FinishedJob& finished)
{
    char length[32];
    std::snprintf (length, sizeof length, "%.2f s",
                   static_cast<double> (finished.result.frames) / finished.rate);
    return finished.job.output.string() + ": " + length + " at " + numberText (finished.rate) +
           " Hz, peak " + levelText (finished.result.peak) + ", RMS " +
           levelText (finished.result.rms) + "\n";
}

std::string renderJson (const std::vector<FinishedJob>& finished, const Options& options,
                        const std::string& preset, const VelkorAudioProcessor& processor)
{
    juce::var files { juce::Array<juce::var>() };

    for (const auto& [job, rate, result] : finished)
        files.append (jsonObject ({ { "input", nameOf (job.input) },
                                    { "output", nameOf (job.output) },
                                    { "rate", rate },
                                    { "bits", options.bits },
                                    { "frames", result.frames },
                                    { "seconds", static_cast<double> (result.frames) / rate },
                                    { "peakDbfs", jsonLevels (result.peak) },
                                    { "rmsDbfs", jsonLevels (result.rms) } }));

    auto parameters = jsonObject ({});

    for (std::size_t i = 0; i < parameterInfo.size(); ++i)
        parameters.getDynamicObject()->setProperty (parameterInfo[i].name,
                                                    processor.paramValues[i]->load());

    const auto settings =
        jsonObject ({ { "preset", nameOf (preset) },
                      { "savedPreset", nameOf (options.savePreset.value_or ("")) },
                      { "midi", nameOf (options.midi.value_or ("")) },
                      { "tempo", options.tempo },
                      { "block", options.block },
                      { "tail", options.tailSeconds ? juce::var (*options.tailSeconds) : "auto" },
                      { "parameters", parameters },
                      { "connections", jsonList (signalConnections (processor)) },
                      { "routes", jsonList (modRoutes (processor)) } });

    return jsonText (jsonObject ({ { "files", files }, { "settings", settings } }));
}
