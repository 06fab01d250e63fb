// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

/** x limited to low..high. A NaN, which only a patch that has run away can bring here, counts as low, so
    that no index or rate made from the result can leave its range. */
template <typename Number>
constexpr Number limitTo (Number low, Number high, Number x) noexcept
{
    return x > low ? (x < high ? x : high) : low;
}

/** The larger of low and x; low for a NaN. */
template <typename Number>
constexpr Number atLeast (Number low, Number x) noexcept
{
    return x > low ? x : low;
}
