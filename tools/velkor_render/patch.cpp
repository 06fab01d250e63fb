// SPDX-License-Identifier: AGPL-3.0-or-later
#include "velkor_render/patch.h"

#include "processor/VelkorAudioProcessor.h"
#include "velkor_render/failure.h"
#include "velkor_render/options.h"
#include "velkor_render/parameter_reading.h"
#include "velkor_render/text.h"

#include <algorithm>
#include <string_view>

namespace
{
// What the user calls the nodes, by number.

constexpr std::array<std::string_view, kNumSignalSources> kSignalSources {
    "Input L",  "Input R",  "Delay 1",      "Delay 2",
    "Filter 1", "Filter 2", "Saturation 1", "Saturation 2",
};

constexpr std::array<std::string_view, kNumSignalDests> kSignalDests {
    "Delay 1",  "Delay 2",      "Delay 1 feedback", "Delay 2 feedback", "Filter 1",
    "Filter 2", "Saturation 1", "Saturation 2",     "Output 1",         "Output 2",
};

constexpr std::array<std::string_view, kNumModSources> kModSources {
    "Envelope", "LFO 1", "LFO 2", "Note", "Gate", "Wheel",
};

constexpr std::array<std::string_view, kNumModDests> kModDests {
    "Delay 1",  "Delay 2", "LFO 1", "LFO 2",   "Filter 1",
    "Filter 2", "Pan 1",   "Pan 2", "Level 1", "Level 2",
};

/** A crosspoint of one of the matrices. */
struct Crosspoint
{
    int source, dest;
};

template <std::size_t size>
int findNode (const std::array<std::string_view, size>& names, const std::string& name,
              const std::string& where)
{
    const auto found =
        std::find_if (names.begin(), names.end(),
                      [&name] (auto known) { return lowerCase (known) == lowerCase (name); });

    if (found == names.end())
    {
        std::string known;

        for (const auto each : names)
            known += (known.empty() ? "" : ", ") + std::string (each);

        failUsage (where + ": " + inQuotes (name) + " is none of " + known);
    }

    return static_cast<int> (found - names.begin());
}

template <std::size_t numSources, std::size_t numDests>
Crosspoint readCrosspoint (const std::array<std::string_view, numSources>& sources,
                           const std::array<std::string_view, numDests>& dests,
                           const std::string& option, const std::string& text)
{
    const auto arrow = text.find ('>');

    if (arrow == std::string::npos)
        failUsage (option + ": " + inQuotes (text) +
                   " is not of the form \"SOURCE > DESTINATION\"");

    const auto where = option + " " + inQuotes (text);
    return { findNode (sources, trimmed (text.substr (0, arrow)), where),
             findNode (dests, trimmed (text.substr (arrow + 1)), where) };
}

Crosspoint readSignal (const std::string& option, const std::string& text)
{
    return readCrosspoint (kSignalSources, kSignalDests, option, text);
}

Crosspoint readMod (const std::string& option, const std::string& text)
{
    return readCrosspoint (kModSources, kModDests, option, text);
}

bool isAll (const std::string& text)
{
    return lowerCase (trimmed (text)) == "all";
}

/** A parameter and what it is to become. */
struct Setting
{
    juce::RangedAudioParameter* parameter;
    std::string text;
};

Setting readSetting (const VelkorAudioProcessor& processor, const std::string& written)
{
    const auto equals = written.find ('=');

    if (equals == std::string::npos)
        failUsage ("--set: " + inQuotes (written) + " is not of the form \"NAME=VALUE\"");

    const auto name = trimmed (written.substr (0, equals));

    for (const auto& row : parameterInfo)
        if (lowerCase (row.name) == lowerCase (name))
            return { processor.parameterTree.getParameter (row.name),
                     trimmed (written.substr (equals + 1)) };

    failUsage ("--set: there is no parameter " + inQuotes (name) + " (--parameters lists them)");
}

void applySettings (VelkorAudioProcessor& processor, const std::vector<std::string>& written)
{
    std::vector<Setting> settings;
    settings.reserve (written.size());

    for (const auto& each : written)
        settings.push_back (readSetting (processor, each));

    std::stable_partition (settings.begin(), settings.end(),
                           [] (const Setting& each)
                           { return rawUnitOf (*each.parameter) == RawUnit::toggle; });

    for (const auto& [parameter, text] : settings)
        parameter->setValueNotifyingHost (
            parameter->convertTo0to1 (readParameterText (*parameter, text)));
}
}  // namespace

void applyEdits (VelkorAudioProcessor& processor, const PatchEdits& edits)
{
    for (const auto& text : edits.disconnect)
    {
        if (isAll (text))
        {
            clearSignalMatrix (processor);
            continue;
        }

        const auto [source, dest] = readSignal ("--disconnect", text);
        processor.setSignalConnection (source, dest, false);
    }

    for (const auto& text : edits.unroute)
    {
        if (isAll (text))
        {
            clearModMatrix (processor);
            continue;
        }

        const auto [source, dest] = readMod ("--unroute", text);
        processor.setModConnection (source, dest, false);
    }

    applySettings (processor, edits.set);

    for (const auto& text : edits.connect)
    {
        const auto [source, dest] = readSignal ("--connect", text);
        processor.setSignalConnection (source, dest, true);
    }

    for (const auto& text : edits.route)
    {
        const auto [source, dest] = readMod ("--route", text);
        processor.setModConnection (source, dest, true);
    }
}

void clearSignalMatrix (VelkorAudioProcessor& processor)
{
    for (int source = 0; source < kNumSignalSources; ++source)
        for (int dest = 0; dest < kNumSignalDests; ++dest)
            processor.setSignalConnection (source, dest, false);
}

void clearModMatrix (VelkorAudioProcessor& processor)
{
    for (int source = 0; source < kNumModSources; ++source)
        for (int dest = 0; dest < kNumModDests; ++dest)
            processor.setModConnection (source, dest, false);
}

juce::StringArray signalConnections (const VelkorAudioProcessor& processor)
{
    juce::StringArray names;

    for (int dest = 0; dest < kNumSignalDests; ++dest)
        for (int source = 0; source < kNumSignalSources; ++source)
            if (signal_matrix_get (processor.engine->signal, source, dest))
                names.add (std::string (kSignalSources[static_cast<std::size_t> (source)]) + " > " +
                           std::string (kSignalDests[static_cast<std::size_t> (dest)]));

    return names;
}

juce::StringArray modRoutes (const VelkorAudioProcessor& processor)
{
    juce::StringArray names;

    for (int source = 0; source < kNumModSources; ++source)
        for (int dest = 0; dest < kNumModDests; ++dest)
            if (processor.getModConnection (source, dest))
                names.add (std::string (kModSources[static_cast<std::size_t> (source)]) + " > " +
                           std::string (kModDests[static_cast<std::size_t> (dest)]));

    return names;
}
