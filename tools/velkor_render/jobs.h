// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "velkor_render/audio_output.h"

#include <filesystem>
#include <vector>

struct Options;

/** One file to be rendered. */
struct Job
{
    std::filesystem::path input;  ///< empty: the demo phrase
    std::filesystem::path output;
    AudioFileType type;

    /** The input, for people. */
    std::string inputName() const { return input.empty() ? "demo" : input.string(); }
};

/** Which input becomes which output; nothing where no input is named. Fails by usage at outputs that can't be meant
    (an unknown extension, an input, twice the same) and at options that don't go with them. Opens and makes
    nothing. */
std::vector<Job> planJobs (const Options& options);
