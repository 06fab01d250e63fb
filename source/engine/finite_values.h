// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

struct VelkorEngine;

/** Puts 0 in the place of those of n values that are not finite. Any thread. */
void silenceNonFinite (float* values, int n) noexcept;

/** Whether all that the signal state carries on to the next block is finite, but for what the delay buffers hold.
    Audio thread, after a block. */
bool signalStateIsFinite (const VelkorEngine& engine) noexcept;

/** Brings an instance back whose patch has run away, so that it sounds again once the patch allows it. Audio thread,
    after a block. */
void recoverFromRunaway (VelkorEngine& engine) noexcept;
