// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/document_guard.h"

#include "state/document_scanner.h"
#include "state/whole_file.h"

static bool isValidText (const char* text, std::size_t numBytes)
{
    return juce::CharPointer_UTF8::isValidString (text, static_cast<int> (numBytes));
}

std::unique_ptr<juce::XmlElement> parseDocument (const juce::String& text)
{
    const auto numBytes = text.getNumBytesAsUTF8();

    if (numBytes > kMaxDocumentBytes || ! isValidText (text.toRawUTF8(), numBytes) ||
        ! DocumentScanner (text).accept())
        return nullptr;

    return juce::parseXML (text);
}

std::unique_ptr<juce::XmlElement> parseDocument (const juce::MemoryBlock& bytes)
{
    if (bytes.getSize() > kMaxDocumentBytes)
        return nullptr;

    return parseDocument (
        juce::String::createStringFromData (bytes.getData(), static_cast<int> (bytes.getSize())));
}

std::unique_ptr<juce::XmlElement> parseDocument (const juce::File& file)
{
    juce::MemoryBlock bytes;
    return readRegularFile (file, kMaxDocumentBytes, bytes) ? parseDocument (bytes) : nullptr;
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
