// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <cstddef>
#include <memory>

/** Documents come from strangers, and the framework's parser recurses once per level, follows entities
    and external files, reads on behind a broken escape and never ends on a processing instruction before
    text. These functions read a document with it only after a look at the text. Everything that they
    refuse is an empty pointer. Any thread. */

/** Longest document in bytes. One of ours takes less than ten thousand. */
inline constexpr std::size_t kMaxDocumentBytes = 4u << 20;

/** Deepest nesting of elements. Three levels make a document; the rest is room for what other products and
    later versions may put beside ours. The parser needs some 300 bytes of stack for each. */
inline constexpr int kMaxDocumentDepth = 64;

/** Elements and attributes in all: some hundred bytes of memory each. */
inline constexpr int kMaxDocumentNames = 65536;

/** Attributes of one element. As properties of a tree they are a list that each new one walks. */
inline constexpr int kMaxElementAttributes = 64;

/** Characters of one attribute's value, an escape being one: a writer may spell the same value longer than it was
    read, and what is read once must be read again. */
inline constexpr int kMaxAttributeCharacters = 16384;

/** How large a document may be. */
struct DocumentLimits
{
    std::size_t bytes = kMaxDocumentBytes;
    int names = kMaxDocumentNames;  ///< elements and attributes
};

/** Parses a text. */
std::unique_ptr<juce::XmlElement> parseDocument (const juce::String& text);

/** Parses bytes: UTF-8, UTF-16 with its byte order mark, or else a Western 8-bit encoding. A zero byte
    ends them. */
std::unique_ptr<juce::XmlElement> parseDocument (const juce::MemoryBlock& bytes,
                                                 const DocumentLimits& limits = {});

/** Parses a regular file; anything else, such as a pipe, isn't opened. A file that grows with what the user has,
    and that nobody trades, may be given limits of its own. */
std::unique_ptr<juce::XmlElement> parseDocument (const juce::File& file,
                                                 const DocumentLimits& limits = {});

/** Whether an element's tag is name, ignoring case. */
bool hasTag (const juce::XmlElement& element, juce::StringRef name);

/** The first child whose tag is name, ignoring case; nullptr if there is none. */
const juce::XmlElement* findChild (const juce::XmlElement& parent, juce::StringRef name);
