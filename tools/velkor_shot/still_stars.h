// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "ui/Starfield.h"

#include <vector>

/** Stars for a picture that is to be the same every time: a few, near and far, across the view. */
inline std::vector<Star> stillStars()
{
    std::vector<Star> stars;

    for (int i = 0; i < 24; ++i)
    {
        const auto place = static_cast<float> (i) / 24.0f;
        const auto z = i % 2 == 0 ? 0.2f : 0.6f;
        stars.push_back ({ (2.0f * place - 1.0f) * 1.3f * z,
                           (0.9f - 0.07f * static_cast<float> (i)) * z, z, z + 0.011f });
    }

    return stars;
}
