// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/document_guard.h"

#include "state/document_scanner.h"
#include "state/whole_file.h"

#include <string_view>

/** Bytes of the character that begins with this one, 0 if none does. */
static std::size_t sequenceLength (unsigned char first) noexcept
{
    if (first < 0x80)
        return 1;

    if (first < 0xc2 || first > 0xf4)
        return 0;

    return first < 0xe0 ? 2 : (first < 0xf0 ? 3 : 4);
}

/** Whether the text is well-formed UTF-8, as RFC 3629 has it. The framework's own test lets a two-byte
    character end with any byte, and its pointers then jump over quotes, brackets or the end. */
static bool isUtf8 (std::string_view text) noexcept
{
    while (! text.empty())
    {
        const auto byteAt = [&text] (std::size_t i)
        { return static_cast<unsigned char> (text[i]); };
        const auto first = byteAt (0);
        const auto length = sequenceLength (first);

        if (length == 0 || length > text.size())
            return false;

        for (std::size_t i = 1; i < length; ++i)
            if ((byteAt (i) & 0xc0) != 0x80)
                return false;

        // Longer than needed, half of a surrogate pair, beyond the last code point.
        if ((first == 0xe0 && byteAt (1) < 0xa0) || (first == 0xed && byteAt (1) > 0x9f) ||
            (first == 0xf0 && byteAt (1) < 0x90) || (first == 0xf4 && byteAt (1) > 0x8f))
            return false;

        text.remove_prefix (length);
    }

    return true;
}

static std::unique_ptr<juce::XmlElement> parseText (const juce::String& text,
                                                    const DocumentLimits& limits)
{
    const std::string_view bytes (text.toRawUTF8());

    if (bytes.size() > limits.bytes || ! isUtf8 (bytes) ||
        ! DocumentScanner (text, limits.names).accept())
        return nullptr;

    return juce::parseXML (text);
}

static std::unique_ptr<juce::XmlElement> parseBytes (const juce::MemoryBlock& bytes,
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

std::unique_ptr<juce::XmlElement> parseDocument (const juce::MemoryBlock& bytes)
{
    return parseBytes (bytes, {});
}

std::unique_ptr<juce::XmlElement> parseDocument (const juce::File& file,
                                                 const DocumentLimits& limits)
{
    juce::MemoryBlock bytes;
    return readRegularFile (file, limits.bytes, bytes) ? parseBytes (bytes, limits) : nullptr;
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
