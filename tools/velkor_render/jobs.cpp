// SPDX-License-Identifier: AGPL-3.0-or-later
#include "velkor_render/jobs.h"

#include "velkor_render/failure.h"
#include "velkor_render/options.h"
#include "velkor_render/text.h"

#include <set>

namespace fs = std::filesystem;

namespace
{
bool isFolder (const std::string& output)
{
    std::error_code error;
    return output.ends_with ('/') || output.ends_with (fs::path::preferred_separator) ||
           fs::is_directory (output, error);
}

AudioFileType typeInFolder (const Options& options)
{
    const auto name = options.format.value_or ("wav");
    const auto type = audioFileTypeOf ("." + name);

    if (! type)
        failUsage ("--format: " + inQuotes (name) + " is none of wav, aiff, flac");

    return *type;
}

Job jobForFile (const Options& options)
{
    const fs::path output = options.output;

    if (options.inputs.size() > 1)
        failUsage (
            inQuotes (options.output) +
            " is no folder, which several inputs need (end its name in \"/\" to have it made)");

    if (options.format)
        failUsage ("--format is for folders: " + inQuotes (options.output) +
                   " says by its extension what it is");

    const auto type = audioFileTypeOf (output);

    if (! type)
        failUsage (inQuotes (options.output) + " ends in none of .wav, .aif, .aiff, .flac");

    return { options.demo ? fs::path() : options.inputs.front(), output, *type };
}

std::vector<Job> jobsForFolder (const Options& options)
{
    const auto type = typeInFolder (options);
    const auto outputOf = [&] (const fs::path& input)
    {
        auto name = input.stem();
        name += "." + options.format.value_or ("wav");
        return fs::path (options.output) / name;
    };
    std::vector<Job> jobs;

    if (options.demo)
        jobs.push_back ({ {}, outputOf ("demo"), type });

    for (const auto& input : options.inputs)
        jobs.push_back ({ input, outputOf (input), type });

    return jobs;
}

void checkAgainstInputs (const Job& job, const Options& options)
{
    std::error_code error;  // there is no output yet, as a rule, and then it is no input either

    for (const auto& input : options.inputs)
        if (fs::equivalent (input, job.output, error))
            failUsage (inQuotes (job.output.string()) + " is an input: render to another file");
}
}  // namespace

std::vector<Job> planJobs (const Options& options)
{
    if (options.inputs.empty() && ! options.demo)
        return {};

    auto jobs =
        isFolder (options.output) ? jobsForFolder (options) : std::vector { jobForFile (options) };
    std::set<fs::path> outputs;

    for (const auto& job : jobs)
    {
        if (options.bits == 32 && job.type != AudioFileType::wav)
            failUsage ("--bits: 32 is for WAV only, and " + inQuotes (job.output.string()) +
                       " is another format");

        checkAgainstInputs (job, options);

        if (! outputs.insert (job.output.lexically_normal()).second)
            failUsage ("two inputs would become " + inQuotes (job.output.string()));
    }

    return jobs;
}
