// SPDX-License-Identifier: AGPL-3.0-or-later
#include "state/utf8.h"

#include <cstddef>
#include <vector>

/** Bytes of the character that begins with this one, 0 if none does. */
static std::size_t sequenceLength (unsigned char first) noexcept
{
    if (first < 0x80)
        return 1;

    if (first < 0xc2 || first > 0xf4)
        return 0;

    return first < 0xe0 ? 2 : (first < 0xf0 ? 3 : 4);
}

bool isUtf8 (std::string_view text) noexcept
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

juce::String textOfBytes (std::string_view bytes)
{
    if (isUtf8 (bytes))
        return juce::String::fromUTF8 (bytes.data(), static_cast<int> (bytes.size()));

    std::vector<juce::juce_wchar> text;
    text.reserve (bytes.size() + 1);

    for (const char byte : bytes)
        text.push_back (juce::CharacterFunctions::getUnicodeCharFromWindows1252Codepage (
            static_cast<juce::uint8> (byte)));

    text.push_back (0);
    return juce::String (juce::CharPointer_UTF32 (text.data()));
}
