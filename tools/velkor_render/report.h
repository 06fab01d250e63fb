// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "velkor_render/jobs.h"
#include "velkor_render/render.h"

#include <string>
#include <vector>

class VelkorAudioProcessor;
struct Options;

/** A job and what came of it. */
struct FinishedJob
{
    Job job;
    double rate;
    RenderResult result;
};

/** The parameters as a table, one a line. */
std::string parameterTable (const VelkorAudioProcessor& processor);

/** The parameters as a JSON list. */
std::string parameterJson (const VelkorAudioProcessor& processor);

/** The factory presets, one a line, each in a form that --preset takes. */
std::string presetList();

/** The factory presets as a JSON list. */
std::string presetJson();

/** One line on a render. */
std::string renderLine (const FinishedJob& finished);

/** All renders, and the settings and the patch that they have in common, as JSON. preset is what the patch
    started from; empty if it is a new instance's. */
std::string renderJson (const std::vector<FinishedJob>& finished, const Options& options,
                        const std::string& preset, const VelkorAudioProcessor& processor);
