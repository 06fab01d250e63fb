// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <string_view>

/** Whether the text is well-formed UTF-8, as RFC 3629 has it. The framework makes a buffer for the characters that
    it decodes and then copies the bytes: of any other text it copies more than it has made room for. Its own test
    lets a two-byte character end with any byte. Any thread. */
bool isUtf8 (std::string_view text) noexcept;

/** The text of bytes from elsewhere: UTF-8, or else the Western 8-bit encoding, in which any bytes are a text. Any
    thread. */
juce::String textOfBytes (std::string_view bytes);
