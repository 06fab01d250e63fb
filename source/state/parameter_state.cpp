// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/parameter_state.h"

#include "state/document_guard.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <map>
#include <string_view>
#include <system_error>

// --- numbers -------------------------------------------------------------------------------------------

/** What a decimal text whose number no double can hold comes to, without its sign: infinity or zero. A zero byte
    has to follow the text. */
static double magnitudeOf (std::string_view text) noexcept
{
    const auto mantissa = text.substr (0, text.find_first_of ("eE"));
    const auto point = std::min (mantissa.find ('.'), mantissa.size());
    const auto first = mantissa.find_first_of ("123456789");

    // strtoll stays at its limits where an exponent goes on for ever.
    const auto exponent = mantissa.size() == text.size()
                              ? 0
                              : std::strtoll (text.data() + mantissa.size() + 1, nullptr, 10);
    const auto power =
        static_cast<double> (exponent) + static_cast<double> (point) - static_cast<double> (first);
    return power > 0.0 ? std::numeric_limits<double>::infinity() : 0.0;
}

std::optional<double> readValueText (const juce::String& text)
{
    const auto trimmed = text.trim();
    std::string_view digits (trimmed.toRawUTF8());

    if (digits.starts_with ('+') && ! digits.starts_with ("+-"))
        digits.remove_prefix (1);

    double number = 0.0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, fault] = std::from_chars (digits.data(), end, number);

    if (fault == std::errc::invalid_argument || stop != end || std::isnan (number))
        return std::nullopt;

    if (fault == std::errc::result_out_of_range)
        return std::copysign (magnitudeOf (digits), digits.starts_with ('-') ? -1.0 : 1.0);

    return number;
}

/** Whether the framework, which reads values for itself, finds the same number in a text. It stops at some number
    of digits behind the point, be they zeros, and miscounts where digits go on and on. */
static bool readsAlike (const juce::String& text, double number)
{
    constexpr std::size_t kMaxBytes = 128;
    constexpr int kMaxExponent = 10;  // characters: more overflow its count
    const int exponentAt = text.indexOfAnyOf ("eE");

    return text.getNumBytesAsUTF8() <= kMaxBytes &&
           (exponentAt < 0 || text.length() - exponentAt <= kMaxExponent) &&
           juce::exactlyEqual (static_cast<float> (text.getDoubleValue()),
                               static_cast<float> (number));
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

/** What a document may bring that the store does not know: as much as two thousand parameters of a later version,
    which has reason for a tenth of them, and so little that a session of it stays a small part of what a document
    may be. */
struct Allowance
{
    int names = 8192;        ///< elements and attributes
    int characters = 98304;  ///< of those names and of values

    /** Takes so much off; false, with nothing taken, if less is left. */
    bool take (int numNames, int numCharacters) noexcept
    {
        if (numNames > names || numCharacters > characters)
            return false;

        names -= numNames;
        characters -= numCharacters;
        return true;
    }
};

/** Attributes that an element of the store's own keeps: the store adds some to what the document gave. */
static constexpr int kMaxOwnAttributes = kMaxElementAttributes / 2;

static int lengthOf (const juce::XmlElement& element, int attribute)
{
    return element.getAttributeName (attribute).length() +
           element.getAttributeValue (attribute).length();
}

/** The attributes of an element that has its place in the store's tree, as far as the allowance goes. Of equal
    names the first counts, as it does for whoever asks the element. */
static void takeAttributes (const juce::XmlElement& element, juce::ValueTree& tree,
                            Allowance& allowance)
{
    for (int i = 0; i < element.getNumAttributes(); ++i)
    {
        const juce::Identifier name (element.getAttributeName (i));
        const bool isOwn = tree.hasType (kParamType) && (name == kParamId || name == kParamValue);

        if (! tree.hasProperty (name) && (isOwn || (tree.getNumProperties() < kMaxOwnAttributes &&
                                                    allowance.take (1, lengthOf (element, i)))))
            tree.setProperty (name, element.getAttributeValue (i), nullptr);
    }
}

static void appendStranger (juce::ValueTree& parent, const juce::XmlElement& element,
                            const juce::Identifier& type, Allowance& allowance);

/** Appends what an element holds but for running text, which has no place in a tree. */
static void appendChildren (juce::ValueTree& parent, const juce::XmlElement& element,
                            Allowance& allowance)
{
    for (const auto* child : element.getChildIterator())
        if (! child->isTextElement())
            appendStranger (parent, *child, child->getTagName(), allowance);
}

/** Appends an element that the store does not know, with what it holds. What goes beyond the allowance is left
    out; an element goes with its attributes. */
static void appendStranger (juce::ValueTree& parent, const juce::XmlElement& element,
                            const juce::Identifier& type, Allowance& allowance)
{
    int characters = element.getTagName().length();

    for (int i = 0; i < element.getNumAttributes(); ++i)
        characters += lengthOf (element, i);

    if (! allowance.take (1 + element.getNumAttributes(), characters))
        return;

    juce::ValueTree tree (type);

    for (int i = 0; i < element.getNumAttributes(); ++i)
        if (const juce::Identifier name (element.getAttributeName (i)); ! tree.hasProperty (name))
            tree.setProperty (name, element.getAttributeValue (i), nullptr);

    appendChildren (tree, element, allowance);
    parent.appendChild (tree, nullptr);
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

    if (! readsAlike (fromDocument, *number))
        return *number;

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
                                    const juce::AudioProcessorValueTreeState& store,
                                    const juce::ValueTree& presentTree)
{
    const auto known = parametersOf (store);
    const auto last = lastElements (parameters, known);
    const auto present = paramsById (presentTree);
    juce::ValueTree complete (presentTree.getType());
    Allowance allowance;
    takeAttributes (parameters, complete, allowance);

    for (const auto* element : parameters.getChildIterator())
    {
        if (element->isTextElement())
            continue;

        const auto named = known.find (element->getStringAttribute (kParamId));

        if (named == known.end())
        {
            const bool isParam = hasTag (*element, kParamType);
            appendStranger (complete, *element,
                            isParam ? kParamType : juce::Identifier (element->getTagName()),
                            allowance);
        }
        else if (const auto counts = last.find (named->first);
                 counts != last.end() && counts->second == element)
        {
            juce::ValueTree param (kParamType);
            takeAttributes (*element, param, allowance);
            appendChildren (param, *element, allowance);
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

void replaceIllegalValues (juce::ValueTree& tree, const juce::AudioProcessorValueTreeState& store)
{
    auto params = paramsById (tree);

    for (const auto& [id, parameter] : parametersOf (store))
        if (const auto found = params.find (id); found != params.end())
            found->second.setProperty (kParamValue, presentValue (params, *parameter), nullptr);
}
