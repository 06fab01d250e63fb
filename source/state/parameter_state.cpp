// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/parameter_state.h"

#include "state/document_guard.h"

#include <algorithm>
#include <map>
#include <string_view>

// The framework's names for a stored parameter; stored: never edit.
static const juce::Identifier kParamType ("PARAM");
static const juce::Identifier kParamId ("id");
static const juce::Identifier kParamValue ("value");

// --- numbers -------------------------------------------------------------------------------------------

static bool isDigit (char c) noexcept
{
    return c >= '0' && c <= '9';
}

/** Takes the digits that text begins with off it; their count. */
static std::size_t takeDigits (std::string_view& text) noexcept
{
    const auto end = std::find_if_not (text.begin(), text.end(), isDigit);
    const auto count = static_cast<std::size_t> (end - text.begin());
    text.remove_prefix (count);
    return count;
}

/** Takes a sign off the front of text, if there is one. */
static void takeSign (std::string_view& text) noexcept
{
    if (text.starts_with ('+') || text.starts_with ('-'))
        text.remove_prefix (1);
}

static bool isDecimal (std::string_view text) noexcept
{
    // Beyond this the framework's conversion overflows its own count of the exponent.
    constexpr std::size_t kMaxExponentDigits = 6;
    takeSign (text);
    std::size_t digits = takeDigits (text);

    if (text.starts_with ('.'))
    {
        text.remove_prefix (1);
        digits += takeDigits (text);
    }

    if (digits == 0)
        return false;

    if (text.starts_with ('e') || text.starts_with ('E'))
    {
        text.remove_prefix (1);
        takeSign (text);
        const std::size_t exponentDigits = takeDigits (text);

        if (exponentDigits == 0 || exponentDigits > kMaxExponentDigits)
            return false;
    }

    return text.empty();
}

std::optional<double> readValueText (const juce::String& text)
{
    constexpr std::size_t kMaxLength = 128;

    if (text.getNumBytesAsUTF8() > kMaxLength)
        return std::nullopt;

    const auto number = text.trim();
    const bool isInfinity = number.trimCharactersAtStart ("+-").equalsIgnoreCase ("inf");

    if (isInfinity || isDecimal (number.toRawUTF8()))
        return number.getDoubleValue();

    return std::nullopt;
}

// --- the tree ------------------------------------------------------------------------------------------

using ParametersById = std::map<juce::String, juce::RangedAudioParameter*>;

/** A store's parameters in its own order, which is that of the ids. */
static ParametersById parametersOf (const juce::AudioProcessorValueTreeState& store)
{
    ParametersById result;

    for (auto* parameter : store.processor.getParameters())
        if (auto* ranged = dynamic_cast<juce::RangedAudioParameter*> (parameter))
            result[ranged->paramID] = ranged;

    return result;
}

/** Of attributes of one name the first counts, as it does for whoever asks the element. */
static void takeAttributes (const juce::XmlElement& element, juce::ValueTree& tree)
{
    for (int i = 0; i < element.getNumAttributes(); ++i)
    {
        const juce::Identifier name (element.getAttributeName (i));

        if (! tree.hasProperty (name))
            tree.setProperty (name, element.getAttributeValue (i), nullptr);
    }
}

/** An element with all that it holds, but for running text, which has no place in a tree. */
static juce::ValueTree toTree (const juce::XmlElement& element, const juce::Identifier& type)
{
    juce::ValueTree tree (type);
    takeAttributes (element, tree);

    for (const auto* child : element.getChildIterator())
        if (! child->isTextElement())
            tree.appendChild (toTree (*child, child->getTagName()), nullptr);

    return tree;
}

/** The children of a store's tree that stand for its parameters, by id. */
static std::map<juce::String, juce::ValueTree> paramsById (const juce::ValueTree& tree)
{
    std::map<juce::String, juce::ValueTree> result;

    for (const auto& child : tree)
        if (child.hasType (kParamType))
            result[child[kParamId].toString()] = child;

    return result;
}

/** The value that a store's tree holds for a parameter; the default where a host has set one that is no
    number. */
static juce::var presentValue (const std::map<juce::String, juce::ValueTree>& params,
                               const juce::RangedAudioParameter& parameter)
{
    const auto found = params.find (parameter.paramID);

    if (found != params.end() && readValueText (found->second[kParamValue].toString()))
        return found->second[kParamValue];

    return parameter.convertFrom0to1 (parameter.getDefaultValue());
}

/** What is to stand in the tree for a document's value of a parameter: nothing if it is no number. */
static std::optional<juce::var> legalValue (const juce::String& fromDocument,
                                            const juce::RangedAudioParameter& parameter)
{
    const auto number = readValueText (fromDocument);
    const auto& range = parameter.getNormalisableRange();

    if (! number)
        return std::nullopt;

    if (*number < static_cast<double> (range.start))
        return range.start;

    if (*number > static_cast<double> (range.end))
        return range.end;

    return fromDocument;
}

/** The element that counts for each parameter that the document names. */
static std::map<juce::String, const juce::XmlElement*>
lastElements (const juce::XmlElement& parameters, const ParametersById& known)
{
    std::map<juce::String, const juce::XmlElement*> last;

    for (const auto* element : parameters.getChildIterator())
        if (hasTag (*element, kParamType))
            if (const auto id = element->getStringAttribute (kParamId); known.contains (id))
                last[id] = element;

    return last;
}

juce::ValueTree completeParameters (const juce::XmlElement& parameters,
                                    juce::AudioProcessorValueTreeState& store)
{
    const auto known = parametersOf (store);
    const auto last = lastElements (parameters, known);
    const auto presentTree = store.copyState();
    const auto present = paramsById (presentTree);
    juce::ValueTree complete (presentTree.getType());
    takeAttributes (parameters, complete);

    for (const auto* element : parameters.getChildIterator())
    {
        if (element->isTextElement())
            continue;

        const auto named = known.find (element->getStringAttribute (kParamId));

        if (named == known.end())
        {
            const bool isParam = hasTag (*element, kParamType);
            complete.appendChild (
                toTree (*element, isParam ? kParamType : juce::Identifier (element->getTagName())),
                nullptr);
        }
        else if (const auto counts = last.find (named->first);
                 counts != last.end() && counts->second == element)
        {
            auto param = toTree (*element, kParamType);
            const auto value = legalValue (param[kParamValue].toString(), *named->second);
            param.setProperty (kParamValue, value ? *value : presentValue (present, *named->second),
                               nullptr);
            complete.appendChild (param, nullptr);
        }
    }

    for (const auto& [id, parameter] : known)
        if (! last.contains (id))
            complete.appendChild (
                juce::ValueTree (
                    kParamType,
                    { { kParamId, id }, { kParamValue, presentValue (present, *parameter) } }),
                nullptr);

    return complete;
}

juce::ValueTree copyParameters (juce::AudioProcessorValueTreeState& store)
{
    auto tree = store.copyState();
    auto params = paramsById (tree);

    for (const auto& [id, parameter] : parametersOf (store))
        if (const auto found = params.find (id); found != params.end())
            found->second.setProperty (kParamValue, presentValue (params, *parameter), nullptr);

    return tree;
}
