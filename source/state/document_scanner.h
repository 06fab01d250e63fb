// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

/** Walks the text of a document as the framework's parser does, tag by tag, but without recursion and
    without keeping anything, and says whether the parser may have it. The two must agree on where a tag,
    a value or a comment ends: what one reads as a value is nesting to the other. So where the parser is
    lenient in a way that no writer needs, the scanner refuses. */
class DocumentScanner
{
public:
    /** The text has to be valid UTF-8 and must outlive the scanner. It may have so many elements and
        attributes. */
    DocumentScanner (const juce::String& text, int namesAllowed)
        : p (text.getCharPointer()), maxNames (namesAllowed)
    {
    }

    /** True if the text is one element with its contents, within the limits given and those of
        document_guard.h. Whatever follows the element is not looked at, as the parser does not. */
    bool accept();

private:
    using Pointer = juce::String::CharPointerType;

    bool startsWith (const char* ascii) const noexcept;
    bool skipPast (const char* ascii) noexcept;
    bool skipGap() noexcept;
    bool skipName() noexcept;
    bool skipTag();
    bool skipAttribute();
    bool skipValue();
    bool skipEscape();
    bool skipNumericEscape();
    bool skipText();
    bool skipContent();

    Pointer p;
    int maxNames;
    int depth = 0;
    int names = 0;
    int characters = 0;           ///< of the last value, escapes decoded
    bool sawInstruction = false;  ///< in the last gap
};
