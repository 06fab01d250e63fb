// SPDX-License-Identifier: AGPL-3.0-or-later
#include "velkor_render/paths.h"

#include "velkor_render/failure.h"

#include <fstream>

juce::File frameworkFile (const std::filesystem::path& path)
{
    std::error_code error;

    // Links are followed here: the framework would take the ".." of a path by its letters. What is not there yet stays
    // relative unless it is made absolute first.
    const auto full = std::filesystem::absolute (path);
    const auto place = std::filesystem::weakly_canonical (full, error);
    const auto text = (error ? full : place).u8string();
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

std::filesystem::path behindLinks (const std::filesystem::path& path)
{
    std::error_code error;
    const auto target = std::filesystem::canonical (path, error);
    return error ? path : target;
}

void makeWay (const std::filesystem::path& destination)
{
    std::error_code error;
    const auto place = behindLinks (destination);

    if (place.has_parent_path())
        std::filesystem::create_directories (place.parent_path(), error);

    if (error)
        fail (destination.string() + ": can't be written: " + error.message());

    if (! std::filesystem::exists (place, error))
        return;

    if (! std::filesystem::is_regular_file (place, error))
        fail (destination.string() + ": is not a file that can be replaced");

    if (! std::ofstream (place, std::ios::in | std::ios::out))
        fail (destination.string() + ": is not writable");
}
