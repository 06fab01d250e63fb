// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "parameters/parameter_table.h"

#include <array>
#include <atomic>

struct VelkorEngine;

/** The live value of every parameter, in real units, by NumericalParamID; the store owns them. */
using ParamPointers = std::array<std::atomic<float>*, kNumParameters>;

/** The values that one block's audio sees, by NumericalParamID. */
using ParamSnapshot = std::array<float, kNumParameters>;

/** Reads every parameter once. No lock joins the reads, so a change that lands among them may reach one
    half of a pair a block early. A value that is no number, which the framework lets a host set, counts as
    0. Audio thread, lock-free. */
ParamSnapshot readSnapshot (const ParamPointers& pointers) noexcept;

/** What no snapshot equals: bindSnapshot takes it for everything having changed. */
ParamSnapshot noSnapshot() noexcept;

/** Writes a snapshot into the engine's block values: switches above 0.5 are on, choices are truncated, the rest goes as
    it is or through a transform. bound is the snapshot that this engine got last, or noSnapshot(), and becomes the new
    one; where the two are the same, to the bit, nothing but the envelope's coefficients is left to do. Audio thread,
    once per block, lock-free. */
void bindSnapshot (const ParamSnapshot& snapshot, ParamSnapshot& bound,
                   VelkorEngine& engine) noexcept;
