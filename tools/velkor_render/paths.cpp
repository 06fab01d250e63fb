// SPDX-License-Identifier: AGPL-3.0-or-later
#include "velkor_render/paths.h"

#include "velkor_render/failure.h"

juce::File frameworkFile (const std::filesystem::path& path)
{
    std::error_code error;

    // Links are followed here: the framework would take the ".." of a path by its letters.
    const auto place = std::filesystem::weakly_canonical (path, error);
    const auto text = (error ? std::filesystem::absolute (path) : place).u8string();
    return juce::File (juce::String::fromUTF8 (reinterpret_cast<const char*> (text.c_str())));
}

juce::File existingFile (const std::filesystem::path& path)
{
    std::error_code error;
    const auto status = std::filesystem::status (path, error);

    if (path.empty())
        fail ("\"\": no such file");

    if (! std::filesystem::exists (status))
        fail (path.string() + ": no such file");

    if (std::filesystem::is_directory (status))
        fail (path.string() + ": is a folder");

    return frameworkFile (path);
}
