// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "velkor_render/audio_input.h"

/** The same audio at another rate, in hertz; the input itself if it has that rate already. Frame 0 stays
    where it is: there is no delay. On the way down, what the lower rate can't hold is filtered off. */
AudioInput resampled (AudioInput input, double rate);
