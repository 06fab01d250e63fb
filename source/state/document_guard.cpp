// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/document_guard.h"

#include "state/document_scanner.h"
#include "state/utf8.h"
#include "state/whole_file.h"

#include <string_view>

static std::unique_ptr<juce::XmlElement> parseText (const juce::String& text,
                                                    const DocumentLimits& limits)
{
    const std::string_view bytes (text.toRawUTF8());

    if (bytes.size() > limits.bytes || ! isUtf8 (bytes) ||
        ! DocumentScanner (text, limits.names).accept())
        return nullptr;

    return juce::parseXML (text);
}

std::unique_ptr<juce::XmlElement> parseDocument (const juce::MemoryBlock& bytes,
                                                 const DocumentLimits& limits)
{
    if (bytes.getSize() > limits.bytes)
        return nullptr;

    return parseText (
        juce::String::createStringFromData (bytes.getData(), static_cast<int> (bytes.getSize())),
        limits);
}

std::unique_ptr<juce::XmlElement> parseDocument (const juce::String& text)
{
    return parseText (text, {});
}

std::unique_ptr<juce::XmlElement> parseDocument (const juce::File& file,
                                                 const DocumentLimits& limits)
{
    juce::MemoryBlock bytes;
    return readRegularFile (file, limits.bytes, bytes) ? parseDocument (bytes, limits) : nullptr;
}

bool hasTag (const juce::XmlElement& element, juce::StringRef name)
{
    // Not hasTagName, which is loud in a debug build where only the case differs.
    return element.getTagName().equalsIgnoreCase (name);
}

const juce::XmlElement* findChild (const juce::XmlElement& parent, juce::StringRef name)
{
    for (const auto* child : parent.getChildIterator())
        if (hasTag (*child, name))
            return child;

    return nullptr;
}
