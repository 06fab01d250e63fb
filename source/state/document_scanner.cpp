// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/document_scanner.h"

#include "state/document_guard.h"

#include <cstring>

static bool isNameChar (juce::juce_wchar c) noexcept
{
    return juce::CharacterFunctions::isLetterOrDigit (c) || c == '_' || c == '-' || c == ':' ||
           c == '.';
}

bool DocumentScanner::accept()
{
    // A document type would bring entities, which nest and name files; other "<!" cannot stand here.
    if (! skipGap() || startsWith ("<!") || ! skipTag())
        return false;

    while (depth > 0)
        if (! skipContent())
            return false;

    return true;
}

bool DocumentScanner::startsWith (const char* ascii) const noexcept
{
    return std::strncmp (p.getAddress(), ascii, std::strlen (ascii)) == 0;
}

bool DocumentScanner::skipPast (const char* ascii) noexcept
{
    const char* const found = std::strstr (p.getAddress(), ascii);

    if (found == nullptr)
        return false;

    p = Pointer (found + std::strlen (ascii));
    return true;
}

/** Skips blanks, comments and processing instructions, all of which may stand between any two signs of a
    tag, too. False at the end of the text. */
bool DocumentScanner::skipGap() noexcept
{
    sawInstruction = false;

    for (;;)
    {
        p.incrementToEndOfWhitespace();

        if (p.isEmpty())
            return false;

        if (startsWith ("<!--"))
        {
            p += 4;

            if (! skipPast ("-->"))
                return false;
        }
        else if (startsWith ("<?"))
        {
            p += 2;
            sawInstruction = true;

            if (! skipPast ("?>"))
                return false;
        }
        else
        {
            return true;
        }
    }
}

bool DocumentScanner::skipName() noexcept
{
    if (! isNameChar (*p) || p.isDigit() || *p == '-' || *p == '.' || ++names > maxNames)
        return false;

    while (isNameChar (*p))
        ++p;

    return true;
}

/** A start tag or an empty element. */
bool DocumentScanner::skipTag()
{
    if (*p != '<')
        return false;

    ++p;

    if (! skipName())
        return false;

    for (int attributes = 0; attributes <= kMaxElementAttributes; ++attributes)
    {
        if (! skipGap())
            return false;

        if (startsWith ("/>"))
        {
            p += 2;
            return true;
        }

        if (*p == '>')
        {
            ++p;
            return ++depth <= kMaxDocumentDepth;
        }

        if (! skipAttribute())
            return false;
    }

    return false;
}

bool DocumentScanner::skipAttribute()
{
    if (! skipName() || ! skipGap() || *p != '=')
        return false;

    ++p;
    return skipGap() && skipValue();
}

bool DocumentScanner::skipValue()
{
    const auto quote = *p;

    if (quote != '"' && quote != '\'')
        return false;

    ++p;
    characters = 0;

    while (*p != quote)
    {
        if (p.isEmpty())
            return false;

        if (*p == '&')
        {
            if (! skipEscape())
                return false;
        }
        else
        {
            ++p;
            ++characters;
        }

        if (characters > kMaxAttributeCharacters)
            return false;
    }

    ++p;
    return true;
}

/** Whether text begins with one of the escapes that have a name, its semicolon included; their case is free. */
static bool isKnownEscape (juce::CharPointer_UTF8 text) noexcept
{
    for (const char* const known : { "amp;", "quot;", "apos;", "lt;", "gt;" })
        if (text.compareIgnoreCaseUpTo (juce::CharPointer_ASCII (known),
                                        static_cast<int> (std::strlen (known))) == 0)
            return true;

    return false;
}

/** An escape that ends where it should. The names of unknown ones are harmless: they become text. */
bool DocumentScanner::skipEscape()
{
    constexpr int kMaxName = 32;
    ++p;

    if (*p == '#')
        return skipNumericEscape();

    const bool isKnown = isKnownEscape (p);
    int length = 0;

    for (; isNameChar (*p) && length < kMaxName; ++length)
        ++p;

    characters += isKnown ? 1 : length;
    return p.getAndAdvance() == ';';
}

/** A character by its number, which has to be one: the framework would write any bits as text. */
bool DocumentScanner::skipNumericEscape()
{
    ++p;
    const bool isHex = *p == 'x' || *p == 'X';

    if (isHex)
        ++p;

    juce::uint32 code = 0;
    int digits = 0;

    for (; *p != ';'; ++p)
    {
        const int digit = isHex ? juce::CharacterFunctions::getHexDigitValue (*p)
                                : (p.isDigit() ? static_cast<int> (*p - '0') : -1);

        if (digit < 0 || ++digits > 8)
            return false;

        code = code * (isHex ? 16u : 10u) + static_cast<juce::uint32> (digit);
    }

    ++p;
    ++characters;
    return code != 0 &&
           juce::CharacterFunctions::isNonSurrogateCodePoint (static_cast<juce::juce_wchar> (code));
}

/** One step inside an element: an end tag, a start tag, literal text or a run of text. */
bool DocumentScanner::skipContent()
{
    const auto start = p;

    if (! skipGap())
        return false;

    if (*p != '<')
    {
        // The parser goes back to take in the blanks, and from an instruction it never comes forth again.
        p = start;
        return ! sawInstruction && skipText();
    }

    if (startsWith ("</"))
    {
        --depth;
        return skipPast (">");
    }

    if (startsWith ("<![CDATA["))
    {
        p += 9;
        return skipPast ("]]>");
    }

    return skipTag();
}

bool DocumentScanner::skipText()
{
    while (*p != '<' || startsWith ("<!--"))
    {
        if (p.isEmpty())
            return false;

        if (*p == '<')
        {
            p += 4;

            if (! skipPast ("-->"))
                return false;
        }
        else if (*p == '&')
        {
            if (! skipEscape())
                return false;
        }
        else
        {
            ++p;
        }
    }

    return true;
}
