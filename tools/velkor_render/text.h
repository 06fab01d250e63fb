// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

/** text in double quotes. */
std::string inQuotes (std::string_view text);

/** text without the blanks around it. */
std::string trimmed (std::string_view text);

/** text with its ASCII letters in lower case; for comparing names. */
std::string lowerCase (std::string_view text);

/** Up to six significant digits, no trailing zeros: "0.0001", "1.41254", "5312". */
std::string numberText (double value);

/** A number and the word behind it. */
struct Quantity
{
    double number = 0.0;  ///< finite
    std::string unit;     ///< in lower case, without blanks around it; may be empty
};

/** Reads "-6 dB", "2.5kHz", "750", "1e-4". Empty if the text doesn't start with a number in decimal
    notation, or if the number is too large for a double. What is behind the number is not judged. */
std::optional<Quantity> readQuantity (std::string_view text);
