// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <array>

/** The 15 beat lengths of a synced time or rate, in quarter notes, shortest first: dotted and triplet
    values interleave. The texts that go with them are SyncDisplayParameter::kBeatLabels. */
inline constexpr std::array<float, 15> gBeatMults {
    0.125f, 1.0f / 6.0f, 0.25f, 1.0f / 3.0f, 0.375f,      0.5f, 2.0f / 3.0f, 0.75f,
    1.0f,   4.0f / 3.0f, 1.5f,  2.0f,        8.0f / 3.0f, 3.0f, 4.0f,
};

/** The place in gBeatMults of a parameter's position t on its travel, 0 to 1 (limited to that). Controls
    and engine both ask here, so that what is shown is what is played. Any thread. */
constexpr int syncBeatIndex (float t) noexcept
{
    const float position = t < 0.0f ? 0.0f : (t < 1.0f ? t : 1.0f);
    // 0.99: the last length gets a stretch of travel of its own.
    const float scaled = position * 0.99f * 15.0f;
    const int index = static_cast<int> (scaled);
    return index < 0 ? 0 : (index > 14 ? 14 : index);
}
