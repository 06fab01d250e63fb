// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/preset_document.h"

#include "engine/engine.h"
#include "state/document_guard.h"
#include "state/stored_parameters.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <utility>
#include <vector>

// Tags, in writing order, and attributes; stored: never edit.
static constexpr auto kParametersTag = "Parameters";
static constexpr auto kSignalMatrixTag = "SignalMatrix";
static constexpr auto kModMatrixTag = "ModMatrix";
static constexpr auto kConnectionTag = "Connection";
static constexpr auto kPresetName = "PresetName";
static constexpr auto kVersion = "Version";
static constexpr auto kInput = "input";
static constexpr auto kOutput = "output";
static constexpr auto kSource = "source";
static constexpr auto kDest = "dest";

static constexpr int kDocumentVersion = 65536;  ///< written, never read

// --- writing -------------------------------------------------------------------------------------------

static void addConnection (juce::XmlElement& matrix, const char* from, int a, const char* to, int b)
{
    auto* const connection = matrix.createNewChildElement (kConnectionTag);
    connection->setAttribute (from, a);
    connection->setAttribute (to, b);
}

static void addMatrices (juce::XmlElement& root, const VelkorEngine& engine)
{
    auto* const signal = root.createNewChildElement (kSignalMatrixTag);

    for (int output = 0; output < kNumSignalDests; ++output)
        for (int input = 0; input < kNumSignalSources; ++input)
            if (signal_matrix_get (engine.signal, input, output))
                addConnection (*signal, kInput, input, kOutput, output);

    auto* const modulation = root.createNewChildElement (kModMatrixTag);

    for (int source = 0; source < kNumModSources; ++source)
        for (int dest = 0; dest < kNumModDests; ++dest)
            if (mod_router_get (engine.modulation, source, dest))
                addConnection (*modulation, kSource, source, kDest, dest);
}

std::unique_ptr<juce::XmlElement> writePresetDocument (const juce::String& stateTag,
                                                       const juce::String& presetName,
                                                       StoredParameters& parameters,
                                                       const VelkorEngine& engine)
{
    auto root = std::make_unique<juce::XmlElement> (stateTag);
    root->setAttribute (kPresetName, presetName);
    root->setAttribute (kVersion, kDocumentVersion);

    if (auto element = parameters.save().createXml())
        root->addChildElement (element.release());

    addMatrices (*root, engine);
    return root;
}

// --- reading -------------------------------------------------------------------------------------------

juce::String readPresetName (const juce::XmlElement& document)
{
    return document.getStringAttribute (kPresetName);
}

bool isPresetDocument (const juce::XmlElement& document, const juce::String& stateTag)
{
    return hasTag (document, stateTag) && findChild (document, kParametersTag) != nullptr;
}

void readPresetParameters (const juce::XmlElement& document, StoredParameters& parameters)
{
    if (const auto* element = findChild (document, kParametersTag))
        parameters.load (*element);
}

/** A number of a crosspoint: as much of the text as reads as one, else 0, which is also what a missing
    attribute counts as. A number too large for the type stays too large for any matrix. */
static std::int32_t readNumber (const juce::XmlElement& element, const char* attribute)
{
    const auto& text = element.getStringAttribute (attribute);
    const long long number = std::strtoll (text.toRawUTF8(), nullptr, 10);
    return static_cast<std::int32_t> (
        std::clamp<long long> (number, std::numeric_limits<std::int32_t>::min(),
                               std::numeric_limits<std::int32_t>::max()));
}

/** The crosspoints that a matrix element lists, in its order. */
template <typename Pair>
static std::vector<Pair> readPairs (const juce::XmlElement& matrix, const char* from,
                                    const char* to)
{
    std::vector<Pair> pairs;

    for (const auto* child : matrix.getChildIterator())
        if (hasTag (*child, kConnectionTag))
            pairs.push_back ({ readNumber (*child, from), readNumber (*child, to) });

    return pairs;
}

void readPresetMatrices (const juce::XmlElement& document, VelkorEngine& engine)
{
    if (const auto* signal = findChild (document, kSignalMatrixTag))
        engine_replace_connections (engine, readPairs<SignalPair> (*signal, kInput, kOutput));

    if (const auto* modulation = findChild (document, kModMatrixTag))
        mod_router_replace (engine.modulation, readPairs<ModPair> (*modulation, kSource, kDest));
}
