// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "engine/lanes.h"

/** The constant of saturation() for a drive of 0 to 1, which counts as at most 0.99: 0 to 198. Any thread: no state. */
constexpr float saturationConstant (float drive) noexcept
{
    const float b = drive < 0.99f ? drive : 0.99f;
    return 2.0f * b / (1.0f - b);
}

/** One sample through a saturator of constant k in each lane; unity at k = 0. Tends to (k + 1) / k for large x, so
    it is no hard limit. No oversampling, no make-up gain. Any thread: no state. */
inline Floats saturation (Floats k, Floats x) noexcept
{
    return (k + 1.0f) * x / (1.0f + k * absolute (x));
}
