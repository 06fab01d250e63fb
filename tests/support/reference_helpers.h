// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>

// Constants and limits of the reference engine.

namespace reference
{
inline constexpr double kPi = std::numbers::pi;
inline constexpr double kLn450 = 6.1092475827643655;

inline constexpr std::int32_t multTable[] = { 1, 2, 4, 8 };
inline constexpr std::uint16_t lfoWaveGen[] = { 2, 0, 1, 3 };
inline constexpr float gBeatMults[] = { 0.125f, 1.0f / 6.0f, 0.25f,       1.0f / 3.0f, 0.375f,
                                        0.5f,   2.0f / 3.0f, 0.75f,       1.0f,        4.0f / 3.0f,
                                        1.5f,   2.0f,        8.0f / 3.0f, 3.0f,        4.0f };

/** Towards zero; 0 for what no integer can hold. */
inline std::int64_t truncated (double x)
{
    return std::fabs (x) < 9.0e18 ? static_cast<std::int64_t> (x) : 0;
}

/** Floor modulo: always 0 to size - 1. */
inline std::size_t wrapped (std::int64_t index, std::uint64_t size)
{
    const auto n = static_cast<std::int64_t> (size);
    const std::int64_t rest = index % n;
    return static_cast<std::size_t> (rest < 0 ? rest + n : rest);
}

/** Not a number gives the lower bound. */
inline float limited (float low, float high, float x)
{
    return x > low ? (x < high ? x : high) : low;
}

/** Not a number gives the lower bound. */
inline float atLeast (float low, float x)
{
    return x > low ? x : low;
}

/** Not a number goes through. */
inline float clipped (float x)
{
    return x > 1.0f ? 1.0f : (x < -1.0f ? -1.0f : x);
}

inline bool isOn (float switchValue)
{
    return switchValue > 0.5f;
}

/** Index of a choice of four. */
inline std::size_t choice (float value)
{
    return static_cast<std::size_t> (std::clamp<std::int64_t> (truncated (value), 0, 3));
}
}  // namespace reference
