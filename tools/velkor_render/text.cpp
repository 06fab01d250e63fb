// SPDX-License-Identifier: AGPL-3.0-or-later
#include "velkor_render/text.h"

#include <juce_core/juce_core.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace
{
constexpr std::string_view kBlanks = " \t\r\n";

bool isDigit (char c)
{
    return c >= '0' && c <= '9';
}

/** Where the number at the start of the text ends; 0 if there is none. */
std::size_t endOfNumber (std::string_view text)
{
    std::size_t end = 0;
    const auto at = [text] (std::size_t i) { return i < text.size() ? text[i] : '\0'; };
    const auto skipDigits = [&end, at]
    {
        const auto start = end;

        while (isDigit (at (end)))
            ++end;

        return end - start;
    };

    if (at (0) == '-' || at (0) == '+')
        ++end;

    std::size_t digits = skipDigits();

    if (at (end) == '.')
    {
        ++end;
        digits += skipDigits();
    }

    if (digits == 0)
        return 0;

    const auto signedDigit = at (end + 1) == '-' || at (end + 1) == '+' ? end + 2 : end + 1;

    if ((at (end) == 'e' || at (end) == 'E') && isDigit (at (signedDigit)))
    {
        end = signedDigit;
        skipDigits();
    }

    return end;
}
}  // namespace

std::string inQuotes (std::string_view text)
{
    return '"' + std::string (text) + '"';
}

std::string trimmed (std::string_view text)
{
    const auto first = text.find_first_not_of (kBlanks);

    if (first == std::string_view::npos)
        return {};

    return std::string (text.substr (first, text.find_last_not_of (kBlanks) - first + 1));
}

std::string lowerCase (std::string_view text)
{
    std::string result (text);
    std::transform (result.begin(), result.end(), result.begin(),
                    [] (char c)
                    { return c >= 'A' && c <= 'Z' ? static_cast<char> (c - 'A' + 'a') : c; });
    return result;
}

std::string numberText (double value)
{
    char text[32];
    std::snprintf (text, sizeof text, "%.6g", value);
    return text;
}

std::optional<Quantity> readQuantity (std::string_view text)
{
    const auto whole = trimmed (text);
    const auto end = endOfNumber (whole);

    if (end == 0)
        return std::nullopt;

    // The framework's reading, since the C library's depends on the user's language.
    const double number = juce::String (whole.substr (0, end)).getDoubleValue();

    if (! std::isfinite (number))
        return std::nullopt;

    return Quantity { number, lowerCase (trimmed (std::string_view (whole).substr (end))) };
}
