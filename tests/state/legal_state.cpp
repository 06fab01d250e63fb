// SPDX-License-Identifier: AGPL-3.0-or-later
#include "legal_state.h"

#include "state/parameter_state.h"

#include <algorithm>
#include <cmath>
#include <map>

static std::string faultOfParameters (VelkorAudioProcessor& processor)
{
    const auto tree = processor.parameterTree.copyState();

    if (tree.getType() != juce::Identifier ("Parameters"))
        return "tree type";

    std::multimap<juce::String, juce::String> texts;

    for (const auto& child : tree)
        if (child.hasType ("PARAM"))
            texts.emplace (child["id"].toString(), child["value"].toString());

    for (const auto& info : parameterInfo)
    {
        const auto& range =
            processor.parameterTree.getParameter (info.name)->getNormalisableRange();
        const float value = processor.parameterTree.getRawParameterValue (info.name)->load();

        if (! (value >= range.start && value <= range.end))
            return std::string ("value of ") + info.name;

        if (texts.count (info.name) != 1)
            return std::string ("not once in the tree: ") + info.name;

        const auto number = readValueText (texts.find (info.name)->second);

        if (! number || std::abs (*number - static_cast<double> (value)) >
                            0.5 + 1e-4 * std::abs (*number))  // choices and switches are rounded
            return std::string ("text of ") + info.name;
    }

    return {};
}

/** The lists that are walked while sound is made, against the grids that are drawn and saved. */
static std::string faultOfMatrices (const VelkorAudioProcessor& processor)
{
    const auto& signal = processor.engine->signal;
    const auto& modulation = processor.engine->modulation;

    if (std::count (signal.connected.begin(), signal.connected.end(), true) !=
        signal.connectionCount)
        return "connections";

    for (std::size_t i = 0; i < static_cast<std::size_t> (signal.connectionCount); ++i)
        if (! signal_matrix_get (signal, signal.connSource[i], signal.connDest[i]))
            return "a connection without its flag";

    if (std::count (modulation.modGrid.begin(), modulation.modGrid.end(), true) !=
        modulation.router.routes.size())
        return "routes";

    for (const auto* route : modulation.router.routes)
        if (! mod_router_get (modulation, route->source, route->dest))
            return "a route without its flag";

    return {};
}

static std::string faultOfSound (VelkorAudioProcessor& processor)
{
    juce::AudioBuffer<float> buffer (2, 64);
    juce::MidiBuffer midi;
    buffer.clear();
    buffer.setSample (0, 0, 1.0f);
    buffer.setSample (1, 9, -1.0f);
    processor.processBlock (buffer, midi);

    for (int channel = 0; channel < 2; ++channel)
        for (int n = 0; n < 64; ++n)
            if (! (std::abs (buffer.getSample (channel, n)) <= 1.0f))
                return "sound";

    return {};
}

static std::string faultOfReturn (VelkorAudioProcessor& processor)
{
    juce::MemoryBlock saved, again;
    processor.getStateInformation (saved);
    const auto restore = [&]
    { processor.setStateInformation (saved.getData(), static_cast<int> (saved.getSize())); };

    // Something is changed each time: else a restore that does nothing would pass.
    processor.setPresetName (processor.presetName + "?");
    processor.setSignalConnection (0, 0, ! processor.getSignalConnection (0, 0));
    processor.setModConnection (0, 0, ! processor.getModConnection (0, 0));
    restore();
    processor.getStateInformation (again);

    if (saved != again)
        return "state does not come back";

    // On its own, since a text such as "0.0001" for a switch gives way to the number once the switch moves.
    auto* const kill = processor.parameterTree.getParameter ("Kill");
    const bool wasOn = kill->getValue() >= 0.5f;
    kill->setValueNotifyingHost (wasOn ? 0.0f : 1.0f);
    restore();
    return (kill->getValue() >= 0.5f) == wasOn ? std::string() : "a parameter does not come back";
}

std::string faultOf (VelkorAudioProcessor& processor)
{
    for (auto* check : { faultOfParameters, faultOfSound, faultOfReturn })
        if (auto fault = check (processor); ! fault.empty())
            return fault;

    return faultOfMatrices (processor);
}
