// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "engine/delay_pair.h"
#include "engine/engine.h"
#include "engine/engine_globals.h"
#include "engine/filter_pair.h"
#include "engine/lanes.h"

/** What modulation reaches, in the order of ModDest, four to a vector; the last two lanes stay idle. */
struct Controls
{
    static constexpr int kNumVectors = 3;

    Floats base[kNumVectors], depth[kNumVectors];  ///< as the parameters have them
    Floats low[kNumVectors], high[kNumVectors];    ///< limits of their sum
    Floats value[kNumVectors];                     ///< in force
};

/** Gains of the stages before and behind the matrix, each in all lanes. */
struct StageGains
{
    Floats input, phase1, phase2, wet, dry;  ///< as the parameters have them
    Floats level1, level2;                   ///< of the outputs of the matrix, as the tick has them
    Floats left1, right1, left2,
        right2;  ///< of the panners behind the levels, as the tick has them
};

/** Node values of a tick that is run node by node, one sample to a lane. */
struct NodeTicks
{
    Floats sources[kNumSignalSources];
    Floats dests[kNumSignalDests];
    Floats delayOut[2],
        filterOut[2];  ///< what the tick made; the next one's sources are a sample behind
};

/** The working copy of an engine while a block runs: values that are treated alike stand side by side in lanes, node 1
    of a kind before node 2. The records get the state back at the block's end. */
struct BlockLanes
{
    Controls controls;
    StageGains gains;
    DelayPair delays;
    FilterPair filters;
    Floats feedbackOfInputs;  ///< amounts by destination: none, none, feedback 1, feedback 2
    Floats satKOfFilters;     ///< constants by destination: none, none, saturator 1, saturator 2

    // The nodes' values have one of two forms, from one tick to the next: isByNode tells which.
    DestLanes dests;  ///< of the last sample, by SignalDest
    Floats made;      ///< by the last sample: delay 1, delay 2, filter 1, filter 2
    float negatives[ControlTick][kNumSignalSources];  ///< of the sources as each sample saw them
    NodeTicks ticks;                                  ///< the other form

    LfoPlan plan1, plan2;
    float filtersRate;      ///< the sample rate that the filters' coefficients were worked out for
    bool wasModulated;      ///< the tick before had routes
    bool isByNode = false;  ///< ticks holds the nodes' values
};

/** Sets up the parts of the lanes that setTick keeps: limits, bases and depths. The first tick of the block then works
    everything out anew. Audio thread, at the head of a block. */
void beginControls (BlockLanes& lanes, const BlockValues& block) noexcept;

/** Moves the modulators on and brings what they reach to where the tick wants it: speeds, cut-offs, pans, levels. A
    table, a sine or a division is asked only for values that have changed since the tick before. Audio thread, once
    per tick; takes modLock. */
void setTick (VelkorEngine& engine, BlockLanes& lanes) noexcept;
